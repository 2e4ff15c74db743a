#include "family.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace mp2lf {
namespace {

// Every file of a case family, written by this program or not: an old
// family of the same stem would mix with the new one.
const char* const kFamily[] = {".L0", ".L1", ".L2",  ".L3",  ".NL4", ".L5",
                               ".L6", ".L7", ".L10", ".L13", ".MAP"};

// Writes text to a new file of that path, flushed to the disk; false with
// errno set when it fails.
bool write_new(const std::string& path, const std::string& text) {
  std::FILE* f = std::fopen(path.c_str(), "wx");
  if (!f) return false;
  bool ok = std::fwrite(text.data(), 1, text.size(), f) == text.size() && std::fflush(f) == 0 &&
            fsync(fileno(f)) == 0;
  const int err = errno;
  ok = std::fclose(f) == 0 && ok;
  if (!ok && errno == 0) errno = err;
  return ok;
}

}  // namespace

bool write_family(const std::string& stem, const Family& files, bool force) {
  namespace fs = std::filesystem;
  for (const auto& [ext, text] : files) {
    if (!fs::is_directory(stem + ext)) continue;
    std::fprintf(stderr, "mp2lf: %s%s is a folder; nothing written\n", stem.c_str(), ext.c_str());
    return false;
  }
  if (!force) {
    for (const char* ext : kFamily) {
      if (!fs::exists(stem + ext)) continue;
      std::fprintf(stderr,
                   "mp2lf: %s%s exists; give --force to replace the case family; nothing "
                   "written\n",
                   stem.c_str(), ext);
      return false;
    }
  }
  const std::string tmp = ".mp2lf" + std::to_string(getpid());
  std::vector<std::string> written;
  for (const auto& [ext, text] : files) {
    const std::string path = stem + ext + tmp;
    errno = 0;
    if (write_new(path, text)) {
      written.push_back(path);
      continue;
    }
    std::fprintf(stderr, "mp2lf: cannot write %s%s: %s; nothing written\n", stem.c_str(),
                 ext.c_str(), std::strerror(errno));
    std::remove(path.c_str());
    for (const auto& w : written) std::remove(w.c_str());
    return false;
  }
  // Each file complete: now they take their names, replacing the old ones.
  bool renamed = true;
  for (const auto& [ext, text] : files) {
    if (std::rename((stem + ext + tmp).c_str(), (stem + ext).c_str()) == 0) continue;
    std::fprintf(stderr, "mp2lf: cannot name %s%s: %s; the family is incomplete\n", stem.c_str(),
                 ext.c_str(), std::strerror(errno));
    std::remove((stem + ext + tmp).c_str());
    renamed = false;
  }
  return renamed;
}

}  // namespace mp2lf

#include "support/wholefile.hpp"

#include <sys/stat.h>

#include <cstdio>

namespace lf {

bool read_whole_file(const std::string& path, std::string& text) {
  text.clear();
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return false;
  struct stat st {};
  if (fstat(fileno(f), &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    text.resize(static_cast<std::size_t>(st.st_size));
    text.resize(std::fread(text.data(), 1, text.size(), f));
  }
  // The rest, when the size was not known beforehand or the file grew.
  char chunk[1 << 16];
  for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;) text.append(chunk, n);
  std::fclose(f);
  return true;
}

}  // namespace lf

#include "support/wholefile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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

WholeFile::~WholeFile() {
  std::free(data_);
}

bool WholeFile::room_for(std::size_t n, std::size_t keep) {
  const std::size_t want = n + kSlack;
  if (want <= room_) return true;
  // Grows by half again at least, for a file whose size was not known; a
  // block that holds nothing worth keeping is not copied.
  const std::size_t room = std::max(want, room_ + room_ / 2);
  char* grown = nullptr;
  if (keep != 0) {
    grown = static_cast<char*>(std::realloc(data_, room));
  } else {
    std::free(data_);
    data_ = nullptr, room_ = 0;
    grown = static_cast<char*>(std::malloc(room));
  }
  if (grown == nullptr) return false;
  data_ = grown;
  room_ = room;
  return true;
}

bool WholeFile::load(const std::string& path) {
  size_ = 0;
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st {};
  const bool regular = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  // A regular file is asked for one byte beyond its size, so that the
  // first read that gives less ends it; anything else ends with a read of 0.
  bool ok = room_for(regular ? static_cast<std::size_t>(st.st_size) + 1 : std::size_t{1} << 16, 0);
  while (ok) {
    const std::size_t asked = room_ - kSlack - size_;
    const ssize_t got = ::read(fd, data_ + size_, asked);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    size_ += static_cast<std::size_t>(got);
    if (regular && static_cast<std::size_t>(got) < asked) break;
    if (size_ + kSlack == room_) ok = room_for(size_ + size_ / 2 + (1 << 16), size_);
  }
  ::close(fd);
  if (!ok) {
    size_ = 0;
    return false;
  }
  std::memset(data_ + size_, 0, kSlack);
  return true;
}

}  // namespace lf

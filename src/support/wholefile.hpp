// A whole file taken into memory at once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lf {

// Replaces text with the file's bytes; false (text empty) when the file
// cannot be opened.  A regular file is read in one piece of its size.
bool read_whole_file(const std::string& path, std::string& text);

// A file's bytes followed by kSlack zero bytes, so that a scan may read a
// little past the end of its text.  The block is not cleared before the
// file's bytes land in it, and it is kept when the next file is loaded into
// it, so that a reader that goes through several files touches fresh memory
// for the largest alone.
class WholeFile {
 public:
  static constexpr std::size_t kSlack = 8;

  WholeFile() = default;
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;
  ~WholeFile();

  // Takes in the file; false (and empty) when it cannot be opened.
  bool load(const std::string& path);
  // Empties the text; the block stays for the next load.
  void clear() { size_ = 0; }
  std::string_view text() const { return {data_, size_}; }

 private:
  // Makes data_ hold at least n + kSlack bytes, keeping the first keep.
  bool room_for(std::size_t n, std::size_t keep);
  char* data_ = nullptr;  // the bytes, then kSlack zeros; null before the first load
  std::size_t size_ = 0;  // bytes of the file
  std::size_t room_ = 0;  // bytes data_ holds
};

}  // namespace lf

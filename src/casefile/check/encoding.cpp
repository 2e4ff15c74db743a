#include "casefile/check/encoding.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace lf::check {

namespace {

// Length of the UTF-8 sequence at text[i], 0 when it is not one.
std::size_t utf8_length(std::string_view text, std::size_t i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char c = byte(i);
  const std::size_t n = c < 0x80         ? 1
                        : (c >> 5) == 6  ? 2
                        : (c >> 4) == 14 ? 3
                        : (c >> 3) == 30 ? 4
                                         : 0;
  if (n == 0 || i + n > text.size()) return 0;
  for (std::size_t k = 1; k < n; ++k)
    if ((byte(i + k) >> 6) != 2) return 0;
  return n;
}

// The first position from `from` on that holds a byte outside ASCII (the
// text's size when there is none), eight bytes at a time.
std::size_t plain_ascii_end(std::string_view text, std::size_t from) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080u;
  std::size_t i = from;
  for (std::uint64_t word; i + sizeof word <= text.size(); i += sizeof word) {
    std::memcpy(&word, text.data() + i, sizeof word);
    if (word & kHighBits) break;
  }
  while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
  return i;
}

}  // namespace

void check_encoding(const std::string& path, std::string_view text, Warnings& w) {
  if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
    w.push_back(path + ": starts with a UTF-8 byte-order mark, which the engine passes over");
  if (text.find('\0') != std::string_view::npos) {
    w.push_back(path + ": holds NUL bytes: UTF-16 or binary data, not a text the engine can read");
    return;
  }
  for (std::size_t i = 0; i < text.size();) {
    i = plain_ascii_end(text, i);
    if (i == text.size()) break;
    const std::size_t n = utf8_length(text, i);
    if (n == 0) {
      const auto line =
          1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(i), '\n');
      w.push_back(path + " line " + std::to_string(line) +
                  ": bytes that are not UTF-8 (another encoding?); names may read wrongly");
      return;
    }
    i += n;
  }
}

}  // namespace lf::check

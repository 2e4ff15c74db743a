#include "casefile/check/encoding.hpp"

#include <fstream>
#include <iterator>

namespace lf::check {

namespace {

// Length of the UTF-8 sequence at text[i], 0 when it is not one.
std::size_t utf8_length(const std::string& text, std::size_t i) {
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

}  // namespace

void check_encoding(const std::string& path, Warnings& w) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return;
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
    w.push_back(path + ": starts with a UTF-8 byte-order mark, which the engine passes over");
  if (text.find('\0') != std::string::npos) {
    w.push_back(path + ": holds NUL bytes: UTF-16 or binary data, not a text the engine can read");
    return;
  }
  long line = 1;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == '\n') ++line;
    const std::size_t n = utf8_length(text, i);
    if (n == 0) {
      w.push_back(path + " line " + std::to_string(line) +
                  ": bytes that are not UTF-8 (another encoding?); names may read wrongly");
      return;
    }
    i += n;
  }
}

}  // namespace lf::check

// What the bytes of a case file say about its encoding: the engine reads
// plain ASCII text (or UTF-8 in names); a byte-order mark, UTF-16 or another
// 8-bit encoding is worth a warning.
#pragma once

#include <string>
#include <string_view>

#include "casefile/check/strictread.hpp"

namespace lf::check {

// Warns about a UTF-8 byte-order mark, NUL bytes (UTF-16 or binary data) and
// bytes that are not UTF-8 in the text of the file at path, once each.
void check_encoding(const std::string& path, std::string_view text, Warnings& w);

}  // namespace lf::check

// A whole file taken into memory at once.
#pragma once

#include <string>

namespace lf {

// Replaces text with the file's bytes; false (text empty) when the file
// cannot be opened.  A regular file is read in one piece of its size.
bool read_whole_file(const std::string& path, std::string& text);

}  // namespace lf

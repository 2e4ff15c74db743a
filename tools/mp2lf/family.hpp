// Writing a case family so that no file of the user's is ever lost: an
// existing family is replaced only when asked to, and the new files are
// written under temporary names and take their own names only once every
// one of them is complete.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace mp2lf {

// The files of a family: extension and contents.
using Family = std::vector<std::pair<std::string, std::string>>;

// Writes stem + extension for each file.  Without `force`, a stem that has
// any case file already is refused.  False, after saying why on standard
// error, when nothing was written.
bool write_family(const std::string& stem, const Family& files, bool force);

}  // namespace mp2lf

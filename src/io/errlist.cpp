#include "io/errlist.hpp"

#include <string>

#include "io/channels.hpp"
#include "support/units.hpp"

namespace lf {

namespace {

constexpr const char* kErrListFile = "LFERR.LIS";

// The framing lines go out 49 characters long, trailing blanks included.
void frame(std::string_view text) {
  std::string line(text);
  line.resize(49, ' ');
  wstring(line);
}

}  // namespace

void errlist_open() {
  if (unit_open(kErrUnit, kErrListFile, FileStatus::Old)) unit_close(kErrUnit, true);
  if (!unit_open(kErrUnit, kErrListFile, FileStatus::New)) return;
  unit_write_line(kErrUnit, " " + std::string(kErrListHeader));
}

void errlist_write(std::string_view line) {
  unit_write_line(kErrUnit, line);
}

void errlist_close() {
  unit_close(kErrUnit);
}

void serror() {
  unit_rewind(kErrUnit);
  std::string line;
  int count = 0;
  while (unit_read_line(kErrUnit, line)) {
    line.resize(80, ' ');  // lines are read as 80 characters
    ++count;
    if (count == 1) continue;  // the header
    if (count == 2) frame("    ****** Operation Error Information ******");
    wstring(line);
  }
  if (count >= 2) frame("    *****************************************");
}

}  // namespace lf

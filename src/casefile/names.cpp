// The case names of a calculation, from NAME.INC in the working folder.
#include <string>
#include <string_view>

#include "casefile/readers.hpp"
#include "support/freeread.hpp"

namespace lf {

namespace {
// The lines of NAME.INC that name the case, the load parameter library and
// the model library, from 1.
constexpr int kCaseLine = 2;
constexpr int kLoadLibraryLine = 4;
constexpr int kModelLibraryLine = 9;
}  // namespace

void read_names() {
  casename = "LF";
  datalibname = "DATALIB";
  udlibname = "UDLIB";
  FreeReader in;
  if (!in.open("NAME.INC")) return;
  // Line 1 holds a number that nothing uses; lines 3 and 5 to 8 are not
  // looked at.  A name line missing from a short file keeps its default.
  std::string line;
  for (int n = 1; n <= kModelLibraryLine && in.line(line); ++n) {
    const std::string_view name = std::string_view(line).substr(0, CaseName::size());
    if (n == kCaseLine) casename = name;
    if (n == kLoadLibraryLine) datalibname = name;
    if (n == kModelLibraryLine) udlibname = name;
  }
}

}  // namespace lf

// The case names of a calculation, from NAME.INC in the working folder.
#include <string>
#include <string_view>

#include "casefile/readers.hpp"
#include "support/freeread.hpp"

namespace lf {

void read_names() {
  casename = "LF";
  datalibname = "DATALIB";
  udlibname = "UDLIB";
  FreeReader in;
  if (!in.open("NAME.INC")) return;
  // Line 1 holds a number that nothing uses; lines 3 and 5 to 8 are not
  // looked at.  A name line missing from a short file keeps its default.
  std::string line;
  for (int n = 1; n <= 9 && in.line(line); ++n) {
    std::string_view first60 = std::string_view(line).substr(0, 60);
    if (n == 2) casename = first60;
    if (n == 4) datalibname = first60;
    if (n == 9) udlibname = first60;
  }
}

}  // namespace lf

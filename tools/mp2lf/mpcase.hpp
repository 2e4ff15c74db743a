// Reading a MATPOWER case file: the assignments of a case function, each a
// number, a text, a numeric matrix or a cell array of texts.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace mp2lf {

using Matrix = std::vector<std::vector<double>>;

struct MpCase {
  double base_mva = 0;
  Matrix bus, gen, branch;
  std::vector<std::string> bus_name;  // empty when the case names no buses
};

// A case that cannot be read; what() says where and why.
struct ParseError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Parses the text of a case file.  Throws ParseError for anything that is
// not a plain assignment of a literal, and for a case that lacks baseMVA,
// bus, gen or branch or whose rows are too short or refer to unknown buses.
MpCase parse_case(const std::string& text);

}  // namespace mp2lf

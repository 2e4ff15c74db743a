// Reading a case from its family of text files (.L0, .L1, .L2, .L3, .NL4,
// .L5, .L6, .L7, .L10, .L13) and the static load parameter library (.DAT).
//
// Each reader takes a base path (the case stem without trailing blanks) and
// adds its own upper-case extension.  The counts of .L0 decide which files
// are opened; each reader then replaces its count with the number of records
// it kept.  A read that ends or fails closes the file and the records read
// so far stand.  A missing mandatory file ends the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "store/store.hpp"

namespace lf {

// Fills the network store from the case files of casename and, when some
// load names a parameter set, from datalibname's .DAT library.  Both names
// are blank padded.
void rdlf(const CaseName& casename, const CaseName& datalibname);

void rl0(const std::string& path);     // run control and counts (mandatory)
void rl1(const std::string& path);     // buses (mandatory when nbus > 0)
void rl23(const std::string& path);    // lines and shunt branches, then transformers
void nrl4(const std::string& path);    // two-terminal DC lines
void rl5(const std::string& path);     // generators (mandatory when ngenerat != 0)
void rl6(const std::string& path);     // loads
void rl7(const std::string& path);     // area schedules
void rl10(const std::string& path);    // scaling factors
void rl13(const std::string& path);    // substation switch records
void rpalib(const std::string& path);  // static load parameter sets

// Reads NAME.INC in the current folder into casename, datalibname and
// udlibname, or takes the defaults when there is no such file.
void read_names();

// One row of a branch file as wrl23 reads it: field k (0-based, in file
// order) is ints[k] when it is an integer field, reals[k] when a real one.
struct BranchRow {
  std::vector<int32_t> ints;
  std::vector<double> reals;
};

// The rows of one branch file.
struct BranchRows {
  std::vector<BranchRow> rows;  // 0-based, in file order; may hold more than count
  std::size_t count = 0;        // rows of the last reading that opened the file
};

// The .L2 and .L3 rows as wrl23 last read them; written and read by wrl23
// alone.  They outlive the calculation on purpose: a later calculation that
// cannot open a file writes the rows of the earlier reading back.
struct L23ROWSRec {
  BranchRows l2, l3;
};
extern L23ROWSRec L23ROWS;

// Writes the branch data that the user-defined models changed back into the
// case's .L2 and .L3 files.
void wrl23(const CaseName& name);

}  // namespace lf

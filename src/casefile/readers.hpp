// Reading a case from its family of text files (.L0, .L1, .L2, .L3, .NL4,
// .L5, .L6, .L7, .L10, .L13) and the static load parameter library (.DAT).
//
// Each reader takes a base path (the case stem without trailing blanks) and
// adds its own upper-case extension.  The counts of .L0 decide which files
// are opened; each reader then replaces its count with the number of records
// it kept.  A read that ends or fails closes the file and the records read
// so far stand.  A missing mandatory file ends the process.
#pragma once

#include <string>

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

// Writes the branch data that the user-defined models changed back into the
// case's .L2 and .L3 files.
void wrl23(const CaseName& name);

}  // namespace lf

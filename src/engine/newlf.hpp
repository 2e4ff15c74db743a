// The calculation driver: one whole calculation from the error list to the
// closing line, and the small stages that belong to no other subsystem.
#pragma once

#include <cstdint>

#include "engine/store.hpp"

namespace lf {

// The case names of the present calculation, from NAME.INC or the defaults
// "LF", "DATALIB" and "UDLIB".
extern CaseName casename;     // stem of the case files and of the reports
extern CaseName datalibname;  // the parameter library, for the case reader
extern CaseName udlibname;    // the library of user-defined models

// 1: the calculation runs the nonlinear method in place of the case's method.
extern int32_t NLFAST;
extern int32_t adjcount;  // area adjustments made in this calculation
extern int32_t adjflag;   // result of the last area adjustment: 0, 1 or 2

// Runs one calculation; convergent is 1 when it converged, else 0.
void newlf(int32_t& convergent);

// Reads NAME.INC in the current directory into the three case names, or
// takes the defaults when there is no such file.
void read_names();

// Appends a branch to ground for each transformer whose magnetising
// impedance is not negligible, and sets NO.nbranch.
void dwrmxm();

// Writes the branch data that the user-defined models changed back into the
// case's .L2 and .L3 files.
void wrl23(const CaseName& name);

}  // namespace lf

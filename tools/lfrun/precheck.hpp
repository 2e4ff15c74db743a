// The case check that lfrun runs before a case in the files: the warnings of
// the case checker on standard error, one line each.
#pragma once

#include <string>

#include "results.hpp"

// Checks the case `name` in the working folder, with the load library that
// NAME.INC names (line 4) or DATALIB; prints the warnings and, when `alone`,
// a closing line.  Gives the number of warnings, and in buses the names of
// the bus file's records as the check read them, for the result summary.
int precheck(const std::string& name, bool alone, lfres::BusNames& buses);

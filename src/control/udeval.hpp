// The pieces of the evaluation of the models that its parts share: the
// location of a binding, the reading of a network quantity, the taking and
// applying of block outputs.
#pragma once

#include <cstdint>

namespace lf {

// The pair (LOCA, LOCB) that location n of instance i stands for: location
// 0 is the instance's first entry, locations 1, 2, ... count its buses (a
// line entry in first place is passed over).
void resolve(int32_t i, int32_t n, int32_t& loc1, int32_t& loc2);

// One network quantity by its code (the sign is the caller's): bus
// quantities at the external bus loc1, branch quantities of the line loc1
// (side loc2), the instance row's values, the interface variables.
void fmlfin(int32_t code, int32_t loc1, int32_t loc2, double& value);

// Current of a branch at side 1 or 2 (k the ratio, b the half charging).
void aiap(int32_t side, double r, double x, double& k, double b, double e1, double f1, double e2,
          double f2, double& ir, double& ii);

// Takes block output `value` with signed code `code` as result n of the
// pass, or writes an interface variable (codes above 200).
void fmlfot(int32_t code, int32_t loc1, int32_t loc2, double value, int32_t n);

// Applies results first .. last to the network.
void dwout(int32_t first, int32_t last);

// For all blocks YO = Y, for all filters FS1O = FS1N.
void traud();

// Clears the results and the extra injections.
void iniout();

// The branch whose line number is no (first in IJB order), 0 when none.
int32_t find_line(int32_t no);

}  // namespace lf

// The fast decoupled load flow: the angles from the active mismatches on the
// series-susceptance matrix B1, the magnitudes from the reactive mismatches on
// B2, each factorised once per case and again only when bus types change.
#pragma once

#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// Runs the decoupled iteration on the present Y.  status: 1 when the case's
// tolerance was met in the first pass, 0 when the limit of iterations was
// passed (a second pass from the flat start with an opened tolerance follows
// the first failure; its convergence still gives 0).  finite comes out
// false when the run ended on a mismatch or correction that was not finite.
void pqdecp(int32_t& status, bool& finite);
inline void pqdecp(int32_t& status) {
  bool finite = true;
  pqdecp(status, finite);
}

// B1: the susceptances x/(r^2 + x^2) of the series branches on the index
// structure of Y; parallel branches must stand in adjacent rows of IJB.  Rows
// and columns of slack buses are cut to the identity.
void formb1(Arr<double>& b);

// B2: the susceptances of Y with the load characteristic's slope on the
// diagonal of voltage-dependent loads; rows and columns of fixed-voltage
// buses cut to the identity.
void formb2(Arr<double>& b);

}  // namespace lf

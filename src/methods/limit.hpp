// Reactive and voltage limits of generator and load rows, applied when a
// method has converged.  A row out of limit changes its type for good:
// -2 (voltage held, Q limited) becomes 1 at the bound passed, and -3 (Q given,
// voltage limited) becomes -1 at the bound passed.
#pragma once

#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// qc: the calculated reactive injection of each internal bus.  changed comes
// out 1 when any row was switched, else 0.
void limit(const Arr<double>& qc, int32_t& changed);

}  // namespace lf

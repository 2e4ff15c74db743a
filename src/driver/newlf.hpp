// The calculation driver: one whole calculation from the error list to the
// closing line, stage after stage.
#pragma once

#include <cstdint>

#include "store/store.hpp"

namespace lf {

// 1: the calculation runs the nonlinear method in place of the case's method.
extern int32_t NLFAST;
extern int32_t adjcount;  // area adjustments made in this calculation
extern int32_t adjflag;   // result of the last area adjustment: 0, 1 or 2

// Runs one calculation; convergent is 1 when it converged, else 0.
void newlf(int32_t& convergent);

}  // namespace lf

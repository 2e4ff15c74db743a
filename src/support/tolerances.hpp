// Sizes below which the engine takes a quantity as nothing, where more than
// one stage tests for the same thing.
#pragma once

namespace lf {

// The smallest size the engine divides by: a divisor or an impedance nearer
// to 0 is taken at this size (keeping its sign), and a voltage whose parts
// are both at most this has no angle.
constexpr double kTinyDivisor = 1e-20;

}  // namespace lf

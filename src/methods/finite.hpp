// The guard of every iteration against values that are not finite.  A
// largest |mismatch| or |correction| taken with ">" passes over a NaN, so an
// iteration that has run into an overflow would look converged.  Each method
// therefore looks at its mismatches and corrections as they come: the first
// one that is not finite ends the iteration as a divergence, with one line
// that names the bus, and the buses go back to the last state whose
// mismatches were finite, which the results then show.
#pragma once

#include <cstdint>
#include <string_view>

#include "support/arr.hpp"

namespace lf {

// The first internal bus in 1..n whose value in d is not finite; 0 if none.
int32_t nonfinite_at(int32_t n, const Arr<double>& d);

// The same over two arrays at once: the first bus at which either is not finite.
int32_t nonfinite_at(int32_t n, const Arr<double>& a, const Arr<double>& b);

// The voltages of the buses (V, TH, E and F of VPQ) as they stood before a
// correction; a method saves them before it applies one and brings them back
// when the next mismatches are not finite.
struct BusState {
  Arr<double> V, TH, E, F;  // by internal bus, as in VPQ
  void save(int32_t n);
  void restore(int32_t n) const;
};

// Prints the line that ends an iteration at internal bus `bus`: "Divergence:
// non-finite <what> at bus <name>".
void say_nonfinite(std::string_view what, int32_t bus);

}  // namespace lf

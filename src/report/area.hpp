// Area interchange control: compares each area's actual export with its
// schedule after a converged run and moves the regulating generators.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

constexpr std::size_t kCapAreaNo = 200;  // area numbers 1..200

// Written by adjare after each converged run; read by adjare and the area
// report (.LP7).
struct AREARec {
  Arr<double> PACT{kCapAreaNo};  // actual export by area number (1-based), per unit on base_mva
};

extern AREARec AREA;

// The outcomes of one adjustment, as adjare's flag.
constexpr int32_t kAreasWithin = 0;     // all areas within tolerance (or no area records)
constexpr int32_t kAreasMoved = 1;      // outputs were changed: run the method again
constexpr int32_t kAreasOverLimit = 2;  // a regulating generator went over its limit and
                                        // all changes were taken back
void adjare(int32_t& flag);

// The generator row that regulates area record rec, 0 when its bus has none.
int32_t regulating_generator(int32_t rec);

}  // namespace lf

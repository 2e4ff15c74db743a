// What the block routines share: the constants, the input sums, parameter
// reads, the guard of a divisor with its warning, and the hold rule.
#pragma once

#include <cmath>
#include <cstdint>
#include <string_view>

#include "control/blocks.hpp"
#include "control/udblock.hpp"
#include "io/errlist.hpp"
#include "support/tolerances.hpp"

namespace lf::blk {

// The divisor guard of the blocks is the engine's kTinyDivisor.  The blocks
// that divide by an input or by their own output (DIVD, MAGN, SQR1, SQRT,
// ANGL) test it against a tenth of that, on purpose.
constexpr double kTinyOutput = 1.0E-21;
constexpr double kZeroInput = 1.0E-11;       // an input nearer 0 than this is 0
constexpr double kTimerTolerance = 1.0E-6;   // seconds by which a timer may reach its time early
constexpr double kPulseTolerance = 1.0E-10;  // an input this near 1 is a pulse (CNT)

// X and DX of a block: the sums of its two inputs.
inline double X(int32_t b) {
  return UDXY.X1[b] + UDXY.X2[b];
}
inline double DX(int32_t b) {
  return UDXY.DX1[b] + UDXY.DX2[b];
}
// Parameter k (1-based) of a block whose first parameter is at ipar.
inline double P(int32_t ipar, int32_t k) {
  return NUPA[ipar + k - 1];
}

// A divisor below kTinyDivisor in size becomes kTinyDivisor with its sign
// (0 counting as positive), and the warning goes to the error list.
inline double guard_signed(double d, std::string_view warning) {
  if (std::fabs(d) >= kTinyDivisor) return d;
  errlist_write(warning);
  return d >= 0 ? kTinyDivisor : -kTinyDivisor;
}
// The same for a difference that becomes plain kTinyDivisor.
inline double guard(double d, std::string_view warning) {
  if (std::fabs(d) >= kTinyDivisor) return d;
  errlist_write(warning);
  return kTinyDivisor;
}

// The hold rule of the comparing blocks: in a predictor step of the
// time-step form the block hands on its present output unchanged.
inline bool held_in_predictor(int32_t mode, int32_t b) {
  if (NNU1.IPRED == 0) return false;
  blsub(mode, UDXY.Y[b], UDXY.DY[b], b);
  return true;
}

}  // namespace lf::blk

// Timers, latches and the pulse counter.  They count time in steps of DT of
// the time-step form; in the load flow DT and KSTEP are 0, so a timer's
// memory is cleared at every evaluation and only the latches act.
#include <cmath>

#include "control/blocks.hpp"
#include "control/blocks_common.hpp"

namespace lf {

using namespace blk;

namespace {

// The timer of a block is cleared at the first step.
void start_step(int32_t ist) {
  if (NOST1.KSTEP == 0) NU1.TMR[ist] = 0;
}
// An input that counts as off: zero or negative.
bool off(double x) {
  return std::fabs(x) < kZeroInput || x < 0;
}

}  // namespace

// TDLY: latches on a positive input and gives 1 once A has run since then.
// The latch is never released.
void bl21(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist) {
  start_step(ist);
  double y = 0;
  if (NU1.LATCH[ist] == 1) {
    if (NU1.TMR[ist] >= (P(ipar, 1) - COMM7.DT) - kTimerTolerance) {
      y = 1;
    } else if (NNU1.IPRED == 0) {
      NU1.TMR[ist] += COMM7.DT;
    }
  } else if (!off(X(iblk))) {
    NU1.LATCH[ist] = 1;
    NU1.TMR[ist] += COMM7.DT;
  }
  blsub(mode, y, 0, iblk);
}

// PULS: a pulse of length A when X1 is 1.
void bl27(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist) {
  start_step(ist);
  double y = 0;
  if (NU1.LATCH[ist] == 1) {
    if (NU1.TMR[ist] > (P(ipar, 1) - COMM7.DT) - kTimerTolerance) {
      NU1.TMR[ist] = 0;
      NU1.LATCH[ist] = 0;
    } else {
      if (NNU1.IPRED == 0) NU1.TMR[ist] += COMM7.DT;
      y = 1;
    }
  } else if (std::fabs(UDXY.X1[iblk] - 1) <= kZeroInput) {
    NU1.LATCH[ist] = 1;
    y = 1;
  }
  blsub(mode, y, 0, iblk);
}

// TON: 1 once a positive input has lasted A; reset when the input falls.
void bl43(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist) {
  start_step(ist);
  double y = 0;
  if (off(X(iblk))) {
    NU1.LATCH[ist] = 0;
    NU1.TMR[ist] = 0;
  } else if (NU1.LATCH[ist] == 1) {
    if (NU1.TMR[ist] <= (P(ipar, 1) - COMM7.DT) - kTimerTolerance) {
      if (NNU1.IPRED == 0) NU1.TMR[ist] += COMM7.DT;
    } else {
      y = 1;
    }
  } else {
    NU1.LATCH[ist] = 1;
  }
  blsub(mode, y, 0, iblk);
}

// CNT: counts pulses of X1 before the time A and from the time B after the
// start X2.  The steady state gives 0.  The count handed on when no test
// adds is the last one this routine held, whichever block 47 that was.
void bl47(int32_t mode, int32_t ipar, int32_t iblk) {
  double& y = UDKEEP.cnt_y;
  if (mode != 0) {
    y = 0;
  } else {
    const double t = UDXY.X2[iblk] - COMM7.DT;
    const bool pulse = std::fabs(UDXY.X1[iblk] - 1) < kPulseTolerance && NNU1.IPRED == 0;
    if (t < P(ipar, 1) && pulse) y = UDXY.Y[iblk] + 1;
    if (t >= P(ipar, 2) && pulse) y = y + 1;
  }
  blsub(mode, y, 0, iblk);
}

// TMAX: latches on a positive X1 and gives 1 once its timer reaches X2.
void bl52(int32_t mode, int32_t, int32_t iblk, int32_t ist) {
  start_step(ist);
  double y = 0;
  if (NU1.LATCH[ist] == 1) {
    if (UDXY.X2[iblk] <= NU1.TMR[ist]) {
      y = 1;
    } else if (NNU1.IPRED == 0) {
      NU1.TMR[ist] += COMM7.DT;
    }
  } else if (!off(UDXY.X1[iblk])) {
    NU1.LATCH[ist] = 1;
    NU1.TMR[ist] += COMM7.DT;
  }
  blsub(mode, y, 0, iblk);
}

}  // namespace lf

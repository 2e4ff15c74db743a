// The dynamic blocks: lead-lag, differentiator, integrator, first-order lag,
// one-pass memory and second-order filter.  In the steady-state form an
// integrating block adds its scaled input to its output at every pass, which
// is what lets a model settle a controlled quantity over the iterations.
#include <cmath>

#include "control/blocks.hpp"
#include "control/blocks_common.hpp"

namespace lf {

using namespace blk;

namespace {

// Clamps y to at most hi and at least lo, in that order.
double clamp(double y, double hi, double lo) {
  if (y > hi) y = hi;
  if (y < lo) y = lo;
  return y;
}

}  // namespace

// DY1: D dY/dt + C Y = E (A X + B DX), limits F (upper) and G (lower).
void bl1(int32_t mode, int32_t ipar, int32_t iblk) {
  const double a = P(ipar, 1), b = P(ipar, 2), c = P(ipar, 3), e = P(ipar, 5);
  const double d = guard_signed(P(ipar, 4), "  Warning: Block DY1 Para. D=0 ");
  const double x = X(iblk), dx = DX(iblk);
  double y, dy;
  if (mode == 0) {
    const double h = COMM7.DT * 0.5, g = h * c / d + 1, k = (h * e / d) / g;
    y = (h / g) * UDXY.DYO[iblk] + k * b * dx + k * a * x + (1 / g) * UDXY.YO[iblk];
    dy = ((b * e) / d) * dx + ((e * a) / d) * x - (c / d) * y;
  } else {
    dy = 0;
    // Without a feedback term the block integrates from pass to pass.
    y = std::fabs(c) >= kTinyDivisor ? (a * x * e) / c : (a * e * x) / d + UDXY.Y[iblk];
  }
  blsub(mode, clamp(y, P(ipar, 6), P(ipar, 7)), dy, iblk);
}

// DIFF: Y = A DX; nothing in the steady state.
void bl2(int32_t mode, int32_t ipar, int32_t iblk) {
  double y = 0, dy = 0;
  if (mode == 0) {
    y = DX(iblk) * P(ipar, 1);
    dy = (y - UDXY.YO[iblk]) / COMM7.DT;
  }
  blsub(mode, y, dy, iblk);
}

// INTG: dY/dt = (E / D) X, limits F and G.  The steady-state step is E X,
// without D.
void bl3(int32_t mode, int32_t ipar, int32_t iblk) {
  const double d = guard_signed(P(ipar, 1), "  Warning: Block INTG Para. D=0 ");
  const double e = P(ipar, 2), x = X(iblk);
  double y, dy;
  if (mode == 0) {
    y = ((COMM7.DT * 0.5 * e) / d) * x + COMM7.DT * 0.5 * UDXY.DYO[iblk] + UDXY.YO[iblk];
    dy = (e / d) * x;
  } else {
    y = x * e + UDXY.Y[iblk];
    dy = 0;
  }
  blsub(mode, clamp(y, P(ipar, 3), P(ipar, 4)), dy, iblk);
}

// DY2: D dY/dt + Y = E X, limits F and G.
void bl4(int32_t mode, int32_t ipar, int32_t iblk) {
  const double d = guard_signed(P(ipar, 1), "  Warning: Block DY2 Para. D=0 ");
  const double e = P(ipar, 2), x = X(iblk);
  double y, dy;
  if (mode == 0) {
    const double h = COMM7.DT * 0.5, g = h / d + 1;
    y = ((h * e / d) / g) * x + (h / g) * UDXY.DYO[iblk] + (1 / g) * UDXY.YO[iblk];
    dy = (e / d) * x - (1 / d) * y;
  } else {
    y = x * e;
    dy = 0;
  }
  blsub(mode, clamp(y, P(ipar, 3), P(ipar, 4)), dy, iblk);
}

// HOLD: hands on what it kept in the previous pass, then keeps its input.
void bl49(int32_t mode, int32_t, int32_t iblk) {
  const double y = UDXY.YO[iblk], dy = UDXY.DYO[iblk];
  if (NNU1.IPRED == 0) {
    UDXY.YO[iblk] = X(iblk);
    UDXY.DYO[iblk] = DX(iblk);
  }
  blsub(mode, y, dy, iblk);
}

// FILT: A y'' + B y' + y = E x.  The steady state is E x.
void bl51(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist) {
  const double b = P(ipar, 2), e = P(ipar, 3), x = X(iblk);
  double y, dy, ddy;
  if (mode == 0) {
    const double a = guard_signed(P(ipar, 1), "  Warning: Block FILT Para. A=0 ");
    const double h = COMM7.DT * 0.5, r = h / a, q = h * h / a, yo = UDXY.YO[iblk];
    dy = ((r * e * x + h * NU1.FS2O[ist] + (1 - q) * NU1.FS1O[ist]) - r * yo) / (r * b + 1 + q);
    y = (dy + NU1.FS1O[ist]) * h + yo;
    ddy = ((x * e - b * dy) - y) / a;
  } else {
    dy = 0;
    y = x * e;
    ddy = 0;
  }
  NU1.FS1N[ist] = dy;
  NU1.FS2N[ist] = ddy;
  blsub(mode, y, dy, iblk);
}

}  // namespace lf

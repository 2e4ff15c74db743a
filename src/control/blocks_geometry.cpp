// The blocks of plane geometry: phasors packed into one signal, angles,
// magnitudes of compensated voltages and tests of a point against circles.
#include <cmath>

#include "control/blocks.hpp"
#include "control/blocks_common.hpp"
#include "support/angles.hpp"

namespace lf {

using namespace blk;

namespace {

// A phasor packed into one real: the integer part is the magnitude times
// kPackScale, the fraction the angle in radians times kAnglePack.  Both
// directions multiply, by the decimals below, so that the values round as
// designed.
constexpr double kPackScale = 100000;
constexpr double kPackUnscale = 1.0E-5;
constexpr double kAnglePack = 0.1;
constexpr double kAngleUnpack = 10;

double pack(double re, double im) {
  const double m = std::trunc(std::sqrt(re * re + im * im) * kPackScale + 0.5);
  double a = 0;
  dger(re, im, a);
  return kAnglePack * a + m;
}
void unpack(double v, double& re, double& im) {
  const double n = std::trunc(v);
  const double angle = (v - n) * kAngleUnpack;
  const double mag = static_cast<float>(kPackUnscale * n);
  re = mag * std::cos(angle);
  im = mag * std::sin(angle);
}

}  // namespace

void dger(double x, double y, double& ang) {
  if (std::fabs(x) >= kZeroInput) {
    const double a = std::atan(y / x);
    if (x <= 0) {
      ang = a + kPiPhasor;
    } else if (y < 0) {
      ang = a + kTwoPiPhasor;
    } else {
      ang = a;
    }
    return;
  }
  ang = y > 0 ? kHalfPiPhasor : y == 0 ? 0.0 : kThreeHalfPiPhasor;
}

// CMPV: the magnitude of the voltage X1 compensated by the current X2
// through the impedance A at angle B, with C + D (A at angle B) the factor
// of the current.
void bl32(int32_t mode, int32_t ipar, int32_t iblk) {
  double r1, i1, r2, i2;
  unpack(UDXY.X1[iblk], r1, i1);
  unpack(UDXY.X2[iblk], r2, i2);
  const double a = P(ipar, 1) * std::cos(P(ipar, 2)), b = P(ipar, 1) * std::sin(P(ipar, 2));
  const double c = P(ipar, 4) * a + P(ipar, 3), d = b * P(ipar, 4);
  const double re = ((r1 * a - i1 * b) - c * i2) - d * r2;
  const double im = (c * r2 + r1 * b + a * i1) - d * i2;
  blsub(mode, std::sqrt(im * im + re * re), 0, iblk);
}

// MHO: 1 inside the circle through the origin of diameter A whose centre
// lies at angle B.
void bl40(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  const double c = P(ipar, 1) / 2, ang = P(ipar, 2);
  const double dx = UDXY.X1[iblk] - c * std::cos(ang), dy = UDXY.X2[iblk] - c * std::sin(ang);
  blsub(mode, 2 * std::sqrt(dx * dx + dy * dy) < P(ipar, 1) ? 1.0 : 0.0, 0, iblk);
}

// CIRC: 1 inside the circle of diameter A with centre (B, C).
void bl41(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  const double dx = UDXY.X1[iblk] - P(ipar, 2), dy = UDXY.X2[iblk] - P(ipar, 3);
  blsub(mode, 2 * std::sqrt(dx * dx + dy * dy) < P(ipar, 1) ? 1.0 : 0.0, 0, iblk);
}

// PACK: (X1, X2) and (DX1, DX2) as packed phasors.
void bl46(int32_t mode, int32_t, int32_t iblk) {
  blsub(mode, pack(UDXY.X1[iblk], UDXY.X2[iblk]), pack(UDXY.DX1[iblk], UDXY.DX2[iblk]), iblk);
}

// ANGL: the angle of (X1, X2) in -pi .. pi, with the literal constants of
// the design; X1 negative with X2 exactly 0 gives 0.
void bl48(int32_t mode, int32_t, int32_t iblk) {
  const double x1 = UDXY.X1[iblk], x2 = UDXY.X2[iblk];
  double a;
  if (std::fabs(x1) > kTinyOutput) {
    a = std::atan(x2 / x1);
    if (x1 < 0) {
      if (x2 > 0) a = a + kPiPoint;
      if (x2 < 0) a = a - kPiPoint;
    }
  } else {
    a = x2 > 0 ? kHalfPiPoint : x2 == 0 ? 0.0 : -kHalfPiPoint;
  }
  blsub(mode, a, 0, iblk);
}

}  // namespace lf

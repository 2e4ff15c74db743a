// The static arithmetic blocks: sums, products, functions, switches and
// piecewise-linear curves.  They are the same in both forms, except where
// the time decides (15).
#include <algorithm>
#include <cmath>

#include "control/blocks.hpp"
#include "control/blocks_common.hpp"

namespace lf {

using namespace blk;

// BIAS: Y = X - A.
void bl5(int32_t mode, int32_t ipar, int32_t iblk) {
  blsub(mode, X(iblk) - P(ipar, 1), DX(iblk), iblk);
}

// EXPF: Y = A exp(B X).
void bl6(int32_t mode, int32_t ipar, int32_t iblk) {
  const double y = P(ipar, 1) * std::exp(P(ipar, 2) * X(iblk));
  blsub(mode, y, DX(iblk) * P(ipar, 2) * y, iblk);
}

// LIMT: X clamped to at most F and at least G.  The derivative is kept at
// the lower limit, since its test follows the clamp.
void bl7(int32_t mode, int32_t ipar, int32_t iblk) {
  double y = X(iblk);
  if (y > P(ipar, 1)) y = P(ipar, 1);
  if (y < P(ipar, 2)) y = P(ipar, 2);
  blsub(mode, y, y <= P(ipar, 1) ? DX(iblk) : 0.0, iblk);
}

// CONS: Y = A.
void bl8(int32_t mode, int32_t ipar, int32_t iblk) {
  blsub(mode, P(ipar, 1), 0, iblk);
}

// DIVD: Y = X1 / X2, 0 for a vanishing X2.
void bl9(int32_t mode, int32_t, int32_t iblk) {
  const double x1 = UDXY.X1[iblk], x2 = UDXY.X2[iblk];
  if (std::fabs(x2) < kTinyOutput) return blsub(mode, 0, 0, iblk);
  blsub(mode, x1 / x2, ((x2 * UDXY.DX1[iblk] - UDXY.DX2[iblk] * x1) / x2) / x2, iblk);
}

// SUMK: Y = A X1 + B X2.
void bl10(int32_t mode, int32_t ipar, int32_t iblk) {
  const double a = P(ipar, 1), b = P(ipar, 2);
  blsub(mode, a * UDXY.X1[iblk] + b * UDXY.X2[iblk], a * UDXY.DX1[iblk] + b * UDXY.DX2[iblk], iblk);
}

// MULT: Y = A X1 X2.
void bl11(int32_t mode, int32_t ipar, int32_t iblk) {
  const double a = P(ipar, 1), x1 = UDXY.X1[iblk], x2 = UDXY.X2[iblk];
  blsub(mode, a * x1 * x2, a * (UDXY.DX2[iblk] * x1 + x2 * UDXY.DX1[iblk]), iblk);
}

// RAMP: G up to A, F from B, a straight line between.  The routine's
// working values persist between calls, so a case that no branch covers
// hands on the last value.
void bl14(int32_t mode, int32_t ipar, int32_t iblk) {
  double &y = UDKEEP.ramp_y, &dy = UDKEEP.ramp_dy;
  const double a = P(ipar, 1), b = P(ipar, 2), f = P(ipar, 3), g = P(ipar, 4), x = X(iblk);
  const double d = guard(b - a, "  Warning: Block RAMP Para. A=B ");
  if (x <= a) {
    y = g, dy = 0;
  } else if (x >= b) {
    y = f, dy = 0;
  } else {
    y = (x - a) * (f - g) / d + g;
    dy = (f - g) * DX(iblk) / d;
  }
  blsub(mode, y, dy, iblk);
}

// TSWT: the first input until the time A, then the second.  The load flow's
// time is 0.
void bl15(int32_t mode, int32_t ipar, int32_t iblk) {
  if (COMM7.DT * NOST1.KSTEP < P(ipar, 1)) return blsub(mode, UDXY.X1[iblk], UDXY.DX1[iblk], iblk);
  blsub(mode, UDXY.X2[iblk], UDXY.DX2[iblk], iblk);
}

// PSWT: the second input when A >= 0, else the first.
void bl16(int32_t mode, int32_t ipar, int32_t iblk) {
  if (P(ipar, 1) >= 0) return blsub(mode, UDXY.X2[iblk], UDXY.DX2[iblk], iblk);
  blsub(mode, UDXY.X1[iblk], UDXY.DX1[iblk], iblk);
}

// POWR: Y = (A X1 + B X2) to the power C.
void bl17(int32_t mode, int32_t ipar, int32_t iblk) {
  const double a = P(ipar, 1), b = P(ipar, 2), c = P(ipar, 3);
  const double t = a * UDXY.X1[iblk] + b * UDXY.X2[iblk];
  blsub(mode, std::pow(t, c), (b * UDXY.DX2[iblk] + a * UDXY.DX1[iblk]) * std::pow(t, c - 1) * c,
        iblk);
}

// SINF, COSF.
void bl18(int32_t mode, int32_t, int32_t iblk) {
  const double x = X(iblk);
  blsub(mode, std::sin(x), DX(iblk) * std::cos(x), iblk);
}
void bl19(int32_t mode, int32_t, int32_t iblk) {
  const double x = X(iblk);
  blsub(mode, std::cos(x), -DX(iblk) * std::sin(x), iblk);
}

// ACOS of X cut to -1 .. 1.
void bl20(int32_t mode, int32_t, int32_t iblk) {
  const double x = std::clamp(X(iblk), -1.0, 1.0);
  double r = std::sqrt(1 - x * x);
  if (std::fabs(r) < kTinyDivisor) r = kTinyDivisor;
  blsub(mode, std::acos(x), -DX(iblk) / r, iblk);
}

// MAGN: Y = |X1 + j X2|.
void bl22(int32_t mode, int32_t, int32_t iblk) {
  const double x1 = UDXY.X1[iblk], x2 = UDXY.X2[iblk];
  const double y = std::sqrt(x2 * x2 + x1 * x1);
  blsub(mode, y, y >= kTinyOutput ? (x2 * UDXY.DX2[iblk] + x1 * UDXY.DX1[iblk]) / y : 0.0, iblk);
}

// SQR1: Y = sqrt(1 - X1 X1), of the first input only.
void bl28(int32_t mode, int32_t, int32_t iblk) {
  const double x1 = UDXY.X1[iblk];
  double v = 1 - x1 * x1;
  if (v < kTinyOutput) v = 0;
  const double y = std::sqrt(v);
  blsub(mode, y, y >= kTinyOutput ? -(x1 * UDXY.DX1[iblk]) / y : 0.0, iblk);
}

// SQUA: Y = X X.
void bl29(int32_t mode, int32_t, int32_t iblk) {
  const double x = X(iblk);
  blsub(mode, x * x, DX(iblk) * (x + x), iblk);
}

// LINE: from (A, C) to (B, D), 0 outside.
void bl30(int32_t mode, int32_t ipar, int32_t iblk) {
  double &y = UDKEEP.line_y, &dy = UDKEEP.line_dy;
  const double a = P(ipar, 1), b = P(ipar, 2), c = P(ipar, 3), d = P(ipar, 4), x = X(iblk);
  const double w = guard(b - a, "  Warning: Block LINE Para. A=B ");
  if (x < a || x > b) {
    y = 0, dy = 0;
  } else {
    y = (x - a) * (d - c) / w + c;
    dy = DX(iblk) * (d - c) / w;
  }
  blsub(mode, y, dy, iblk);
}

// ML: three segments through (0, 0), (A, D), (B, E), (C, F), flat behind C.
// At a break point the later segment decides.
void bl31(int32_t mode, int32_t ipar, int32_t iblk) {
  double &y = UDKEEP.ml_y, &dy = UDKEEP.ml_dy;
  const double a = P(ipar, 1), b = P(ipar, 2), c = P(ipar, 3);
  const double d = P(ipar, 4), e = P(ipar, 5), f = P(ipar, 6);
  const double da = guard(a, "  Warning: Block ML Para. A=0 ");
  const double db = guard(b - a, "  Warning: Block ML Para. A=B ");
  const double dc = guard(c - b, "  Warning: Block ML Para. B=C ");
  const double x = X(iblk), dx = DX(iblk);
  if (x < 0) {
    y = 0, dy = 0;
  } else {
    if (x <= a) y = x * d / da, dy = d * dx / da;
    if (a <= x && x <= b) y = (x - a) * (e - d) / db + d, dy = (e - d) * dx / db;
    if (b <= x && x <= c) y = (x - b) * (f - e) / dc + e, dy = (f - e) * dx / dc;
    if (x > c) y = f, dy = 0;
  }
  blsub(mode, y, dy, iblk);
}

// FEX: the loading function of a rectifier, of the first input.  The middle
// segment's derivative lacks the factor DX1 on purpose.
void bl33(int32_t mode, int32_t ipar, int32_t iblk) {
  double &y = UDKEEP.fex_y, &dy = UDKEEP.fex_dy;
  const double a = P(ipar, 1), b = P(ipar, 2), c = P(ipar, 3), d = P(ipar, 4), e = P(ipar, 5);
  const double x = UDXY.X1[iblk];
  if (x <= a) y = 1 - x * c, dy = -(UDXY.DX1[iblk] * c);
  if (a < x && x < b) {
    y = std::sqrt(d - x * x);
    const double t = guard(y, "  Warning: Block FEX Para. D=X*X ");
    dy = -(x / t);
  }
  if (x >= b) y = (1 - x) * e, dy = -e;
  blsub(mode, y, dy, iblk);
}

// ATAN: Y = arctan X; the derivative divides by 1 - X X, as designed.
void bl45(int32_t mode, int32_t, int32_t iblk) {
  const double x = X(iblk);
  double w = 1 - x * x;
  if (std::fabs(w) < kTinyDivisor) w = kTinyDivisor;
  blsub(mode, std::atan(x), DX(iblk) / w, iblk);
}

// SQRT: Y = sqrt(A X1 + B X2).
void bl50(int32_t mode, int32_t ipar, int32_t iblk) {
  const double a = P(ipar, 1), b = P(ipar, 2);
  const double y = std::sqrt(b * UDXY.X2[iblk] + a * UDXY.X1[iblk]);
  blsub(mode, y, y >= kTinyOutput ? ((b * UDXY.DX2[iblk] + a * UDXY.DX1[iblk]) * 0.5) / y : 0.0,
        iblk);
}

}  // namespace lf

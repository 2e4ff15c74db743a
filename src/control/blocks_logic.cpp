// The comparing blocks: larger and smaller input, gates, logic and the tests
// of a point against lines, bands and a dead band.  All of them follow the
// hold rule: in a predictor step they hand on their present output.
#include <cmath>

#include "control/blocks.hpp"
#include "control/blocks_common.hpp"

namespace lf {

using namespace blk;

namespace {

// A yes-or-no output: 1 or 0, no derivative.
void flag(int32_t mode, int32_t iblk, bool on) {
  blsub(mode, on ? 1.0 : 0.0, 0, iblk);
}
// One input handed on with its derivative.
void first(int32_t mode, int32_t iblk) {
  blsub(mode, UDXY.X1[iblk], UDXY.DX1[iblk], iblk);
}
void second(int32_t mode, int32_t iblk) {
  blsub(mode, UDXY.X2[iblk], UDXY.DX2[iblk], iblk);
}

}  // namespace

// MAXV, MINV.
void bl12(int32_t mode, int32_t, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  UDXY.X1[iblk] >= UDXY.X2[iblk] ? first(mode, iblk) : second(mode, iblk);
}
void bl13(int32_t mode, int32_t, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  UDXY.X1[iblk] >= UDXY.X2[iblk] ? second(mode, iblk) : first(mode, iblk);
}

// GATE: X1 while A <= X2 < B, else 0; NGAT the opposite.
void bl23(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  const double x2 = UDXY.X2[iblk];
  if (P(ipar, 1) <= x2 && x2 < P(ipar, 2)) return first(mode, iblk);
  blsub(mode, 0, 0, iblk);
}
void bl24(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  const double x2 = UDXY.X2[iblk];
  if (P(ipar, 1) <= x2 && x2 < P(ipar, 2)) return blsub(mode, 0, 0, iblk);
  first(mode, iblk);
}

// AND2, OR2 of X1 >= A and X2 >= B.
void bl25(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  flag(mode, iblk, UDXY.X1[iblk] >= P(ipar, 1) && UDXY.X2[iblk] >= P(ipar, 2));
}
void bl26(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  flag(mode, iblk, UDXY.X1[iblk] >= P(ipar, 1) || UDXY.X2[iblk] >= P(ipar, 2));
}

// LNLO, LNHI: X2 below or above the line A + B X1; LNLX, LNHX: X1 against
// the line A + B X2.
namespace {
void against_line(int32_t mode, int32_t ipar, int32_t iblk, double v, double u, bool below) {
  if (held_in_predictor(mode, iblk)) return;
  const double line = P(ipar, 2) * u + P(ipar, 1);
  flag(mode, iblk, below ? v <= line : v >= line);
}
}  // namespace
void bl34(int32_t mode, int32_t ipar, int32_t iblk) {
  against_line(mode, ipar, iblk, UDXY.X2[iblk], UDXY.X1[iblk], true);
}
void bl35(int32_t mode, int32_t ipar, int32_t iblk) {
  against_line(mode, ipar, iblk, UDXY.X2[iblk], UDXY.X1[iblk], false);
}
void bl36(int32_t mode, int32_t ipar, int32_t iblk) {
  against_line(mode, ipar, iblk, UDXY.X1[iblk], UDXY.X2[iblk], true);
}
void bl37(int32_t mode, int32_t ipar, int32_t iblk) {
  against_line(mode, ipar, iblk, UDXY.X1[iblk], UDXY.X2[iblk], false);
}

// BAND: X2 between the lines C + D X1 and A + B X1; BANX the same with the
// inputs exchanged.
void bl38(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  const double x1 = UDXY.X1[iblk], x2 = UDXY.X2[iblk];
  flag(mode, iblk, P(ipar, 4) * x1 + P(ipar, 3) <= x2 && x2 <= P(ipar, 2) * x1 + P(ipar, 1));
}
void bl39(int32_t mode, int32_t ipar, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  const double x1 = UDXY.X1[iblk], x2 = UDXY.X2[iblk];
  flag(mode, iblk, P(ipar, 4) * x2 + P(ipar, 3) <= x1 && x1 <= P(ipar, 2) * x2 + P(ipar, 1));
}

// CMPR: 1 when X1 <= X2.
void bl42(int32_t mode, int32_t, int32_t iblk) {
  if (held_in_predictor(mode, iblk)) return;
  flag(mode, iblk, UDXY.X1[iblk] <= UDXY.X2[iblk]);
}

// DEAD: 0 within B of A, the distance beyond the band outside.  At exactly
// the band's edge neither side applies and the last value stands.
void bl44(int32_t mode, int32_t ipar, int32_t iblk) {
  double& y = UDKEEP.dead_y;
  if (held_in_predictor(mode, iblk)) return;
  const double a = P(ipar, 1), b = P(ipar, 2), x = X(iblk);
  double dy = DX(iblk);
  const double e = x - a;
  if (std::fabs(e) < b) {
    y = 0, dy = 0;
  } else {
    if (b < e) y = e - b;
    if (b < a - x) y = e + b;
  }
  blsub(mode, y, dy, iblk);
}

}  // namespace lf

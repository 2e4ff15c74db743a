#include "sparse/ymatrix.hpp"

#include <algorithm>
#include <cmath>

#include "store/store.hpp"
#include "support/sortsearch.hpp"

namespace lf {

void YRec::grow(std::size_t n, std::size_t ne) {
  IY.grow(n + 1);
  YG.grow(ne);
  YB.grow(ne);
  JY.grow(ne);
  LKROW.grow(ne);
  LKNEXT.grow(ne);
  CSTART.grow(n + 1);
  CROW.grow(ne);
  CG.grow(ne);
  CB.grow(ne);
}

namespace {
YRec make_y() {
  YRec y;
  y.grow(kCapBus, kCapYEntries);
  return y;
}
}  // namespace

YRec Y = make_y();
Arr<int32_t> NEW(kCapBus);
Arr<int32_t> IOU(kCapBus);

}  // namespace lf

namespace lf {

namespace {
// Impedances smaller than this in squared size are taken at this size.
constexpr double kTinyZ2 = 1e-20;
// A turns ratio at or below this (single-precision 1e-6) counts as 1.
constexpr double kMinRatio = 9.999999974752427e-07;
}  // namespace

void formy(int32_t nb, int32_t n, int32_t ny, const Arr<int32_t>& newnum, const Arr<int32_t>& iou,
           const Arr<int32_t>& i, const Arr<int32_t>& j, const Arr<double>& r, const Arr<double>& x,
           const Arr<double>& bc, const Arr<double>& k, Arr<double>& yg, Arr<double>& yb,
           Arr<int32_t>& iy, Arr<int32_t>& jy) {
  // Row layout: diagonal first, then room for the distinct higher neighbours.
  Arr<int32_t> tail(static_cast<std::size_t>(std::max(n, 0)));
  iy[1] = 1;
  for (int32_t row = 1; row <= n; ++row) {
    iy[row + 1] = iy[row] + iou[row] + 1;
    jy[iy[row]] = row;
    tail[row] = iy[row];
  }
  yg.clear(static_cast<std::size_t>(ny));
  yb.clear(static_cast<std::size_t>(ny));

  for (int32_t br = 1; br <= nb; ++br) {
    double z2 = r[br] * r[br] + x[br] * x[br];
    if (std::fabs(z2) < kTinyZ2) z2 = kTinyZ2;
    double g = r[br] / z2;
    double b = -x[br] / z2;
    double kk = k[br] > kMinRatio ? k[br] : 1.0;
    int32_t a = newnum[i[br]];
    int32_t c = newnum[j[br]];
    if (a != c) {
      int32_t lo = std::min(a, c), hi = std::max(a, c);
      int32_t base = iy[lo];
      int32_t pos = 0, found = 0;
      q2searchi(jy.data() + base + 1, tail[lo] - base, hi, pos, found);
      int32_t at = base + pos;
      if (found == 0) {
        // Open a place behind pos, keeping the row's columns ascending.
        ++at;
        for (int32_t t = tail[lo]; t >= at; --t) {
          jy[t + 1] = jy[t];
          yg[t + 1] = yg[t];
          yb[t + 1] = yb[t];
        }
        yg[at] = 0.0;
        yb[at] = 0.0;
        ++tail[lo];
      }
      jy[at] = hi;
      yg[at] -= g / kk;
      yb[at] -= b / kk;
      yg[iy[a]] += g;
      yb[iy[a]] += b + bc[br];
      yg[iy[c]] += g / (kk * kk);
      yb[iy[c]] += b / (kk * kk) + bc[br];
    } else if (a != 0) {
      yg[iy[a]] += g;
      yb[iy[a]] += b;
    }
  }
}

void adlink(const Arr<int32_t>& iy, const Arr<int32_t>& jy, int32_t n, int32_t ny,
            Arr<int32_t>& lkrow, Arr<int32_t>& lknext) {
  lkrow.clear(static_cast<std::size_t>(ny));
  lknext.clear(static_cast<std::size_t>(ny));
  Arr<int32_t> last(static_cast<std::size_t>(std::max(n, 0)));
  int32_t row = 1;
  for (int32_t e = 1; e <= ny; ++e) {
    while (row < n && e >= iy[row + 1]) ++row;
    int32_t c = jy[e];
    int32_t p = last[c];
    if (row != c) {
      int32_t from = p != 0 ? p : iy[c];
      lkrow[from] = row;
      lknext[from] = e;
      last[c] = e;
    } else if (p != 0) {
      lkrow[p] = row;
      lknext[p] = e;
    }
  }
}

namespace {

// Lays out the entries above the diagonal by column (CSTART, CROW, CG, CB),
// going along the rows so that each column's entries come in ascending row.
void by_column(int32_t n) {
  const std::size_t cols = static_cast<std::size_t>(std::max(n, 0));
  Y.CSTART.clear(cols + 1);
  for (int32_t r = 1; r <= n; ++r)
    for (int32_t e = Y.IY[r] + 1; e < Y.IY[r + 1]; ++e) ++Y.CSTART[Y.JY[e]];
  // From counts to the first place of each column, then each place filled.
  int32_t place = 1;
  for (int32_t c = 1; c <= n; ++c) {
    const int32_t count = Y.CSTART[c];
    Y.CSTART[c] = place;
    place += count;
  }
  Y.CSTART[n + 1] = place;
  Arr<int32_t> next(cols);
  for (int32_t c = 1; c <= n; ++c) next[c] = Y.CSTART[c];
  for (int32_t r = 1; r <= n; ++r) {
    for (int32_t e = Y.IY[r] + 1; e < Y.IY[r + 1]; ++e) {
      const int32_t t = next[Y.JY[e]]++;
      Y.CROW[t] = r;
      Y.CG[t] = Y.YG[e];
      Y.CB[t] = Y.YB[e];
    }
  }
}

}  // namespace

void fomy12() {
  const int32_t n = NO.nnode, ny = NO.NYENT;
  Y.grow(static_cast<std::size_t>(std::max(n, 0)), static_cast<std::size_t>(std::max(ny, 0)));
  formy(NO.nbranch, n, ny, NEW, IOU, IJB.I, IJB.J, RXB.R, RXB.X, RXB.B, RXB.T, Y.YG, Y.YB, Y.IY,
        Y.JY);
  adlink(Y.IY, Y.JY, n, ny, Y.LKROW, Y.LKNEXT);
  by_column(n);
}

}  // namespace lf

#include "sparse/symfactor.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <vector>

namespace lf {

namespace {

// Makes sure that the factor arrays hold position q, growing at least twofold.
void room(int32_t q, Arr<int32_t>& jl, Arr<int32_t>& lnrow, Arr<int32_t>& lnpos, Arr<double>& lv) {
  if (static_cast<std::size_t>(q) <= lv.size() && static_cast<std::size_t>(q) <= jl.size() &&
      static_cast<std::size_t>(q) <= lnrow.size() && static_cast<std::size_t>(q) <= lnpos.size())
    return;
  std::size_t want = std::max<std::size_t>(static_cast<std::size_t>(q), 2 * lv.size());
  jl.grow(want);
  lnrow.grow(want);
  lnpos.grow(want);
  lv.grow(want);
}

}  // namespace

void daxpy([[maybe_unused]] int32_t nfix, int32_t& nw, double* w, int32_t* wj, int32_t m,
           const double* x, const int32_t* xj, int32_t thr, double alpha) {
  int32_t t0 = 0;
  while (t0 < m && xj[t0] < thr) ++t0;
  if (t0 == m) return;
  // Forward merge: add into the columns present, count the new ones.
  int32_t added = 0;
  int32_t u = 0;
  for (int32_t t = t0; t < m; ++t) {
    while (u < nw && wj[u] < xj[t]) ++u;
    if (u < nw && wj[u] == xj[t]) {
      w[u] += alpha * x[t];
    } else {
      ++added;
    }
  }
  if (added == 0) return;
  assert(nw + added <= nfix);
  // Backward merge in place: the row ends up with all columns in order.
  int32_t to = nw + added - 1;
  u = nw - 1;
  for (int32_t t = m - 1; t >= t0; --t) {
    while (u >= 0 && wj[u] > xj[t]) {
      w[to] = w[u];
      wj[to] = wj[u];
      --to;
      --u;
    }
    if (u >= 0 && wj[u] == xj[t]) {
      w[to] = w[u];
      wj[to] = wj[u];
      --u;
    } else {
      w[to] = alpha * x[t];
      wj[to] = xj[t];
    }
    --to;
  }
  nw += added;
}

void symtri71(const SymMatrix& A, int32_t capacity, SymFactors& f, Arr<double>& lv) {
  const int32_t n = A.n;
  const int32_t* ia = A.ia;
  const int32_t* ja = A.ja;
  const double* a = A.a;
  f.n = n;
  Arr<int32_t>&il = f.il, &jl = f.jl, &lnrow = f.lnrow, &lnpos = f.lnpos;
  il.grow(static_cast<std::size_t>(n) + 1);
  room(std::max(capacity, 1), jl, lnrow, lnpos, lv);
  const std::size_t cols = static_cast<std::size_t>(n) + 1;
  std::vector<double> w(cols);
  std::vector<int32_t> wj(cols), first(cols), firstrow(cols), lastpos(cols);
  il[1] = 1;
  int32_t q = 1;
  for (int32_t i = 1; i <= n; ++i) {
    // The row of the matrix, diagonal first.
    int32_t nw = ia[i + 1] - ia[i];
    for (int32_t t = 0; t < nw; ++t) {
      w[static_cast<std::size_t>(t)] = a[ia[i] + t];
      wj[static_cast<std::size_t>(t)] = ja[ia[i] + t];
    }
    // Rows r < i with an entry u[r][i]: row i -= d[r] u[r][i] (row r from column i on).
    int32_t r = firstrow[static_cast<std::size_t>(i)];
    int32_t p = first[static_cast<std::size_t>(i)];
    while (p != 0 && r < i) {
      double alpha = -(lv[il[r]] * lv[p]);
      daxpy(n, nw, w.data(), wj.data(), il[r + 1] - p, lv.data() + p, jl.data() + p, i, alpha);
      r = lnrow[p];
      p = lnpos[p];
    }
    double d = w[0];
    if (std::fabs(d) <= kTinyPivot) d = d >= 0.0 ? kTinyPivot : -kTinyPivot;

    room(q + nw - 1, jl, lnrow, lnpos, lv);
    lv[q] = d;
    jl[q] = i;
    const double rec = 1.0 / d;
    for (int32_t t = 1; t < nw; ++t) {
      lv[q + t] = rec * w[static_cast<std::size_t>(t)];
      jl[q + t] = wj[static_cast<std::size_t>(t)];
    }
    il[i + 1] = q + nw;

    // The pivot leads into column i's chain, whose last entry leads back.
    lnrow[q] = firstrow[static_cast<std::size_t>(i)];
    lnpos[q] = first[static_cast<std::size_t>(i)];
    if (int32_t lp = lastpos[static_cast<std::size_t>(i)]; lp != 0) {
      lnrow[lp] = i;
      lnpos[lp] = q;
    }
    for (int32_t s = q + 1; s < q + nw; ++s) {
      const std::size_t c = static_cast<std::size_t>(jl[s]);
      lnrow[s] = 0;
      lnpos[s] = 0;
      if (first[c] == 0) {
        first[c] = s;
        firstrow[c] = i;
      }
      if (lastpos[c] != 0) {
        lnrow[lastpos[c]] = i;
        lnpos[lastpos[c]] = s;
      }
      lastpos[c] = s;
    }
    q += nw;
  }
}

void solvxs(const SymFactors& f, Arr<double>& lv, const Arr<double>& b, Arr<double>& x) {
  const int32_t n = f.n;
  const int32_t* pil = f.il.data();
  const int32_t* pjl = f.jl.data();
  const int32_t* prow = f.lnrow.data();
  const int32_t* ppos = f.lnpos.data();
  double* pv = lv.data();
  const double* pb = b.data();
  double* px = x.data();
  for (int32_t i = 1; i <= n; ++i) {
    double s = 0.0;
    int32_t p = pil[i];
    for (int32_t c = prow[p]; c != 0 && c != i; c = prow[p]) {
      p = ppos[p];
      s += pv[p] * px[c];
    }
    px[i] = pb[i] - s;
  }
  for (int32_t i = 1; i <= n; ++i) {
    double& d = pv[pil[i]];
    if (std::fabs(d) < kTinyPivot) d = d >= 0.0 ? kTinyPivot : -kTinyPivot;
    px[i] /= d;
  }
  for (int32_t i = n; i >= 1; --i) {
    double s = 0.0;
    for (int32_t t = pil[i] + 1; t < pil[i + 1]; ++t) s += pv[t] * px[pjl[t]];
    px[i] -= s;
  }
}

void solvxs(const SymFactors& f, const ComplexIn& lv, const ComplexIn& b, const ComplexOut& x) {
  const int32_t n = f.n;
  const int32_t* pil = f.il.data();
  const int32_t* pjl = f.jl.data();
  const int32_t* prow = f.lnrow.data();
  const int32_t* ppos = f.lnpos.data();
  const double *pv = lv.re.data(), *pvi = lv.im.data();
  const double *pb = b.re.data(), *pbi = b.im.data();
  double *px = x.re.data(), *pxi = x.im.data();
  for (int32_t i = 1; i <= n; ++i) {
    double sr = 0.0, si = 0.0;
    int32_t p = pil[i];
    for (int32_t c = prow[p]; c != 0 && c != i; c = prow[p]) {
      p = ppos[p];
      sr += pv[p] * px[c] - pvi[p] * pxi[c];
      si += pv[p] * pxi[c] + pvi[p] * px[c];
    }
    px[i] = pb[i] - sr;
    pxi[i] = pbi[i] - si;
  }
  for (int32_t i = 1; i <= n; ++i) {
    const double dr = pv[pil[i]], di = pvi[pil[i]];
    double m2 = dr * dr + di * di;
    if (m2 < kTinyPivot) m2 = kTinyPivot;
    const double xr = px[i], xim = pxi[i];
    px[i] = (xr * dr + xim * di) / m2;
    pxi[i] = (xim * dr - xr * di) / m2;
  }
  for (int32_t i = n; i >= 1; --i) {
    double sr = 0.0, si = 0.0;
    for (int32_t t = pil[i] + 1; t < pil[i + 1]; ++t) {
      const int32_t c = pjl[t];
      sr += pv[t] * px[c] - pvi[t] * pxi[c];
      si += pv[t] * pxi[c] + pvi[t] * px[c];
    }
    px[i] -= sr;
    pxi[i] -= si;
  }
}

}  // namespace lf

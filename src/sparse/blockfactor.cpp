#include "sparse/blockfactor.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "sparse/blockwork.hpp"

namespace lf {

namespace {

// Smallest determinant size of a pivot block; smaller ones become +-kTinyDet.
constexpr double kTinyDet = 1e-20;

// The stores of one factorisation, addressed directly.
struct Stores {
  const int32_t *il, *jl, *lnrow, *lnpos, *iu, *ju, *unrow, *unpos;
  double *la, *lb, *lc, *ld, *ua, *ub, *uc, *ud;
};

// The output arrays of nonsym74, which grow with the fill-in.
struct GrowingStores {
  Arr<int32_t>&il, &jl, &lnrow, &lnpos, &iu, &ju, &unrow, &unpos;
  Arr<double>&la, &lb, &lc, &ld, &ua, &ub, &uc, &ud;

  std::size_t size() const {
    return std::min({jl.size(), lnrow.size(), lnpos.size(), ju.size(), unrow.size(), unpos.size(),
                     la.size(), lb.size(), lc.size(), ld.size(), ua.size(), ub.size(), uc.size(),
                     ud.size()});
  }
  // Makes room for positions 1..q, at least doubling.
  void room(std::size_t q) {
    std::size_t have = size();
    if (q <= have) return;
    std::size_t want = std::max(q, 2 * have);
    for (Arr<int32_t>* a : {&jl, &lnrow, &lnpos, &ju, &unrow, &unpos}) a->grow(want);
    for (Arr<double>* a : {&la, &lb, &lc, &ld, &ua, &ub, &uc, &ud}) a->grow(want);
  }
  Stores view() const {
    return {il.data(),    jl.data(),    lnrow.data(), lnpos.data(), iu.data(), ju.data(),
            unrow.data(), unpos.data(), la.data(),    lb.data(),    lc.data(), ld.data(),
            ua.data(),    ub.data(),    uc.data(),    ud.data()};
  }
};

// The matrix and its chains.
struct Matrix {
  const int32_t *ia, *ja, *chfirst, *chfirstrow, *chrow, *chpos, *upfirst;
  const double *aa, *ab, *ac, *ad;
};

// Loads the entries of column i on and below the diagonal into side 0 of the
// work row and those of row i right of the diagonal into side 1.
template <bool Discover>
void load(const Matrix& A, int32_t i, BlockWork& w) {
  if (const int32_t start = A.chfirst[i]; start != 0) {
    int32_t p = start, row = A.chfirstrow[i];
    do {
      if (Discover) w.enter(0, row);
      if (w.has(0, row)) w.set(0, row, A.aa[p], A.ab[p], A.ac[p], A.ad[p]);
      row = A.chrow[p];
      p = A.chpos[p];
    } while (p != start && p != 0);
  }
  const int32_t end = A.ia[i + 1];
  const int32_t from = A.upfirst[i] != 0 ? A.upfirst[i] : end;
  for (int32_t p = from; p < end; ++p) {
    const int32_t c = A.ja[p];
    if (Discover) w.enter(1, c);
    if (w.has(1, c)) w.set(1, c, A.aa[p], A.ab[p], A.ac[p], A.ad[p]);
  }
}

// Column i of L and row i of U in the work row: the matrix's entries less
// the products of the earlier columns and rows.  q is the pivot position of
// i, whose chain is complete.  Each earlier k on the chain holds U[k][i] and
// L[i][k] at one position p: column i of L gets L[., k] U[k][i] taken off
// from row i on, row i of U gets L[i][k] U[k, .] taken off right of column i.
template <bool Discover>
void eliminate(const Matrix& A, const Stores& S, int32_t i, int32_t q, BlockWork& w) {
  load<Discover>(A, i, w);
  for (int32_t p = q, k = S.unrow[p]; k != 0 && k != i; k = S.unrow[p]) {
    p = S.unpos[p];
    const double ualpha[4] = {-S.ua[p], -S.ub[p], -S.uc[p], -S.ud[p]};
    const double lalpha[4] = {-S.la[p], -S.lb[p], -S.lc[p], -S.ld[p]};
    const int32_t m = S.il[k + 1] - p;
    if (Discover) {
      m2axpy(0, w, m, S.jl + p, S.la + p, S.lb + p, S.lc + p, S.ld + p, ualpha);
      m2axpy(1, w, m - 1, S.ju + p + 1, S.ua + p + 1, S.ub + p + 1, S.uc + p + 1, S.ud + p + 1,
             lalpha);
    } else {
      m2axpyo(0, w, m, S.jl + p, S.la + p, S.lb + p, S.lc + p, S.ld + p, ualpha);
      m2axpyo(1, w, m - 1, S.ju + p + 1, S.ua + p + 1, S.ub + p + 1, S.uc + p + 1, S.ud + p + 1,
              lalpha);
    }
  }
}

// Stores the pivot of column i at q and the entries of L and U at the
// positions q+1 .. q+count whose columns jl already names: L as worked out,
// U multiplied from the left by the inverse of the pivot block.
void store(const Stores& S, int32_t i, int32_t q, int32_t count, const BlockWork& w) {
  const double* piv = w.block(0, i);
  const double pa = piv[0], pb = piv[1], pc = piv[2], pd = piv[3];
  S.la[q] = pa;
  S.lb[q] = pb;
  S.lc[q] = pc;
  S.ld[q] = pd;
  S.ua[q] = 1.0;
  S.ub[q] = 0.0;
  S.uc[q] = 0.0;
  S.ud[q] = 1.0;
  double det = pd * pa - pc * pb;
  if (std::fabs(det) <= kTinyDet) det = det >= 0.0 ? kTinyDet : -kTinyDet;
  const double ia = pd / det, ib = -pb / det, ic = -pc / det, id = pa / det;
  for (int32_t s = q + 1; s <= q + count; ++s) {
    const int32_t j = S.jl[s];
    const double* l = w.block(0, j);
    S.la[s] = l[0];
    S.lb[s] = l[1];
    S.lc[s] = l[2];
    S.ld[s] = l[3];
    const double* u = w.block(1, j);
    const double wa = u[0], wb = u[1], wc = u[2], wd = u[3];
    S.ua[s] = ia * wa + ib * wc;
    S.ub[s] = ia * wb + ib * wd;
    S.uc[s] = ic * wa + id * wc;
    S.ud[s] = ic * wb + id * wd;
  }
}

}  // namespace

void adlink7l(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, int32_t nent,
              Arr<int32_t>& chrow, Arr<int32_t>& chpos, Arr<int32_t>& chfirst,
              Arr<int32_t>& chfirstrow, Arr<int32_t>& upfirst) {
  const std::size_t rows = static_cast<std::size_t>(std::max(n, 0)) + 1;
  const std::size_t ents = static_cast<std::size_t>(std::max(nent, 0));
  for (Arr<int32_t>* a : {&chrow, &chpos}) {
    a->grow(ents);
    a->clear(ents);
  }
  for (Arr<int32_t>* a : {&chfirst, &chfirstrow, &upfirst}) {
    a->grow(rows);
    a->clear(rows);
  }
  std::vector<int32_t> last(rows, 0);
  for (int32_t r = 1; r <= n; ++r) {
    for (int32_t p = ia[r]; p < ia[r + 1]; ++p) {
      const int32_t c = ja[p];
      if (c < r && chfirst[c] == 0) {
        chfirst[c] = p;
        chfirstrow[c] = r;
      }
      if (int32_t l = last[static_cast<std::size_t>(c)]; l != 0) {
        chrow[l] = r;
        chpos[l] = p;
      }
      last[static_cast<std::size_t>(c)] = p;
      if (c == r) {
        chfirst[r] = p;
        chfirstrow[r] = r;
        upfirst[r] = p + 1;
        break;
      }
      if (c > r) {
        chfirst[r] = 0;
        upfirst[r] = p;
        break;
      }
    }
  }
  for (int32_t c = 1; c <= n; ++c) {
    if (int32_t l = last[static_cast<std::size_t>(c)]; l != 0) {
      chrow[l] = chfirstrow[c];
      chpos[l] = chfirst[c];
    }
  }
}

void nonsym74(int32_t n, int32_t /*nent*/, int32_t capacity, const Arr<int32_t>& chfirst,
              const Arr<int32_t>& upfirst, const Arr<int32_t>& chfirstrow,
              const Arr<int32_t>& chrow, const Arr<int32_t>& chpos, const Arr<int32_t>& ia,
              const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
              const Arr<double>& ac, const Arr<double>& ad, Arr<int32_t>& il, Arr<int32_t>& jl,
              Arr<int32_t>& lnrow, Arr<int32_t>& lnpos, Arr<double>& la, Arr<double>& lb,
              Arr<double>& lc, Arr<double>& ld, Arr<int32_t>& iu, Arr<int32_t>& ju,
              Arr<int32_t>& unrow, Arr<int32_t>& unpos, Arr<double>& ua, Arr<double>& ub,
              Arr<double>& uc, Arr<double>& ud) {
  const Matrix A{ia.data(),    ja.data(),    chfirst.data(), chfirstrow.data(),
                 chrow.data(), chpos.data(), upfirst.data(), aa.data(),
                 ab.data(),    ac.data(),    ad.data()};
  GrowingStores G{il, jl, lnrow, lnpos, iu, ju, unrow, unpos, la, lb, lc, ld, ua, ub, uc, ud};
  il.grow(static_cast<std::size_t>(std::max(n, 0)) + 1);
  iu.grow(static_cast<std::size_t>(std::max(n, 0)) + 1);
  G.room(static_cast<std::size_t>(std::max(capacity, 1)));

  BlockWork w(n);
  // Per column: first and last entry stored so far above the diagonal.
  std::vector<int32_t> first(static_cast<std::size_t>(std::max(n, 0)) + 1, 0);
  std::vector<int32_t> firstrow(first.size(), 0), lastpos(first.size(), 0);
  std::vector<int32_t> cols;
  // Links position s, of row i and column c, at the end of column c's chain.
  auto link = [&](int32_t s, int32_t i, int32_t c) {
    const std::size_t cc = static_cast<std::size_t>(c);
    lnrow[s] = unrow[s] = 0;
    lnpos[s] = unpos[s] = 0;
    if (first[cc] == 0) {
      first[cc] = s;
      firstrow[cc] = i;
    }
    if (lastpos[cc] != 0) {
      lnrow[lastpos[cc]] = unrow[lastpos[cc]] = i;
      lnpos[lastpos[cc]] = unpos[lastpos[cc]] = s;
    }
    lastpos[cc] = s;
  };
  int32_t q = 1;
  for (int32_t i = 1; i <= n; ++i) {
    G.room(static_cast<std::size_t>(q));
    il[i] = iu[i] = q;
    // Close column i's chain through its pivot position.
    const std::size_t ci = static_cast<std::size_t>(i);
    lnrow[q] = unrow[q] = firstrow[ci];
    lnpos[q] = unpos[q] = first[ci];
    if (lastpos[ci] != 0) {
      lnrow[lastpos[ci]] = unrow[lastpos[ci]] = i;
      lnpos[lastpos[ci]] = unpos[lastpos[ci]] = q;
    }

    w.begin();
    w.enter(0, i);
    eliminate<true>(A, G.view(), i, q, w);

    // The positions of row i: the union of both patterns (they agree on a
    // structurally symmetric matrix), ascending, without the pivot.
    cols.clear();
    for (int32_t j : w.cols[0])
      if (j != i) cols.push_back(j);
    for (int32_t j : w.cols[1])
      if (!w.has(0, j)) cols.push_back(j);
    for (int32_t j : cols) {
      w.enter(0, j);
      w.enter(1, j);
    }
    std::sort(cols.begin(), cols.end());
    const int32_t count = static_cast<int32_t>(cols.size());
    G.room(static_cast<std::size_t>(q + count));
    for (int32_t t = 0; t < count; ++t) {
      const int32_t s = q + 1 + t;
      jl[s] = ju[s] = cols[static_cast<std::size_t>(t)];
      link(s, i, cols[static_cast<std::size_t>(t)]);
    }
    store(G.view(), i, q, count, w);
    q += 1 + count;
    il[i + 1] = iu[i + 1] = q;
  }
  if (n < 1) il[1] = iu[1] = 1;
}

void nonsym74o(int32_t n, int32_t /*nent*/, int32_t /*capacity*/, const Arr<int32_t>& chfirst,
               const Arr<int32_t>& upfirst, const Arr<int32_t>& chfirstrow,
               const Arr<int32_t>& chrow, const Arr<int32_t>& chpos, const Arr<int32_t>& ia,
               const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
               const Arr<double>& ac, const Arr<double>& ad, const Arr<int32_t>& il,
               const Arr<int32_t>& jl, const Arr<int32_t>& lnrow, const Arr<int32_t>& lnpos,
               Arr<double>& la, Arr<double>& lb, Arr<double>& lc, Arr<double>& ld,
               const Arr<int32_t>& iu, const Arr<int32_t>& ju, const Arr<int32_t>& unrow,
               const Arr<int32_t>& unpos, Arr<double>& ua, Arr<double>& ub, Arr<double>& uc,
               Arr<double>& ud) {
  const Matrix A{ia.data(),    ja.data(),    chfirst.data(), chfirstrow.data(),
                 chrow.data(), chpos.data(), upfirst.data(), aa.data(),
                 ab.data(),    ac.data(),    ad.data()};
  // The integer stores are only read here.
  const Stores S{il.data(),    jl.data(),    lnrow.data(), lnpos.data(), iu.data(), ju.data(),
                 unrow.data(), unpos.data(), la.data(),    lb.data(),    lc.data(), ld.data(),
                 ua.data(),    ub.data(),    uc.data(),    ud.data()};
  BlockWork w(n);
  for (int32_t i = 1; i <= n; ++i) {
    const int32_t q = S.il[i];
    const int32_t count = S.il[i + 1] - q - 1;
    w.begin();
    w.enter(0, i);
    for (int32_t s = q + 1; s <= q + count; ++s) {
      w.enter(0, S.jl[s]);
      w.enter(1, S.ju[s]);
    }
    eliminate<false>(A, S, i, q, w);
    store(S, i, q, count, w);
  }
}

void nonsym(int32_t n, int32_t nent, int32_t capacity, const Arr<int32_t>& ia,
            const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
            const Arr<double>& ac, const Arr<double>& ad, Arr<int32_t>& iu, Arr<int32_t>& ju,
            Arr<int32_t>& unrow, Arr<int32_t>& unpos, Arr<double>& ua, Arr<double>& ub,
            Arr<double>& uc, Arr<double>& ud, Arr<double>& la, Arr<double>& lb, Arr<double>& lc,
            Arr<double>& ld) {
  Arr<int32_t> chrow, chpos, chfirst, chfirstrow, upfirst;
  adlink7l(ia, ja, n, nent, chrow, chpos, chfirst, chfirstrow, upfirst);
  nonsym74(n, nent, capacity, chfirst, upfirst, chfirstrow, chrow, chpos, ia, ja, aa, ab, ac, ad,
           iu, ju, unrow, unpos, la, lb, lc, ld, iu, ju, unrow, unpos, ua, ub, uc, ud);
}

void solvxn(int32_t n, int32_t /*nent*/, const Arr<int32_t>& iu, const Arr<int32_t>& ju,
            const Arr<int32_t>& unrow, const Arr<int32_t>& unpos, const Arr<double>& ua,
            const Arr<double>& uc, const Arr<double>& ub, const Arr<double>& ud,
            const Arr<double>& la, const Arr<double>& lc, const Arr<double>& lb,
            const Arr<double>& ld, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
            Arr<double>& x2) {
  const int32_t *piu = iu.data(), *pju = ju.data(), *prow = unrow.data(), *ppos = unpos.data();
  const double *pua = ua.data(), *pub = ub.data(), *puc = uc.data(), *pud = ud.data();
  const double *pla = la.data(), *plb = lb.data(), *plc = lc.data(), *pld = ld.data();
  const double *pr1 = r1.data(), *pr2 = r2.data();
  double *px1 = x1.data(), *px2 = x2.data();
  for (int32_t i = 1; i <= n; ++i) {
    int32_t p = piu[i];
    const double a = pla[p], b = plb[p], c = plc[p], d = pld[p];
    double det = d * a - b * c;
    if (std::fabs(det) < kTinyDet) det = det >= 0.0 ? kTinyDet : -kTinyDet;
    const double inv = 1.0 / det;
    double s1 = 0.0, s2 = 0.0;
    for (int32_t k = prow[p]; k != 0 && k != i; k = prow[p]) {
      p = ppos[p];
      s1 += plb[p] * px2[k] + pla[p] * px1[k];
      s2 += pld[p] * px2[k] + plc[p] * px1[k];
    }
    const double e1 = pr1[i] - s1, e2 = pr2[i] - s2;
    px1[i] = e2 * (-b) * inv + e1 * inv * d;
    px2[i] = e2 * inv * a + e1 * (-c) * inv;
  }
  for (int32_t i = n - 1; i >= 1; --i) {
    double s1 = 0.0, s2 = 0.0;
    for (int32_t s = piu[i] + 1; s < piu[i + 1]; ++s) {
      const int32_t c = pju[s];
      s1 += pub[s] * px2[c] + pua[s] * px1[c];
      s2 += pud[s] * px2[c] + puc[s] * px1[c];
    }
    px1[i] -= s1;
    px2[i] -= s2;
  }
}

}  // namespace lf

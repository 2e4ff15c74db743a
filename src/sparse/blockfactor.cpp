#include "sparse/blockfactor.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "sparse/blockwork.hpp"

namespace lf {

namespace {

// Smallest determinant size of a pivot block; smaller ones become +-kTinyDet.
constexpr double kTinyDet = 1e-20;

// One step of the chain of a position: the row of the entry led to, and its
// position.
struct Link {
  int32_t row, pos;
};

// The factor while it is worked out: values and chains by position, each
// position in one place.  They go to the caller's parallel arrays at the end.
// Kept between calls so that a refactorisation allocates nothing.
struct Scratch {
  std::vector<BlockEntry> val;
  std::vector<Link> link;
  std::vector<int32_t> start;                   // refactorisation: first of each column in above
  std::vector<Link> above;                      // refactorisation: the entries of U by column
  std::vector<int32_t> pattern_il, pattern_ju;  // the pattern that above was laid out for
  BlockWork work{0};
  void room(std::size_t q) {
    if (q < val.size()) return;
    const std::size_t want = std::max(q + 1, 2 * val.size());
    val.resize(want);
    link.resize(want);
  }
};

Scratch& scratch() {
  static Scratch s;
  return s;
}

// The matrix and its chains.
struct Matrix {
  const int32_t *ia, *ja, *chfirst, *chfirstrow, *chrow, *chpos, *upfirst;
  const double *aa, *ab, *ac, *ad;
};

// Loads the entries of column i on and below the diagonal into side 0 of the
// work row and those of row i right of the diagonal into side 1.  With
// Discover their indices join the patterns; without, the work row already
// holds the pattern of the factor, which covers the matrix's.
template <bool Discover>
void load(const Matrix& A, int32_t i, BlockWork& w) {
  if (const int32_t start = A.chfirst[i]; start != 0) {
    int32_t p = start, row = A.chfirstrow[i];
    do {
      if (Discover) w.enter(0, row);
      w.set(0, row, A.aa[p], A.ab[p], A.ac[p], A.ad[p]);
      row = A.chrow[p];
      p = A.chpos[p];
    } while (p != start && p != 0);
  }
  const int32_t end = A.ia[i + 1];
  const int32_t from = A.upfirst[i] != 0 ? A.upfirst[i] : end;
  for (int32_t p = from; p < end; ++p) {
    const int32_t c = A.ja[p];
    if (Discover) w.enter(1, c);
    w.set(1, c, A.aa[p], A.ab[p], A.ac[p], A.ad[p]);
  }
}

// Column i of L and row i of U in the work row: the matrix's entries less
// the products of the earlier columns and rows.  Each earlier k in above[]
// (ascending) holds U[k][i] and L[i][k] at one position p: column i of L gets
// L[., k] U[k][i] taken off from row i on, row i of U gets L[i][k] U[k, .]
// taken off right of column i.
template <bool Discover>
void eliminate(const Matrix& A, const int32_t* il, const int32_t* jl, const int32_t* ju,
               const BlockEntry* val, int32_t i, const Link* above, std::size_t nabove,
               BlockWork& w) {
  load<Discover>(A, i, w);
  // The positions lie far apart in the store: ask for the next ones early.
  constexpr std::size_t kAhead = 2;
  for (std::size_t t = 0; t < std::min(kAhead, nabove); ++t) __builtin_prefetch(val + above[t].pos);
  for (std::size_t t = 0; t < nabove; ++t) {
    if (t + kAhead < nabove) {
      __builtin_prefetch(val + above[t + kAhead].pos);
      __builtin_prefetch(jl + above[t + kAhead].pos);
    }
    const int32_t k = above[t].row, p = above[t].pos;
    const double* l = val[p].v[0];
    const double* u = val[p].v[1];
    const double ualpha[4] = {-u[0], -u[1], -u[2], -u[3]};
    const double lalpha[4] = {-l[0], -l[1], -l[2], -l[3]};
    const int32_t m = il[k + 1] - p;
    if (Discover) {
      m2axpy(0, w, m, jl + p, val + p, ualpha);
      m2axpy(1, w, m - 1, ju + p + 1, val + p + 1, lalpha);
    } else {
      m2axpyo(0, w, m, jl + p, val + p, ualpha);
      m2axpyo(1, w, m - 1, ju + p + 1, val + p + 1, lalpha);
    }
  }
}

// Stores the pivot of column i at q and the entries of L and U at the
// positions q+1 .. q+count whose columns jl already names: L as worked out,
// U multiplied from the left by the inverse of the pivot block.
void store(BlockEntry* val, const int32_t* jl, int32_t i, int32_t q, int32_t count,
           const BlockWork& w) {
  const double* piv = w.block(0, i);
  const double pa = piv[0], pb = piv[1], pc = piv[2], pd = piv[3];
  double* l = val[q].v[0];
  double* u = val[q].v[1];
  l[0] = pa, l[1] = pb, l[2] = pc, l[3] = pd;
  u[0] = 1.0, u[1] = 0.0, u[2] = 0.0, u[3] = 1.0;
  double det = pd * pa - pc * pb;
  if (std::fabs(det) <= kTinyDet) det = det >= 0.0 ? kTinyDet : -kTinyDet;
  const double ia = pd / det, ib = -pb / det, ic = -pc / det, id = pa / det;
  for (int32_t s = q + 1; s <= q + count; ++s) {
    const int32_t j = jl[s];
    const double* wl = w.block(0, j);
    double* ls = val[s].v[0];
    ls[0] = wl[0], ls[1] = wl[1], ls[2] = wl[2], ls[3] = wl[3];
    const double* wu = w.block(1, j);
    const double wa = wu[0], wb = wu[1], wc = wu[2], wd = wu[3];
    double* us = val[s].v[1];
    us[0] = ia * wa + ib * wc;
    us[1] = ia * wb + ib * wd;
    us[2] = ic * wa + id * wc;
    us[3] = ic * wb + id * wd;
  }
}

// Hands the values of positions 1..used to the caller's arrays.
void hand_out(const Scratch& f, int32_t used, Arr<double>& la, Arr<double>& lb, Arr<double>& lc,
              Arr<double>& ld, Arr<double>& ua, Arr<double>& ub, Arr<double>& uc, Arr<double>& ud) {
  for (Arr<double>* a : {&la, &lb, &lc, &ld, &ua, &ub, &uc, &ud})
    a->grow(static_cast<std::size_t>(used));
  double *pla = la.data(), *plb = lb.data(), *plc = lc.data(), *pld = ld.data();
  double *pua = ua.data(), *pub = ub.data(), *puc = uc.data(), *pud = ud.data();
  const BlockEntry* val = f.val.data();
  for (int32_t s = 1; s <= used; ++s) {
    const double* l = val[s].v[0];
    const double* u = val[s].v[1];
    pla[s] = l[0], plb[s] = l[1], plc[s] = l[2], pld[s] = l[3];
    pua[s] = u[0], pub[s] = u[1], puc[s] = u[2], pud[s] = u[3];
  }
}

// Lays out the entries of U by column, with their rows, ascending, in
// f.above from f.start[c]: the column chains of U (and row chains of L) in the
// order they run, laid out flat so that the positions can be fetched ahead
// instead of one hop at a time.  A refactorisation on the pattern of the call
// before finds the layout made already.
void by_column(Scratch& f, int32_t n, const int32_t* il, const int32_t* ju, int32_t used) {
  const std::size_t rows = static_cast<std::size_t>(n) + 2;
  const std::size_t ents = static_cast<std::size_t>(used) + 1;
  if (f.pattern_il.size() == rows && f.pattern_ju.size() == ents &&
      std::equal(il + 1, il + rows, f.pattern_il.begin() + 1) &&
      std::equal(ju + 1, ju + ents, f.pattern_ju.begin() + 1))
    return;
  f.pattern_il.assign(il, il + rows);
  f.pattern_ju.assign(ju, ju + ents);
  std::vector<int32_t>& start = f.start;
  std::vector<Link>& above = f.above;
  start.assign(rows, 0);
  above.resize(static_cast<std::size_t>(used));
  for (int32_t k = 1; k <= n; ++k)
    for (int32_t s = il[k] + 1; s < il[k + 1]; ++s) ++start[static_cast<std::size_t>(ju[s]) + 1];
  for (std::size_t c = 1; c < start.size(); ++c) start[c] += start[c - 1];
  for (int32_t k = 1; k <= n; ++k)
    for (int32_t s = il[k] + 1; s < il[k + 1]; ++s)
      above[static_cast<std::size_t>(start[static_cast<std::size_t>(ju[s])]++)] = {k, s};
  for (std::size_t c = start.size() - 1; c > 0; --c) start[c] = start[c - 1];
  start[0] = 0;
}

Matrix matrix_of(const Arr<int32_t>& ia, const Arr<int32_t>& ja, const Arr<int32_t>& chfirst,
                 const Arr<int32_t>& chfirstrow, const Arr<int32_t>& chrow,
                 const Arr<int32_t>& chpos, const Arr<int32_t>& upfirst, const Arr<double>& aa,
                 const Arr<double>& ab, const Arr<double>& ac, const Arr<double>& ad) {
  return {ia.data(),      ja.data(), chfirst.data(), chfirstrow.data(), chrow.data(), chpos.data(),
          upfirst.data(), aa.data(), ab.data(),      ac.data(),         ad.data()};
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
  const Matrix A = matrix_of(ia, ja, chfirst, chfirstrow, chrow, chpos, upfirst, aa, ab, ac, ad);
  const std::size_t rows = static_cast<std::size_t>(std::max(n, 0)) + 1;
  il.grow(rows);
  iu.grow(rows);
  Scratch& f = scratch();
  f.room(static_cast<std::size_t>(std::max(capacity, 1)));
  // The columns of the positions, as found.
  std::vector<int32_t> col(f.val.size(), 0);

  BlockWork& w = f.work;
  w.fit(n);
  // Per column: first and last entry stored so far above the diagonal.
  std::vector<int32_t> first(rows, 0), firstrow(rows, 0), lastpos(rows, 0);
  std::vector<int32_t> cols;
  std::vector<Link> above;
  int32_t q = 1;
  il[1] = 1;
  for (int32_t i = 1; i <= n; ++i) {
    f.room(static_cast<std::size_t>(q));
    il[i] = q;
    // Close column i's chain through its pivot position.
    const std::size_t ci = static_cast<std::size_t>(i);
    f.link[static_cast<std::size_t>(q)] = {firstrow[ci], first[ci]};
    if (lastpos[ci] != 0) f.link[static_cast<std::size_t>(lastpos[ci])] = {i, q};

    // The earlier rows with an entry in column i, along its chain.
    above.clear();
    for (Link at = f.link[static_cast<std::size_t>(q)]; at.row != 0 && at.row != i;
         at = f.link[static_cast<std::size_t>(at.pos)])
      above.push_back(at);
    w.begin();
    w.enter(0, i);
    eliminate<true>(A, il.data(), col.data(), col.data(), f.val.data(), i, above.data(),
                    above.size(), w);

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
    f.room(static_cast<std::size_t>(q + count));
    if (col.size() < f.val.size()) col.resize(f.val.size(), 0);
    col[static_cast<std::size_t>(q)] = i;
    for (int32_t t = 0; t < count; ++t) {
      const int32_t s = q + 1 + t;
      const int32_t c = cols[static_cast<std::size_t>(t)];
      const std::size_t cc = static_cast<std::size_t>(c);
      col[static_cast<std::size_t>(s)] = c;
      // Position s joins the end of column c's chain.
      f.link[static_cast<std::size_t>(s)] = {0, 0};
      if (first[cc] == 0) {
        first[cc] = s;
        firstrow[cc] = i;
      }
      if (lastpos[cc] != 0) f.link[static_cast<std::size_t>(lastpos[cc])] = {i, s};
      lastpos[cc] = s;
    }
    store(f.val.data(), col.data(), i, q, count, w);
    q += 1 + count;
    il[i + 1] = q;
  }
  for (int32_t i = 1; i <= n + 1; ++i) iu[i] = il[i];

  const int32_t used = q - 1;
  for (Arr<int32_t>* a : {&jl, &ju, &lnrow, &lnpos, &unrow, &unpos})
    a->grow(static_cast<std::size_t>(used));
  for (int32_t s = 1; s <= used; ++s) {
    const Link& k = f.link[static_cast<std::size_t>(s)];
    jl[s] = ju[s] = col[static_cast<std::size_t>(s)];
    lnrow[s] = unrow[s] = k.row;
    lnpos[s] = unpos[s] = k.pos;
  }
  hand_out(f, used, la, lb, lc, ld, ua, ub, uc, ud);
}

void nonsym74o(int32_t n, int32_t /*nent*/, int32_t /*capacity*/, const Arr<int32_t>& chfirst,
               const Arr<int32_t>& upfirst, const Arr<int32_t>& chfirstrow,
               const Arr<int32_t>& chrow, const Arr<int32_t>& chpos, const Arr<int32_t>& ia,
               const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
               const Arr<double>& ac, const Arr<double>& ad, const Arr<int32_t>& il,
               const Arr<int32_t>& jl, const Arr<int32_t>& /*lnrow*/, const Arr<int32_t>& /*lnpos*/,
               Arr<double>& la, Arr<double>& lb, Arr<double>& lc, Arr<double>& ld,
               const Arr<int32_t>& /*iu*/, const Arr<int32_t>& ju, const Arr<int32_t>& /*unrow*/,
               const Arr<int32_t>& /*unpos*/, Arr<double>& ua, Arr<double>& ub, Arr<double>& uc,
               Arr<double>& ud) {
  const Matrix A = matrix_of(ia, ja, chfirst, chfirstrow, chrow, chpos, upfirst, aa, ab, ac, ad);
  if (n < 1) return;
  const int32_t used = il[n + 1] - 1;
  Scratch& f = scratch();
  f.room(static_cast<std::size_t>(used));
  by_column(f, n, il.data(), ju.data(), used);
  const std::vector<int32_t>& start = f.start;
  const std::vector<Link>& above = f.above;

  BlockWork& w = f.work;
  w.fit(n);
  for (int32_t i = 1; i <= n; ++i) {
    const int32_t q = il[i];
    const int32_t count = il[i + 1] - q - 1;
    w.zero(0, i);
    for (int32_t s = q + 1; s <= q + count; ++s) {
      w.zero(0, jl[s]);
      w.zero(1, ju[s]);
    }
    const std::size_t from = static_cast<std::size_t>(start[static_cast<std::size_t>(i)]);
    const std::size_t to = static_cast<std::size_t>(start[static_cast<std::size_t>(i) + 1]);
    eliminate<false>(A, il.data(), jl.data(), ju.data(), f.val.data(), i, above.data() + from,
                     to - from, w);
    store(f.val.data(), jl.data(), i, q, count, w);
  }
  hand_out(f, used, la, lb, lc, ld, ua, ub, uc, ud);
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

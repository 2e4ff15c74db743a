#include "sparse/blockfactor.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "sparse/blocklayout.hpp"
#include "sparse/symfactor.hpp"

namespace lf {

namespace {

// sum += b x for a block b and the two unknowns x of a block row.
inline void add_product(BlockStore::Sum& sum, const double* b, const BlockStore::Sum& x) {
  sum.s1 += b[1] * x.s2 + b[0] * x.s1;
  sum.s2 += b[3] * x.s2 + b[2] * x.s1;
}

// The forward solution of a block row: the pivot block piv solved for the
// right-hand sides r1, r2 less the sum of the row's products.  A determinant
// below 1e-20 in size is taken as +-1e-20.
inline BlockStore::Sum forward_step(const double* piv, double r1, double r2,
                                    const BlockStore::Sum& sum) {
  const double a = piv[0], b = piv[1], c = piv[2], d = piv[3];
  double det = d * a - b * c;
  if (std::fabs(det) < kTinyPivot) det = det >= 0.0 ? kTinyPivot : -kTinyPivot;
  const double inv = 1.0 / det;
  const double e1 = r1 - sum.s1, e2 = r2 - sum.s2;
  return {e2 * (-b) * inv + e1 * inv * d, e2 * inv * a + e1 * (-c) * inv};
}

// Where numeric finds the matrix's blocks: by position (the blocks handed to
// the factorisation that finds the fill-in), or by place in the order of
// loads (f.low, for a refactorisation).
struct BlockSource {
  const MatrixBlock* a;
  bool by_position;
};

// Loads the entries of the column at place c on and below the diagonal into
// side 0 of the work row and those of its row right of the diagonal into
// side 1.  The work row already holds the pattern of the factor, which
// covers the matrix's.
void load(const BlockStore& f, int32_t c, const BlockSource& src, BlockWork& w) {
  const int32_t* start = f.load_start.data() + 2 * c - 1;  // side 0, side 1, end
  const Link* loads = f.loads.data();
  for (int side = 0; side < 2; ++side) {
    for (int32_t t = start[side]; t < start[side + 1]; ++t) {
      const double* b = src.a[src.by_position ? loads[t].pos : t + 1].v;
      w.set(side, loads[t].row, b[0], b[1], b[2], b[3]);
    }
  }
}

// Column i of L and row i of U in the work row, the matrix's entries
// loaded: less the products of the earlier columns and rows.  Each earlier
// row k in above[] (by ascending number; its place given) holds U[k][i] and
// L[i][k] at one position p: column i of L gets L[., k] U[k][i] taken off
// from row i on, row i of U gets L[i][k] U[k, .] taken off right of column
// i.  With the forward solution y of the earlier rows given, sum gets row i
// of L times y, as solvxn sums it.
void eliminate(const int32_t* iu, const int32_t* ju, const FactorBlock* lv, const FactorBlock* uv,
               const Link* above, std::size_t nabove, std::size_t nknown, BlockWork& w,
               const BlockStore::Sum* y, BlockStore::Sum& sum) {
  // The positions lie far apart in the store: ask early for the ones that
  // come next, in this column or (nknown entries of above being there) in
  // the columns after it.
  constexpr std::size_t kAhead = 8;
  for (std::size_t t = 0; t < std::min(kAhead, nknown); ++t) {
    __builtin_prefetch(lv + above[t].pos);
    __builtin_prefetch(uv + above[t].pos - above[t].row);
  }
  for (std::size_t t = 0; t < nabove; ++t) {
    if (t + kAhead < nknown) {
      __builtin_prefetch(lv + above[t + kAhead].pos);
      __builtin_prefetch(uv + above[t + kAhead].pos - above[t + kAhead].row);
      __builtin_prefetch(ju + above[t + kAhead].pos);
    }
    const int32_t k = above[t].row, p = above[t].pos;
    const double* l = lv[p].v;
    const FactorBlock* uk = uv + (p - k);  // U of row k from position p on
    const double* u = uk->v;
    if (y) add_product(sum, l, y[k]);
    const double ualpha[4] = {-u[0], -u[1], -u[2], -u[3]};
    const double lalpha[4] = {-l[0], -l[1], -l[2], -l[3]};
    const int32_t m = iu[k + 1] - p;
    m2axpyo(0, w, m, ju + p, lv + p, ualpha);
    m2axpyo(1, w, m - 1, ju + p + 1, uk + 1, lalpha);
  }
}

// Stores the pivot of column i at q and the entries of L and U at the
// positions q+1 .. q+count whose columns ju already names: L as worked out,
// U multiplied from the left by the inverse of the pivot block.  False when
// the pivot block's determinant is not finite.
bool store(FactorBlock* lv, FactorBlock* uv, const int32_t* ju, int32_t i, int32_t q, int32_t count,
           const BlockWork& w) {
  const double* piv = w.block(0, i);
  const double pa = piv[0], pb = piv[1], pc = piv[2], pd = piv[3];
  double* l = lv[q].v;
  l[0] = pa, l[1] = pb, l[2] = pc, l[3] = pd;
  double det = pd * pa - pc * pb;
  const bool finite = std::isfinite(det);
  if (std::fabs(det) <= kTinyPivot) det = det >= 0.0 ? kTinyPivot : -kTinyPivot;
  const double ia = pd / det, ib = -pb / det, ic = -pc / det, id = pa / det;
  for (int32_t s = q + 1; s <= q + count; ++s) {
    const int32_t j = ju[s];
    const double* wl = w.block(0, j);
    double* ls = lv[s].v;
    ls[0] = wl[0], ls[1] = wl[1], ls[2] = wl[2], ls[3] = wl[3];
    const double* wu = w.block(1, j);
    const double wa = wu[0], wb = wu[1], wc = wu[2], wd = wu[3];
    double* us = uv[s - i].v;
    us[0] = ia * wa + ib * wc;
    us[1] = ia * wb + ib * wd;
    us[2] = ic * wa + id * wc;
    us[3] = ic * wb + id * wd;
  }
  return finite;
}

// The values of the factors on the pattern laid out, place by place, from
// the blocks in src; with right-hand sides, also the forward part of the
// solution with them, into f.sol.
void numeric(const BlockPattern& A, BlockStore& f, const BlockSource& src, const BlockRhs* rhs) {
  const int32_t n = A.n;
  const int32_t* iu = f.iu.data();
  const int32_t* ju = f.ju.data();
  const std::vector<int32_t>& start = f.start;
  const std::vector<Link>& above = f.above;

  BlockWork& w = f.work;
  w.fit(n);
  f.sol.resize(static_cast<std::size_t>(n) + 1);
  BlockStore::Sum* y = rhs ? f.sol.data() : nullptr;
  // The right-hand sides in working order first, in a loop of its own: the
  // rows lie scattered in them, and there the loads do not wait on each
  // other, while in the loop below each would wait behind the factor's work.
  if (y) {
    for (int32_t c = 1; c <= n; ++c) {
      const int32_t i = f.order[static_cast<std::size_t>(c)];
      y[c] = {rhs->r1[i], rhs->r2[i]};
    }
  }
  f.overflow_at = 0;
  for (int32_t c = 1; c <= n; ++c) {
    const int32_t q = iu[c];
    const int32_t count = iu[c + 1] - q - 1;
    w.zero(0, c);
    for (int32_t s = q + 1; s <= q + count; ++s) {
      w.zero(0, ju[s]);
      w.zero(1, ju[s]);
    }
    const std::size_t from = static_cast<std::size_t>(start[static_cast<std::size_t>(c)]);
    const std::size_t to = static_cast<std::size_t>(start[static_cast<std::size_t>(c) + 1]);
    load(f, c, src, w);
    BlockStore::Sum sum{0.0, 0.0};
    eliminate(iu, ju, f.lval.data(), f.uval.data(), above.data() + from, to - from,
              above.size() - from, w, y, sum);
    const int32_t i = f.order[static_cast<std::size_t>(c)];
    if (!store(f.lval.data(), f.uval.data(), ju, c, q, count, w) &&
        (f.overflow_at == 0 || i < f.overflow_at))
      f.overflow_at = i;
    if (y) y[c] = forward_step(f.lval[static_cast<std::size_t>(q)].v, y[c].s1, y[c].s2, sum);
  }
}

// The backward part of the solution, from the last place: each row of U
// takes the unknowns of its columns, which stand at later places, by
// ascending column; then the unknowns go to x1, x2 by row number.
void backward(BlockStore& f, Arr<double>& x1, Arr<double>& x2) {
  const int32_t* piu = f.iu.data();
  const int32_t* pju = f.ju.data();
  const FactorBlock* uv = f.uval.data();
  BlockStore::Sum* y = f.sol.data();
  // The rows of U are read from the last place down, which the processor's
  // own look-ahead follows poorly: ask for the row some places on.
  constexpr int32_t kAhead = 24;  // places
  const std::size_t nu = f.uval.size();
  for (int32_t c = f.n; c >= 1; --c) {
    if (c > kAhead) {
      // U of the row at place c - kAhead and the line after it.
      const std::size_t at = static_cast<std::size_t>(piu[c - kAhead] + 1 - (c - kAhead));
      __builtin_prefetch(uv + at);
      __builtin_prefetch(uv + std::min(at + 2, nu - 1));
    }
    BlockStore::Sum sum{0.0, 0.0};
    for (int32_t s = piu[c] + 1; s < piu[c + 1]; ++s) add_product(sum, uv[s - c].v, y[pju[s]]);
    y[c].s1 -= sum.s1;
    y[c].s2 -= sum.s2;
  }
  // Back to row numbers in a loop of its own, where the scattered stores
  // do not hold up the sums.
  for (int32_t c = 1; c <= f.n; ++c) {
    const int32_t i = f.order[static_cast<std::size_t>(c)];
    x1[i] = y[c].s1;
    x2[i] = y[c].s2;
  }
}

}  // namespace

void adlink7l(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, BlockChains& ch) {
  ch.upfirst.grow(static_cast<std::size_t>(std::max(n, 0)) + 1);
  for (int32_t r = 1; r <= n; ++r) {
    int32_t p = ia[r];
    while (p < ia[r + 1] && ja[p] < r) ++p;
    ch.upfirst[r] = p < ia[r + 1] && ja[p] == r ? p + 1 : p;
  }
}

BlockSink load_sink(BlockStore& f) {
  return {f.low.data(), f.value_at.data()};
}

BlockSink position_sink(BlockStore& f, int32_t positions) {
  const std::size_t need = static_cast<std::size_t>(std::max(positions, 0)) + 1;
  if (f.low.size() < need) f.low.resize(need);
  return {f.low.data(), nullptr};
}

// One pass along the rows, which reads the matrix in the order it is
// stored, so that the factorisation then finds each column's entries side by
// side instead of one per row far apart.
void place_values(const BlockPattern& A, const BlockValues& v, BlockStore& f) {
  if (A.n < 1) return;
  MatrixBlock* low = f.low.data();
  const int32_t* at = f.value_at.data();
  // A position that no column loads goes to the spare place 0.
  for (int32_t p = A.ia[1]; p < A.ia[A.n + 1]; ++p) low[at[p]] = v.a[p];
}

void nonsym74(const BlockPattern& A, const BlockValues& v, BlockStore& f, const BlockRhs* rhs) {
  lay_out_factors(A, f);
  numeric(A, f, {v.a, true}, rhs);
}

void nonsym74o(const BlockPattern& A, BlockStore& f, const BlockRhs* rhs) {
  f.overflow_at = 0;
  if (A.n < 1) return;
  numeric(A, f, {f.low.data(), false}, rhs);
}

void nonsym(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, const BlockValues& v,
            BlockStore& f) {
  BlockChains ch;
  adlink7l(ia, ja, n, ch);
  nonsym74({n, ia.data(), ja.data(), &ch}, v, f, nullptr);
}

void solvxn(BlockStore& f, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
            Arr<double>& x2) {
  const int32_t* start = f.start.data();
  const Link* above = f.above.data();
  const FactorBlock* lv = f.lval.data();
  f.sol.resize(static_cast<std::size_t>(f.n) + 1);
  BlockStore::Sum* y = f.sol.data();
  // Forward, place by place: row i of L is the entries of column i in
  // above[], by ascending column number; its products with the unknowns
  // already known are summed in that order, then the pivot block solved.
  for (int32_t c = 1; c <= f.n; ++c) {
    BlockStore::Sum sum{0.0, 0.0};
    for (int32_t t = start[c]; t < start[c + 1]; ++t)
      add_product(sum, lv[above[t].pos].v, y[above[t].row]);
    const int32_t i = f.order[static_cast<std::size_t>(c)];
    y[c] = forward_step(lv[f.iu[static_cast<std::size_t>(c)]].v, r1[i], r2[i], sum);
  }
  backward(f, x1, x2);
}

void solvxn_back(BlockStore& f, Arr<double>& x1, Arr<double>& x2) {
  backward(f, x1, x2);
}

}  // namespace lf

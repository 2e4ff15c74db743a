#include "sparse/blockfactor.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "sparse/symfactor.hpp"

namespace lf {

namespace {

// Loads the entries of column i on and below the diagonal into side 0 of the
// work row and those of row i right of the diagonal into side 1.  The work
// row already holds the pattern of the factor, which covers the matrix's;
// the column's entries stand together in `low`, their rows in `lower`,
// nlower of them (see gather_lower).
void load(const BlockPattern& A, const BlockValues& v, int32_t i, const Link* lower,
          const BlockStore::Block* low, std::size_t nlower, BlockWork& w) {
  for (std::size_t t = 0; t < nlower; ++t) {
    const double* b = low[t].v;
    w.set(0, lower[t].row, b[0], b[1], b[2], b[3]);
  }
  const int32_t end = A.ia[i + 1];
  const int32_t from = A.chains->upfirst[i] != 0 ? A.chains->upfirst[i] : end;
  for (int32_t p = from; p < end; ++p) w.set(1, A.ja[p], v.aa[p], v.ab[p], v.ac[p], v.ad[p]);
}

// Copies the matrix's entries on and below the diagonal into f.low in the
// order of f.lower (by column): one pass along the rows, which reads the
// matrix in the order it is stored, so that the factorisation then finds
// each column's entries side by side instead of one per row far apart.
void gather_lower(const BlockPattern& A, const BlockValues& v, BlockStore& f) {
  const int32_t* slot = f.lower_slot.data();
  BlockStore::Block* low = f.low.data();
  for (int32_t r = 1; r <= A.n; ++r) {
    for (int32_t p = A.ia[r]; p < A.ia[r + 1] && A.ja[p] <= r; ++p) {
      if (slot[p] < 0) continue;  // on no column chain
      double* b = low[slot[p]].v;
      b[0] = v.aa[p], b[1] = v.ab[p], b[2] = v.ac[p], b[3] = v.ad[p];
    }
  }
}

// Column i of L and row i of U in the work row, the matrix's entries
// loaded: less the products of the earlier columns and rows.  Each earlier k
// in above[] (ascending) holds U[k][i] and L[i][k] at one position p: column
// i of L gets L[., k] U[k][i] taken off from row i on, row i of U gets
// L[i][k] U[k, .] taken off right of column i.
void eliminate(const int32_t* iu, const int32_t* ju, const BlockEntry* val, const Link* above,
               std::size_t nabove, std::size_t nknown, BlockWork& w) {
  // The positions lie far apart in the store: ask early for the ones that
  // come next, in this column or (nknown entries of above being there) in
  // the columns after it.
  constexpr std::size_t kAhead = 4;
  for (std::size_t t = 0; t < std::min(kAhead, nknown); ++t) __builtin_prefetch(val + above[t].pos);
  for (std::size_t t = 0; t < nabove; ++t) {
    if (t + kAhead < nknown) {
      __builtin_prefetch(val + above[t + kAhead].pos);
      __builtin_prefetch(val + above[t + kAhead].pos + 1);
      __builtin_prefetch(ju + above[t + kAhead].pos);
    }
    const int32_t k = above[t].row, p = above[t].pos;
    const double* l = val[p].v[0];
    const double* u = val[p].v[1];
    const double ualpha[4] = {-u[0], -u[1], -u[2], -u[3]};
    const double lalpha[4] = {-l[0], -l[1], -l[2], -l[3]};
    const int32_t m = iu[k + 1] - p;
    m2axpyo(0, w, m, ju + p, val + p, ualpha);
    m2axpyo(1, w, m - 1, ju + p + 1, val + p + 1, lalpha);
  }
}

// Stores the pivot of column i at q and the entries of L and U at the
// positions q+1 .. q+count whose columns ju already names: L as worked out,
// U multiplied from the left by the inverse of the pivot block.
void store(BlockEntry* val, const int32_t* ju, int32_t i, int32_t q, int32_t count,
           const BlockWork& w) {
  const double* piv = w.block(0, i);
  const double pa = piv[0], pb = piv[1], pc = piv[2], pd = piv[3];
  double* l = val[q].v[0];
  double* u = val[q].v[1];
  l[0] = pa, l[1] = pb, l[2] = pc, l[3] = pd;
  u[0] = 1.0, u[1] = 0.0, u[2] = 0.0, u[3] = 1.0;
  double det = pd * pa - pc * pb;
  if (std::fabs(det) <= kTinyPivot) det = det >= 0.0 ? kTinyPivot : -kTinyPivot;
  const double ia = pd / det, ib = -pb / det, ic = -pc / det, id = pa / det;
  for (int32_t s = q + 1; s <= q + count; ++s) {
    const int32_t j = ju[s];
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

// Counting sort: lays out the entries (key, row, pos) that each(put) hands
// to put in groups by key 1..n, ascending key, each group in the order
// handed; start[k] is where group k begins, start[n+1] the end.
template <typename Each>
void group_by(int32_t n, std::vector<int32_t>& start, std::vector<Link>& out, Each&& each) {
  start.assign(static_cast<std::size_t>(n) + 2, 0);
  std::size_t total = 0;
  each([&](int32_t key, int32_t, int32_t) {
    ++start[static_cast<std::size_t>(key) + 1];
    ++total;
  });
  for (std::size_t c = 1; c < start.size(); ++c) start[c] += start[c - 1];
  out.resize(total);
  each([&](int32_t key, int32_t row, int32_t pos) {
    out[static_cast<std::size_t>(start[static_cast<std::size_t>(key)]++)] = {row, pos};
  });
  for (std::size_t c = start.size() - 1; c > 0; --c) start[c] = start[c - 1];
  start[0] = 0;
}

// Lays out the matrix's entries on and below the diagonal by column,
// ascending row, as the column chains of adlink7l run, in f.lower from
// f.lower_start[c], with the place of each in f.lower_slot and room for
// their blocks in f.low.
void lay_out_matrix(const BlockPattern& A, BlockStore& f) {
  const int32_t n = A.n;
  const BlockChains& ch = *A.chains;
  group_by(n, f.lower_start, f.lower, [&](auto&& put) {
    for (int32_t c = 1; c <= n; ++c) {
      const int32_t first = ch.chfirst[c];
      if (first == 0) continue;
      int32_t p = first, row = ch.chfirstrow[c];
      do {
        put(c, row, p);
        row = ch.chrow[p];
        p = ch.chpos[p];
      } while (p != first && p != 0);
    }
  });
  f.lower_slot.assign(n > 0 ? static_cast<std::size_t>(A.ia[n + 1]) : 1, -1);
  for (std::size_t t = 0; t < f.lower.size(); ++t)
    f.lower_slot[static_cast<std::size_t>(f.lower[t].pos)] = static_cast<int32_t>(t);
  f.low.resize(f.lower.size());
}

// The pattern of the factors (iu, ju), found without values.  Row i of U,
// and column i of L at the same positions, holds the columns right of i of
// the matrix's row i and the rows below i of its column i, and the fill that
// the elimination of the earlier rows with an entry in column i brings: the
// columns right of i of those rows.  The rows whose first column right of
// their pivot is i (their parent) are enough, as each such earlier row has
// handed its columns on to its parent, and so on up to row i.
void symbolic(const BlockPattern& A, BlockStore& f) {
  const int32_t n = A.n;
  const std::size_t rows = static_cast<std::size_t>(std::max(n, 0)) + 1;
  f.iu.assign(rows + 1, 0);
  // The factor holds at least the matrix's own entries; fill-in grows it.
  f.room(n > 0 ? static_cast<std::size_t>(A.ia[n + 1]) : 1);
  // Per row: the first of its children and the next child of its parent.
  std::vector<int32_t> child(rows, 0), sibling(rows, 0), mark(rows, 0), cols;
  int32_t q = 1;
  f.iu[1] = 1;
  for (int32_t i = 1; i <= n; ++i) {
    const std::size_t ii = static_cast<std::size_t>(i);
    cols.clear();
    const auto add = [&](int32_t j) {
      if (mark[static_cast<std::size_t>(j)] == i) return;
      mark[static_cast<std::size_t>(j)] = i;
      cols.push_back(j);
    };
    for (int32_t t = f.lower_start[ii]; t < f.lower_start[ii + 1]; ++t)
      if (const int32_t r = f.lower[static_cast<std::size_t>(t)].row; r != i) add(r);
    const int32_t end = A.ia[i + 1];
    for (int32_t p = A.chains->upfirst[i] != 0 ? A.chains->upfirst[i] : end; p < end; ++p)
      add(A.ja[p]);
    for (int32_t k = child[ii]; k != 0; k = sibling[static_cast<std::size_t>(k)]) {
      const std::size_t kk = static_cast<std::size_t>(k);
      for (int32_t s = f.iu[kk] + 1; s < f.iu[kk + 1]; ++s)
        if (const int32_t j = f.ju[static_cast<std::size_t>(s)]; j > i) add(j);
    }
    std::sort(cols.begin(), cols.end());
    const int32_t count = static_cast<int32_t>(cols.size());
    f.room(static_cast<std::size_t>(q + count));
    f.ju[static_cast<std::size_t>(q)] = i;
    std::copy(cols.begin(), cols.end(), f.ju.begin() + q + 1);
    q += 1 + count;
    f.iu[ii + 1] = q;
    if (count != 0) {
      const std::size_t parent = static_cast<std::size_t>(cols.front());
      sibling[ii] = child[parent];
      child[parent] = i;
    }
  }
}

// Lays out the entries of U by column with their rows, ascending, in f.above
// from f.start[c]: the earlier rows that each column's elimination takes,
// in the order it takes them.
void lay_out_factor(BlockStore& f) {
  const int32_t n = f.n;
  const int32_t* iu = f.iu.data();
  const int32_t* ju = f.ju.data();
  group_by(n, f.start, f.above, [&](auto&& put) {
    for (int32_t k = 1; k <= n; ++k)
      for (int32_t s = iu[k] + 1; s < iu[k + 1]; ++s) put(ju[s], k, s);
  });
}

// The values of the factors on the pattern laid out, column by column.
void numeric(const BlockPattern& A, const BlockValues& v, BlockStore& f) {
  const int32_t n = A.n;
  const int32_t* iu = f.iu.data();
  const int32_t* ju = f.ju.data();
  const std::vector<int32_t>& start = f.start;
  const std::vector<Link>& above = f.above;
  const std::vector<int32_t>& lstart = f.lower_start;
  const std::vector<Link>& lower = f.lower;

  gather_lower(A, v, f);
  BlockWork& w = f.work;
  w.fit(n);
  for (int32_t i = 1; i <= n; ++i) {
    const int32_t q = iu[i];
    const int32_t count = iu[i + 1] - q - 1;
    w.zero(0, i);
    for (int32_t s = q + 1; s <= q + count; ++s) {
      w.zero(0, ju[s]);
      w.zero(1, ju[s]);
    }
    const std::size_t from = static_cast<std::size_t>(start[static_cast<std::size_t>(i)]);
    const std::size_t to = static_cast<std::size_t>(start[static_cast<std::size_t>(i) + 1]);
    const std::size_t lfrom = static_cast<std::size_t>(lstart[static_cast<std::size_t>(i)]);
    const std::size_t lto = static_cast<std::size_t>(lstart[static_cast<std::size_t>(i) + 1]);
    load(A, v, i, lower.data() + lfrom, f.low.data() + lfrom, lto - lfrom, w);
    eliminate(iu, ju, f.val.data(), above.data() + from, to - from, above.size() - from, w);
    store(f.val.data(), ju, i, q, count, w);
  }
}

}  // namespace

void BlockStore::room(std::size_t q) {
  if (q < val.size()) return;
  const std::size_t want = std::max(q + 1, 2 * val.size());
  val.resize(want);
  ju.resize(want, 0);
}

void adlink7l(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, BlockChains& ch) {
  const std::size_t rows = static_cast<std::size_t>(std::max(n, 0)) + 1;
  const std::size_t ents = n > 0 ? static_cast<std::size_t>(ia[n + 1] - 1) : 0;
  for (Arr<int32_t>* a : {&ch.chrow, &ch.chpos}) {
    a->grow(ents);
    a->clear(ents);
  }
  for (Arr<int32_t>* a : {&ch.chfirst, &ch.chfirstrow, &ch.upfirst}) {
    a->grow(rows);
    a->clear(rows);
  }
  Arr<int32_t>&chrow = ch.chrow, &chpos = ch.chpos, &chfirst = ch.chfirst,
  &chfirstrow = ch.chfirstrow, &upfirst = ch.upfirst;
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

void nonsym74(const BlockPattern& A, const BlockValues& v, BlockStore& f) {
  f.n = A.n;
  lay_out_matrix(A, f);
  symbolic(A, f);
  lay_out_factor(f);
  numeric(A, v, f);
}

void nonsym74o(const BlockPattern& A, const BlockValues& v, BlockStore& f) {
  if (A.n < 1) return;
  numeric(A, v, f);
}

void nonsym(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, const BlockValues& v,
            BlockStore& f) {
  BlockChains ch;
  adlink7l(ia, ja, n, ch);
  nonsym74({n, ia.data(), ja.data(), &ch}, v, f);
}

void solvxn(BlockStore& f, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
            Arr<double>& x2) {
  const int32_t n = f.n;
  const int32_t* piu = f.iu.data();
  const int32_t* pju = f.ju.data();
  const BlockEntry* val = f.val.data();
  const double *pr1 = r1.data(), *pr2 = r2.data();
  double *px1 = x1.data(), *px2 = x2.data();
  // Forward, by columns of L: once x[i] is known, its products with column
  // i of L go into the sums of the rows below.  Each row's sums thus take
  // their terms in ascending column, as a walk along the row would, and the
  // factor is read in the order it is stored.
  f.sums.assign(static_cast<std::size_t>(n) + 1, {0.0, 0.0});
  BlockStore::Sum* sum = f.sums.data();
  for (int32_t i = 1; i <= n; ++i) {
    const int32_t p = piu[i];
    const double* piv = val[p].v[0];
    const double a = piv[0], b = piv[1], c = piv[2], d = piv[3];
    double det = d * a - b * c;
    if (std::fabs(det) < kTinyPivot) det = det >= 0.0 ? kTinyPivot : -kTinyPivot;
    const double inv = 1.0 / det;
    const double e1 = pr1[i] - sum[i].s1, e2 = pr2[i] - sum[i].s2;
    const double y1 = e2 * (-b) * inv + e1 * inv * d;
    const double y2 = e2 * inv * a + e1 * (-c) * inv;
    px1[i] = y1;
    px2[i] = y2;
    for (int32_t s = p + 1; s < piu[i + 1]; ++s) {
      const double* l = val[s].v[0];
      BlockStore::Sum& to = sum[pju[s]];
      to.s1 += l[1] * y2 + l[0] * y1;
      to.s2 += l[3] * y2 + l[2] * y1;
    }
  }
  for (int32_t i = n - 1; i >= 1; --i) {
    double s1 = 0.0, s2 = 0.0;
    for (int32_t s = piu[i] + 1; s < piu[i + 1]; ++s) {
      const int32_t c = pju[s];
      const double* u = val[s].v[1];
      s1 += u[1] * px2[c] + u[0] * px1[c];
      s2 += u[3] * px2[c] + u[2] * px1[c];
    }
    px1[i] -= s1;
    px2[i] -= s2;
  }
}

}  // namespace lf

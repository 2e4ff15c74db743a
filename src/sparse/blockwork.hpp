// The work row of the block factorisation and its row updates.
//
// Column i of L and row i of U are built side by side in one work row held
// densely by index: the cell of index j holds the L block of row j and the U
// block of column j together, so that an update touches one cache line per
// index.  Each side has a mark telling which indices belong to its present
// pattern, and the list of those indices in the order they were entered.
#pragma once

#include <cstdint>
#include <vector>

namespace lf {

// The L and U blocks that share one position of the factor stores, side by
// side in one cache line while the factorisation runs.
struct alignas(64) BlockEntry {
  double v[2][4];  // [0] the L block, [1] the U block, each a, b, c, d
};

struct BlockWork {
  // Side 0 is the column of L, side 1 the row of U.
  struct alignas(64) Cell {
    double v[2][4];  // [side][a, b, c, d]
  };
  std::vector<Cell> cell;
  std::vector<int32_t> mark[2];  // == stamp: the index is in the side's pattern
  std::vector<int32_t> cols[2];  // the side's pattern, as entered
  int32_t stamp = 0;

  explicit BlockWork(int32_t n) : cell(static_cast<std::size_t>(n > 0 ? n : 0) + 1) {
    mark[0].assign(cell.size(), 0);
    mark[1].assign(cell.size(), 0);
  }

  // Makes room for the indices 1..n; marks left from earlier use stay older
  // than any later stamp.
  void fit(int32_t n) {
    const std::size_t want = static_cast<std::size_t>(n > 0 ? n : 0) + 1;
    if (cell.size() >= want) return;
    cell.resize(want);
    mark[0].resize(want, 0);
    mark[1].resize(want, 0);
  }

  // Starts empty patterns on both sides.
  void begin() {
    ++stamp;
    cols[0].clear();
    cols[1].clear();
  }
  bool has(int side, int32_t j) const { return mark[side][static_cast<std::size_t>(j)] == stamp; }
  // Adds index j to a side with a zero block, once.
  void enter(int side, int32_t j) {
    const std::size_t k = static_cast<std::size_t>(j);
    if (mark[side][k] == stamp) return;
    mark[side][k] = stamp;
    cols[side].push_back(j);
    double* v = cell[k].v[side];
    v[0] = v[1] = v[2] = v[3] = 0.0;
  }
  // Zeroes the block of index j on a side, the pattern left as it is.
  void zero(int side, int32_t j) {
    double* v = cell[static_cast<std::size_t>(j)].v[side];
    v[0] = v[1] = v[2] = v[3] = 0.0;
  }
  const double* block(int side, int32_t j) const {
    return cell[static_cast<std::size_t>(j)].v[side];
  }
  void set(int side, int32_t j, double a, double b, double c, double d) {
    double* v = cell[static_cast<std::size_t>(j)].v[side];
    v[0] = a;
    v[1] = b;
    v[2] = c;
    v[3] = d;
  }
};

// Two doubles worked on together: one row of a block.  Each lane does the
// same multiplications and additions in the same order as plain doubles would,
// so the results are the same to the last bit.
typedef double Pair __attribute__((vector_size(16)));

inline Pair pair_at(const double* v) {
  Pair p;
  __builtin_memcpy(&p, v, sizeof p);
  return p;
}
inline void put_pair(double* v, Pair p) {
  __builtin_memcpy(v, &p, sizeof p);
}

// One side of the work row gets x alpha or alpha x added over the entries.
// With Add, an index that the side lacks is entered first (fill-in).  On a
// pattern found before every index is there already, since the pattern of
// column i holds the fill of each earlier column that meets it, so nothing
// is looked up.
template <bool Add, int Side>
inline void block_update(BlockWork& w, int32_t m, const int32_t* xj, const BlockEntry* x,
                         const double alpha[4]) {
  const double aa = alpha[0], ab = alpha[1], ac = alpha[2], ad = alpha[3];
  // Side 0: row r of x alpha is x[r][0] (aa, ab) + x[r][1] (ac, ad).
  // Side 1: row r of alpha x is alpha[r][0] (pa, pb) + alpha[r][1] (pc, pd).
  const Pair top = {aa, ab}, bottom = {ac, ad};
  const Pair saa = {aa, aa}, sab = {ab, ab}, sac = {ac, ac}, sad = {ad, ad};
  BlockWork::Cell* cell = w.cell.data();
  for (int32_t t = 0; t < m; ++t) {
    const int32_t j = xj[t];
    if constexpr (Add) {
      if (!w.has(Side, j)) w.enter(Side, j);
    }
    double* v = cell[j].v[Side];
    const double* xv = x[t].v[Side];
    if constexpr (Side == 0) {
      const Pair pa = {xv[0], xv[0]}, pb = {xv[1], xv[1]}, pc = {xv[2], xv[2]}, pd = {xv[3], xv[3]};
      put_pair(v, pair_at(v) + (pa * top + pb * bottom));
      put_pair(v + 2, pair_at(v + 2) + (pc * top + pd * bottom));
    } else {
      const Pair ptop = pair_at(xv), pbottom = pair_at(xv + 2);
      put_pair(v, pair_at(v) + (saa * ptop + sab * pbottom));
      put_pair(v + 2, pair_at(v + 2) + (sac * ptop + sad * pbottom));
    }
  }
}

// Block row update of one side of the work row over the m entries xj[0..m-1]
// with the blocks of the same side of x[0..m-1]; alpha is {a, b, c, d}.
// Side 0 adds x alpha (a column of L), side 1 adds alpha x (a row of U).  m2axpy enters the indices
// that the side lacks (fill-in); m2axpyo adds nothing and expects the pattern that m2axpy found on
// the same structure.
inline void m2axpy(int side, BlockWork& w, int32_t m, const int32_t* xj, const BlockEntry* x,
                   const double alpha[4]) {
  if (side == 0) {
    block_update<true, 0>(w, m, xj, x, alpha);
  } else {
    block_update<true, 1>(w, m, xj, x, alpha);
  }
}

inline void m2axpyo(int side, BlockWork& w, int32_t m, const int32_t* xj, const BlockEntry* x,
                    const double alpha[4]) {
  if (side == 0) {
    block_update<false, 0>(w, m, xj, x, alpha);
  } else {
    block_update<false, 1>(w, m, xj, x, alpha);
  }
}

}  // namespace lf

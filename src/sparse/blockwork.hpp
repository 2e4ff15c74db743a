// The work row of the block factorisation and its row updates.
//
// Column i of L and row i of U are built side by side in one work row held
// densely by index: the cell of index j holds the L block of row j and the U
// block of column j together, so that an update touches one cache line per
// index.  The pattern of the factors says which indices take part.
#pragma once

#include <cstdint>
#include <vector>

#include "sparse/hugepages.hpp"

namespace lf {

// One block of L or U in the factor store, a, b, c, d, on a 32-byte
// boundary so that it never straddles two cache lines.
struct alignas(32) FactorBlock {
  double v[4];
};

struct BlockWork {
  // Side 0 is the column of L, side 1 the row of U.
  struct alignas(64) Cell {
    double v[2][4];  // [side][a, b, c, d]
  };
  std::vector<Cell, HugePageAlloc<Cell>> cell;  // by index 1..n

  explicit BlockWork(int32_t n) : cell(static_cast<std::size_t>(n > 0 ? n : 0) + 1) {}

  // Makes room for the indices 1..n.
  void fit(int32_t n) {
    const std::size_t want = static_cast<std::size_t>(n > 0 ? n : 0) + 1;
    if (cell.size() < want) cell.resize(want);
  }
  // Zeroes the block of index j on a side.
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

// One side of the work row gets x alpha or alpha x added over the entries,
// all of whose indices the side's pattern holds already, since the pattern of
// column i holds the fill of each earlier column that meets it.
template <int Side>
inline void block_update(BlockWork& w, int32_t m, const int32_t* xj, const FactorBlock* x,
                         const double alpha[4]) {
  const double aa = alpha[0], ab = alpha[1], ac = alpha[2], ad = alpha[3];
  // Side 0: row r of x alpha is x[r][0] (aa, ab) + x[r][1] (ac, ad).
  // Side 1: row r of alpha x is alpha[r][0] (pa, pb) + alpha[r][1] (pc, pd).
  const Pair top = {aa, ab}, bottom = {ac, ad};
  const Pair saa = {aa, aa}, sab = {ab, ab}, sac = {ac, ac}, sad = {ad, ad};
  BlockWork::Cell* cell = w.cell.data();
  for (int32_t t = 0; t < m; ++t) {
    const int32_t j = xj[t];
    double* v = cell[j].v[Side];
    const double* xv = x[t].v;
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

// Block row update of one side of the work row over the m entries
// xj[0..m-1] with the blocks x[0..m-1] of L (side 0) or U (side 1); alpha is {a, b,
// c, d}.  Side 0 adds x alpha (a column of L), side 1 adds alpha x (a row of
// U).  It adds no index: the pattern is the one that the factors were laid
// out on.
inline void m2axpyo(int side, BlockWork& w, int32_t m, const int32_t* xj, const FactorBlock* x,
                    const double alpha[4]) {
  if (side == 0) {
    block_update<0>(w, m, xj, x, alpha);
  } else {
    block_update<1>(w, m, xj, x, alpha);
  }
}

}  // namespace lf

// The work row of the block factorisation and its row updates.
//
// The work row is held densely by column (or row) index, with a mark telling
// which indices belong to the present pattern and the list of those indices
// in the order they were entered.  Each column of L and row of U is built in
// one of these before it is stored.
#pragma once

#include <cstdint>
#include <vector>

namespace lf {

struct BlockWork {
  std::vector<double> a, b, c, d;  // the blocks, by index
  std::vector<int32_t> mark;       // == stamp: the index is in the pattern
  std::vector<int32_t> cols;       // the pattern's indices, as entered
  int32_t stamp = 0;

  explicit BlockWork(int32_t n)
      : a(static_cast<std::size_t>(n > 0 ? n : 0) + 1),
        b(a.size()),
        c(a.size()),
        d(a.size()),
        mark(a.size(), 0) {}

  // Starts an empty pattern.
  void begin() {
    ++stamp;
    cols.clear();
  }
  bool has(int32_t j) const { return mark[static_cast<std::size_t>(j)] == stamp; }
  // Adds index j with a zero block, once.
  void enter(int32_t j) {
    const std::size_t k = static_cast<std::size_t>(j);
    if (mark[k] == stamp) return;
    mark[k] = stamp;
    cols.push_back(j);
    a[k] = b[k] = c[k] = d[k] = 0.0;
  }
  void set(int32_t j, double va, double vb, double vc, double vd) {
    const std::size_t k = static_cast<std::size_t>(j);
    a[k] = va;
    b[k] = vb;
    c[k] = vc;
    d[k] = vd;
  }
};

// Block row update w += x alpha (side 0) or w += alpha x (side 1) over the m
// entries xj[0..m-1] with blocks xa..xd; alpha is {a, b, c, d}.  m2axpy enters
// indices that the work row lacks (fill-in); m2axpyo leaves them out.
void m2axpy(int side, BlockWork& w, int32_t m, const int32_t* xj, const double* xa,
            const double* xb, const double* xc, const double* xd, const double alpha[4]);
void m2axpyo(int side, BlockWork& w, int32_t m, const int32_t* xj, const double* xa,
             const double* xb, const double* xc, const double* xd, const double alpha[4]);

}  // namespace lf

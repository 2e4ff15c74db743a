#include "sparse/blockwork.hpp"

namespace lf {

namespace {

// One side of the work row gets x alpha or alpha x added over the entries.
// With Add, an index that the side lacks is entered first (fill-in).  On a
// pattern found before every index is there already, since the pattern of
// column i holds the fill of each earlier column that meets it, so nothing
// is looked up.
template <bool Add, int Side>
void update(BlockWork& w, int32_t m, const int32_t* xj, const double* xa, const double* xb,
            const double* xc, const double* xd, const double alpha[4]) {
  const double aa = alpha[0], ab = alpha[1], ac = alpha[2], ad = alpha[3];
  BlockWork::Cell* cell = w.cell.data();
  for (int32_t t = 0; t < m; ++t) {
    const int32_t j = xj[t];
    if constexpr (Add) {
      if (!w.has(Side, j)) w.enter(Side, j);
    }
    double* v = cell[j].v[Side];
    const double pa = xa[t], pb = xb[t], pc = xc[t], pd = xd[t];
    if constexpr (Side == 0) {
      v[0] += pa * aa + pb * ac;
      v[1] += pa * ab + pb * ad;
      v[2] += pc * aa + pd * ac;
      v[3] += pc * ab + pd * ad;
    } else {
      v[0] += aa * pa + ab * pc;
      v[1] += aa * pb + ab * pd;
      v[2] += ac * pa + ad * pc;
      v[3] += ac * pb + ad * pd;
    }
  }
}

}  // namespace

void m2axpy(int side, BlockWork& w, int32_t m, const int32_t* xj, const double* xa,
            const double* xb, const double* xc, const double* xd, const double alpha[4]) {
  if (side == 0) {
    update<true, 0>(w, m, xj, xa, xb, xc, xd, alpha);
  } else {
    update<true, 1>(w, m, xj, xa, xb, xc, xd, alpha);
  }
}

void m2axpyo(int side, BlockWork& w, int32_t m, const int32_t* xj, const double* xa,
             const double* xb, const double* xc, const double* xd, const double alpha[4]) {
  if (side == 0) {
    update<false, 0>(w, m, xj, xa, xb, xc, xd, alpha);
  } else {
    update<false, 1>(w, m, xj, xa, xb, xc, xd, alpha);
  }
}

}  // namespace lf

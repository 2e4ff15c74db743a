#include "sparse/blockwork.hpp"

namespace lf {

namespace {

template <bool Add, int Side>
void update(BlockWork& w, int32_t m, const int32_t* xj, const double* xa, const double* xb,
            const double* xc, const double* xd, const double alpha[4]) {
  const double aa = alpha[0], ab = alpha[1], ac = alpha[2], ad = alpha[3];
  double *wa = w.a.data(), *wb = w.b.data(), *wc = w.c.data(), *wd = w.d.data();
  for (int32_t t = 0; t < m; ++t) {
    const int32_t j = xj[t];
    if (!w.has(j)) {
      if (!Add) continue;
      w.enter(j);
    }
    const double pa = xa[t], pb = xb[t], pc = xc[t], pd = xd[t];
    if (Side == 0) {
      wa[j] += pa * aa + pb * ac;
      wb[j] += pa * ab + pb * ad;
      wc[j] += pc * aa + pd * ac;
      wd[j] += pc * ab + pd * ad;
    } else {
      wa[j] += aa * pa + ab * pc;
      wb[j] += aa * pb + ab * pd;
      wc[j] += ac * pa + ad * pc;
      wd[j] += ac * pb + ad * pd;
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

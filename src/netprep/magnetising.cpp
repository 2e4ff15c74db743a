// Transformer magnetising branches: each transformer whose magnetising
// impedance is not negligible gets a branch to ground at its I end.
#include <cmath>
#include <cstdlib>

#include "netprep/netprep.hpp"

namespace lf {

void dwrmxm() {
  const int32_t n = LFINF.nacline + LFINF.ntrans;
  NO.nbranch = n;
  if (LFINF.ntrans == 0) return;
  int32_t m = n;
  for (int32_t t = 1; t <= LFINF.ntrans; ++t) {
    const double rm = L3PP.Rm[t], xm = L3PP.Xm[t];
    if (std::fabs(rm) < kNegligibleMagnetising && std::fabs(xm) < kNegligibleMagnetising) continue;
    ++m;
    if (static_cast<std::size_t>(m) > IJB.I.size()) grow_branches(static_cast<std::size_t>(m));
    const int32_t bus = IJB.I[LFINF.nacline + t];
    IJB.I[m] = bus;
    IJB.J[m] = bus;
    IJB.No[m] = 0;
    RXB.R[m] = rm;
    RXB.X[m] = xm;
    RXB.B[m] = 0.0;
    RXB.T[m] = 1.0;
  }
  NO.nbranch = m;
}

}  // namespace lf

// A bench for single blocks: block 1 is the block under test, block 2 the
// target of its link; parameters stand from NUPA[1].
#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "control/blocks.hpp"
#include "control/udblock.hpp"
#include "io/errlist.hpp"
#include "support/growarr.hpp"

namespace lf::test {

struct Io {  // inputs and stored state of the block under test
  double x1 = 0, x2 = 0, dx1 = 0, dx2 = 0, y = 0, yo = 0, dyo = 0;
};

inline void bench_reset() {
  for (Arr<double>* a : {&UDXY.X1, &UDXY.X2, &UDXY.YO, &UDXY.Y, &UDXY.DX1, &UDXY.DX2, &UDXY.DYO,
                         &UDXY.DY, &NUPA, &NU1.FS1O, &NU1.FS2O, &NU1.FS1N, &NU1.FS2N, &NU1.TMR})
    reallocate(*a, 0, 12);
  for (Arr<int32_t>* a : {&UDB.BLKTYP, &UDB.BLKNPA, &UDB.LNKFST, &UDB.LNKCNT, &UDB.BLKHLD,
                          &UDB.LNKX1, &UDB.LNKX2, &NU1.LATCH})
    reallocate(*a, 0, 12);
  UDB.LNKFST[1] = 1;
  UDB.LNKCNT[1] = 1;
  UDB.LNKX1[1] = 2;  // the output goes on to the first input of block 2
  COMM7.DT = 0;
  NOST1.KSTEP = 0;
  NNU1.IPRED = 0;
}

// Runs block 1 of `type` once; gives Y and DY.
inline std::pair<double, double> run_block(int32_t type, int32_t mode,
                                           const std::vector<double>& par, const Io& io) {
  for (std::size_t k = 0; k < par.size(); ++k) NUPA[static_cast<std::ptrdiff_t>(k) + 1] = par[k];
  UDXY.X1[1] = io.x1, UDXY.X2[1] = io.x2, UDXY.DX1[1] = io.dx1, UDXY.DX2[1] = io.dx2;
  UDXY.Y[1] = io.y, UDXY.YO[1] = io.yo, UDXY.DYO[1] = io.dyo;
  int32_t p = 1, ntimer = 0, nfilt = 0;
  blrun(type, mode, p, 1, ntimer, nfilt);
  return {UDXY.Y[1], UDXY.DY[1]};
}

}  // namespace lf::test

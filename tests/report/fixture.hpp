// Store set-up for the tests of the reports, the area interchange and the DC
// lines.
#pragma once

#include <cmath>
#include <cstdint>

#include "common/files.hpp"
#include "common/lines.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf::test {

// The report file stem + ext headed by its name, the clock's stamps masked
// (the first line of .LP1, the second of .CAL).
inline std::string report_text(const std::string& stem, const std::string& ext) {
  std::string text = read_file(stem + ext);
  const std::size_t at = ext == ".CAL" ? text.find('\n') + 1 : 0;
  if (ext == ".LP1" || (ext == ".CAL" && at > 0))
    text.replace(at, text.find('\n', at) - at, text.substr(at, ext == ".LP1" ? 4 : 0) + "<stamp>");
  return "== " + ext + "\n" + text;
}

// Clears the counts and the arrays that the reports read.
inline void reset_store() {
  LFINF = {};
  LF93 = {};
  NO = {};
  NU = {};
  NNTOON.nbase = NNTOON.nnode = NNTOON.maxno = 0;
  NNTOON.map.fill(0);
  grow_buses(4);
  L5OLD.ngenold = L5OLD.genmerged = 0;
  L6PP.nloadold = 0;
  NEW.fill(0);
  GLP.IGEN.fill(0);
  GLP.ILOAD.fill(0);
  for (Arr<double>* a :
       {&LFUDOT.UDPINJ, &LFUDOT.UDQINJ, &RXB.R, &RXB.X, &RXB.B, &RXB.T, &VPQ.V, &VPQ.TH, &VPQ.E,
        &VPQ.F, &VPQ.PG, &VPQ.QG, &VPQ.PL, &VPQ.QL, &VPQ.PDC, &VPQ.QDC, &L5.P, &L6.P})
    a->fill(0);
  for (Arr<int32_t>* a :
       {&IJB.I, &IJB.J, &IJB.No, &IJB.LOSSAREA, &L5.mode_ctrl, &L6.mode_ctrl, &L3P.mode_ctrl})
    a->fill(0);
}

// Voltage of internal bus i; the angle in degrees.
inline void set_voltage(int32_t i, double v, double deg) {
  const double th = deg * 3.14159265358979323846 / 180;
  VPQ.V[i] = v;
  VPQ.TH[i] = th;
  VPQ.E[i] = v * std::cos(th);
  VPQ.F[i] = v * std::sin(th);
}

inline void branch(int32_t k, int32_t i, int32_t j, int32_t no, double r, double x, double b,
                   double t) {
  IJB.I[k] = i;
  IJB.J[k] = j;
  IJB.No[k] = no;
  RXB.R[k] = r;
  RXB.X[k] = x;
  RXB.B[k] = b;
  RXB.T[k] = t;
}

}  // namespace lf::test

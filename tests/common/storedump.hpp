// The case as the readers leave it in the store, as text: the header, then a
// line for each bus, branch, generator, load, DC line, load parameter set and
// switch record, to compare whole with a golden file.
#pragma once

#include <cstdio>
#include <string>

#include "store/store.hpp"

namespace lf::test {

inline std::string store_dump() {
  std::string out;
  char buf[512];
  const auto line = [&out, &buf](const char* format, auto... v) {
    std::snprintf(buf, sizeof buf, format, v...);
    out += buf;
  };
  line(
      "case: %d buses, %d lines, %d transformers, %d DC lines, %d generators, %d loads, "
      "%d load sets, %d areas, %d branches, %d switches, %d factors, ndc %d\n",
      LFINF.nbus, LFINF.nacline, LFINF.ntrans, LFINF.ndcline, LFINF.ngenerat, LFINF.nload,
      LFINF.nloadpar, LFINF.narea, NO.nbranch, LF93.nswitch, LF93.ctrl_fact, NO.ndc);
  line("base %.17g vmax %.17g vmin %.17g tolerance %.17g method %d iterations %d loadshare %d\n",
       LFINF.base_mva, LFINF.vmax, LFINF.vmin, LFINF.tolerance, LFINF.method, LFINF.iteration,
       LF93.loadshare);
  for (int32_t b = 1; b <= LFINF.nbus; ++b)
    line("bus %d '%s' area %d vmax %.17g vmin %.17g\n", b, L1.busname[b].str().c_str(),
         LL1.busarea[b], LL1.busvmax[b], LL1.busvmin[b]);
  for (int32_t k = 1; k <= NO.nbranch; ++k)
    line("branch %d: %d-%d No %d mark %d area %d group %d R %.17g X %.17g B %.17g T %.17g\n", k,
         IJB.I[k], IJB.J[k], IJB.No[k], IJOPEN.mark[k], IJB.LOSSAREA[k], L2P.par_group[k], RXB.R[k],
         RXB.X[k], RXB.B[k], RXB.T[k]);
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g)
    line("generator %d: bus %d type %d P %.17g Q %.17g V %.17g angle %.17g Q %.17g..%.17g\n", g,
         L5.ibs[g], L5.mode_ctrl[g], L5.P[g], L5.Q[g], L5.V[g], L5.Angle[g], L5P.Qmin[g],
         L5P.Qmax[g]);
  for (int32_t d = 1; d <= LFINF.nload; ++d)
    line("load %d: bus %d No %d type %d P %.17g Q %.17g V %.17g\n", d, L6.ibs[d], L6.No[d],
         L6.mode_ctrl[d], L6.P[d], L6.Q[d], L6.V[d]);
  for (int32_t k = 1; k <= LFINF.ndcline; ++k)
    line("DC line %d: %d-%d No %d area %d\n", k, NL4.I[k], NL4.J[k], NL4.No[k], NL4.LOSSAREA[k]);
  for (int32_t s = 1; s <= LFINF.nloadpar; ++s)
    line("load set %d: P %.17g %.17g %.17g Q %.17g %.17g %.17g\n", s, ABCLC.ap[s], ABCLC.bp[s],
         ABCLC.cp[s], ABCLC.aq[s], ABCLC.bq[s], ABCLC.cq[s]);
  for (int32_t s = 1; s <= LF93.nswitch; ++s)
    line("switch %d: group %d type %d %d-%d\n", s, L13.group[s], L13.type[s], L13.I[s], L13.J[s]);
  return out;
}

}  // namespace lf::test

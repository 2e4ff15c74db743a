#include "methods/limit.hpp"

#include "methods/iteration.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf {

namespace {

// The bound that q passes, if any: true with the bound in `bound`.  A value
// exactly at a limit is inside.
bool passed(double q, double lo, double hi, double& bound) {
  if (q < lo) {
    bound = lo;
    return true;
  }
  if (q > hi) {
    bound = hi;
    return true;
  }
  return false;
}

// A voltage-limited row whose bus voltage is outside the bus limits: the row
// takes the bound as its voltage, the bus restarts from it at angle 0 and the
// row holds the voltage from now on.  A node that network preparation made
// has no limits of its own: it has those of the case bus it stands for.
bool hold_voltage(int32_t reduced, int32_t i, int32_t& type, double& row_v) {
  const int32_t bus = NNTOON[reduced];
  double bound = 0;
  if (!passed(VPQ.V[i], LL1.busvmin[bus], LL1.busvmax[bus], bound)) return false;
  row_v = bound;
  VPQ.V[i] = bound;
  VPQ.TH[i] = 0;
  VPQ.E[i] = bound;
  VPQ.F[i] = 0;
  type = kTypePV;
  return true;
}

}  // namespace

void limit(const Arr<double>& qc, int32_t& changed) {
  changed = 0;
  double bound = 0;
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    const int32_t i = internal_bus(L5.ibs[g]);
    if (i == 0) continue;
    if (L5.mode_ctrl[g] == kTypePVQlim) {
      // The test is on the generator's own output: QG is the bus's load Q
      // plus the computed injection.
      if (!passed(VPQ.QG[i], L5P.Qmin[g], L5P.Qmax[g], bound)) continue;
      L5.Q[g] = bound;
      VPQ.QG[i] = bound;
      L5.mode_ctrl[g] = kTypePQ;
      if (GLP.ILOAD[i] != 0) L6.mode_ctrl[GLP.ILOAD[i]] = kTypePQ;
      changed = 1;
    } else if (L5.mode_ctrl[g] == kTypePQVlim) {
      if (hold_voltage(L5.ibs[g], i, L5.mode_ctrl[g], L5.V[g])) changed = 1;
    }
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    const int32_t i = internal_bus(L6.ibs[l]);
    if (i == 0) continue;
    if (L6.mode_ctrl[l] == kTypePVQlim) {
      // A bus with a generator row is left to that row.
      if (GLP.IGEN[i] != 0 || !passed(-qc[i], L6P.Qmin[l], L6P.Qmax[l], bound)) continue;
      L6.Q[l] = bound;
      VPQ.QL[i] = bound;
      L6.mode_ctrl[l] = kTypePQ;
      changed = 1;
    } else if (L6.mode_ctrl[l] == kTypePQVlim) {
      if (hold_voltage(L6.ibs[l], i, L6.mode_ctrl[l], L6.V[l])) changed = 1;
    }
  }
}

}  // namespace lf

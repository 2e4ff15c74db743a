// Merging of the loads and the generators of one bus: the solver knows one of
// each per bus.  The elements as read are kept so that the reports can give
// each its part of the solved power.
#include <cmath>
#include <unordered_map>
#include <vector>

#include "netprep/netprep.hpp"
#include "support/growarr.hpp"

namespace lf {

namespace {

// Merged types: the forms with limits or control fall back to their plain
// form, P and V given or P and Q given.
int32_t fold(int32_t type) {
  switch (type) {
    case kTypePVQlim:
    case kTypeModel4:
    case kTypeModel6:
      return kTypePV;
    case kTypePQVlim:
    case kTypeModel5:
    case kTypeModel7:
    case kTypeModel8:
      return kTypePQ;
    default:
      return type;
  }
}

void copy_load(int32_t from, int32_t to) {
  L6.P[to] = L6.P[from];
  L6.Q[to] = L6.Q[from];
  L6.V[to] = L6.V[from];
  L6.Angle[to] = L6.Angle[from];
  L6.ibs[to] = L6.ibs[from];
  L6.No[to] = L6.No[from];
  L6.mode_ctrl[to] = L6.mode_ctrl[from];
}

void copy_gen(int32_t from, int32_t to) {
  L5.P[to] = L5.P[from];
  L5.Q[to] = L5.Q[from];
  L5.V[to] = L5.V[from];
  L5.Angle[to] = L5.Angle[from];
  L5.ibs[to] = L5.ibs[from];
  L5.mode_ctrl[to] = L5.mode_ctrl[from];
  L5.merged[to] = L5.merged[from];
}

void copy_limits(LPRec& r, int32_t from, int32_t to) {
  r.Qmax[to] = r.Qmax[from];
  r.Qmin[to] = r.Qmin[from];
  r.Pmax[to] = r.Pmax[from];
  r.Pmin[to] = r.Pmin[from];
  r.value_ctrl[to] = r.value_ctrl[from];
  r.par_group[to] = r.par_group[from];
  r.ibs_ctrl[to] = r.ibs_ctrl[from];
  r.line_ctrl[to] = r.line_ctrl[from];
}

}  // namespace

void dwload() {
  int32_t n = LFINF.nload;
  if (n <= 0 || LF93.loadshare == 0) return;
  L6PP.grow(static_cast<std::size_t>(n));
  for (int32_t i = 1; i <= n; ++i) {
    L6PP.ibs[i] = L6.ibs[i];
    L6PP.No[i] = L6.No[i];
    L6PP.mode_ctrl[i] = L6.mode_ctrl[i];
    L6PP.P[i] = L6.P[i];
    L6PP.Q[i] = L6.Q[i];
  }
  L6PP.nloadold = n;

  // The kept list holds one load per bus; kept_at finds a bus's entry.
  std::unordered_map<int32_t, int32_t> kept_at{{L6.ibs[1], 1}};
  int32_t kept = 1;
  for (int32_t i = 2; i <= n; ++i) {
    auto [it, fresh] = kept_at.try_emplace(L6.ibs[i], kept + 1);
    if (fresh) {
      ++kept;
      if (kept != i) {
        copy_load(i, kept);
        copy_limits(L6P, i, kept);
      }
      continue;
    }
    int32_t f = it->second;
    L6.No[f] = 0;
    L6.mode_ctrl[f] = fold(L6.mode_ctrl[f]);
    if (L6.mode_ctrl[i] == kTypeSlack) L6.mode_ctrl[f] = kTypeSlack;
    L6.P[f] += L6.P[i];
    L6.Q[f] += L6.Q[i];
  }
  LFINF.nload = kept;
}

void dwgen() {
  int32_t n = LFINF.ngenerat;
  L5OLD.ngenold = n;
  redim(L5OLD.ibs, n);
  redim(L5OLD.mode_ctrl, n);
  redim(L5OLD.merged, n);
  redim(L5OLD.map, n);
  redim(L5OLD.P, n);
  redim(L5OLD.Q, n);
  redim(L5OLD.share, n);
  for (int32_t i = 1; i <= n; ++i) {
    L5OLD.ibs[i] = L5.ibs[i];
    L5OLD.mode_ctrl[i] = L5.mode_ctrl[i];
    L5OLD.merged[i] = L5.merged[i];
    L5OLD.P[i] = L5.P[i];
    L5OLD.Q[i] = L5.Q[i];
    L5OLD.map[i] = 0;
    L5OLD.share[i] = 1.0;
  }

  // The later generators of each bus, in order, for the merge of step i.
  std::unordered_map<int32_t, std::vector<int32_t>> at_bus;
  for (int32_t i = 1; i <= n; ++i)
    if (L5.ibs[i] > 0) at_bus[L5.ibs[i]].push_back(i);

  int32_t m = 0;
  for (int32_t i = 1; i <= n; ++i) {
    if (L5.ibs[i] <= 0) continue;
    ++m;
    if (m != i) {
      copy_gen(i, m);
      copy_limits(L5P, i, m);
    }
    L5OLD.map[i] = m;
    int32_t count = 1;
    for (int32_t k : at_bus[L5.ibs[m]]) {
      if (k <= i) continue;
      L5.P[m] += L5.P[k];
      L5.Q[m] += L5.Q[k];
      L5.ibs[k] = 0;
      L5.mode_ctrl[m] = fold(L5.mode_ctrl[m]);
      if (L5.mode_ctrl[k] == kTypeSlack) L5.mode_ctrl[m] = kTypeSlack;
      L5OLD.map[k] = m;
      L5OLD.share[k] = -1.0;
      L5OLD.share[i] = -1.0;
      ++count;
    }
    L5.merged[m] = count > 1 ? count : 0;
  }

  if (m >= n) {
    L5OLD.genmerged = 0;
    return;
  }
  L5OLD.genmerged = 1;
  LFINF.ngenerat = m;
  for (int32_t r = 1; r <= n; ++r) {
    if (L5OLD.share[r] > 0.0) continue;
    int32_t j = L5OLD.map[r];
    int32_t type = L5.mode_ctrl[j];
    if (type < kTypeSlack) {
      L5OLD.share[r] =
          std::fabs(L5.P[j]) >= kShareFloor ? L5OLD.P[r] / L5.P[j] : 1.0 / L5.merged[j];
    } else if (type == kTypeSlack) {
      L5OLD.share[r] = 1.0 / L5.merged[j];
    } else {
      L5OLD.share[r] = 0.0;
    }
  }
}

}  // namespace lf

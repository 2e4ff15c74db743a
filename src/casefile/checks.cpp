#include "casefile/checks.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lf {

namespace {

constexpr double kNoBaseKv = 9.999999747378752e-05;  // a base voltage at most this is none
constexpr double kNoLimit = 0.0010000000474974513;   // a per-unit limit at most this is none
constexpr double kFactorTol =
    9.999999747378752e-06;  // a factor nearer than this to 0 or 1 is absent

bool in_force(double factor) {
  return factor >= kFactorTol && std::fabs(factor - 1.0) >= kFactorTol;
}

// The name test of a factor record: pattern is name1 or name2, start the
// 1-based place in the bus name where the compared piece begins.  The
// pattern's length is measured on a 20-character copy, so for the 10
// characters that a pattern holds it is 0, and then any bus name matches.
bool name_matches(const BusName& bus, int32_t bus_len, const AreaName& pattern, bool at_own_len) {
  int32_t len = 0;
  lcha(BusName(pattern.view()), len);
  if (len > bus_len) return false;
  const int32_t start = at_own_len ? bus_len : len;
  for (int32_t c = 0; c < len; ++c) {
    // 0-based, within the pattern's characters and within the bus name
    const int32_t p = static_cast<int32_t>(AreaName::size()) - len + c;
    const int32_t b = start - 1 + c;
    if (p < 0 || b < 0 || b >= static_cast<int32_t>(BusName::size()) || pattern[p] != bus[b])
      return false;
  }
  return true;
}

bool name_selects(const BusName& bus, const AreaName& name1, const AreaName& name2) {
  int32_t bus_len = 0;
  lcha(bus, bus_len);
  if (!name1.blank() && name_matches(bus, bus_len, name1, true)) return true;
  return !name2.blank() && name_matches(bus, bus_len, name2, false);
}

}  // namespace

void repair_bus_limits(int32_t i) {
  double& vmax = LL1.busvmax[i];
  double& vmin = LL1.busvmin[i];
  if (LL1.basekv[i] <= kNoBaseKv) {
    vmax = LFINF.vmax;
    vmin = LFINF.vmin;
  }
  if (vmax <= kNoLimit) vmax = LFINF.vmax;
  if (vmin <= kNoLimit) vmin = LFINF.vmin;
  if (vmax < vmin) {
    vmax = LFINF.vmax;
    vmin = LFINF.vmin;
  }
}

void fold_mode_ctrl(int32_t& mode_ctrl) {
  if (mode_ctrl == kTypeModel4 || mode_ctrl == kTypeModel6)
    mode_ctrl = kTypePV;
  else if (mode_ctrl == kTypeModel5 || mode_ctrl == kTypeModel7 || mode_ctrl == kTypeModel8)
    mode_ctrl = kTypePQ;
}

void clamp_counts() {
  for (int32_t* count :
       {&LFINF.nbus, &LFINF.nacline, &LFINF.ntrans, &LFINF.ndcline, &LFINF.ngenerat, &LFINF.nload,
        &LFINF.narea, &LF93.nswitch, &LF93.ctrl_fact})
    *count = std::max(*count, 0);
}

void set_loadshare() {
  // Loads share a bus when a bus number comes twice among them.
  std::vector<int32_t> buses;
  buses.reserve(static_cast<std::size_t>(std::max(LFINF.nload, 0)));
  for (int32_t d = 1; d <= LFINF.nload; ++d) buses.push_back(L6.ibs[d]);
  std::sort(buses.begin(), buses.end());
  LF93.loadshare = std::adjacent_find(buses.begin(), buses.end()) != buses.end() ? 1 : 0;
}

void vstand(double kv, int32_t& level) {
  static constexpr struct {
    long below;
    int32_t level;
  } kLevels[] = {{9, 0},     {26, 10},   {51, 35},   {151, 110}, {251, 220},
                 {351, 330}, {451, 400}, {551, 500}, {851, 750}};
  const long k = std::lround(kv);
  for (const auto& row : kLevels) {
    if (k < row.below) {
      level = row.level;
      return;
    }
  }
  level = 1000;
}

void lcha(const BusName& name, int32_t& length) {
  length = 0;
  for (int32_t c = static_cast<int32_t>(BusName::size()) - 1; c >= 0 && name[c] != ' '; --c)
    ++length;
}

void chpq() {
  const int32_t nfact = LF93.ctrl_fact;

  // Generators: by area, else by voltage level, else by name pattern.
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    const int32_t b = L5.ibs[g];
    if (b < 1 || b > LFINF.nbus) continue;  // no such bus: nothing can select it
    int32_t bus_level = 0;
    vstand(LL1.basekv[b], bus_level);
    for (int32_t k = 1; k <= nfact; ++k) {
      if (!in_force(L10.PG[k]) && !in_force(L10.QG[k])) continue;
      bool match = L10.area[k] > 0 && L10.area[k] == LL1.busarea[b];
      if (!match && L10.kv[k] > 0) {
        int32_t level = 0;
        vstand(L10.kv[k], level);
        match = level == bus_level;
      }
      if (!match) match = name_selects(L1.busname[b], L10.name1[k], L10.name2[k]);
      if (!match) continue;
      if (in_force(L10.PG[k])) L5.P[g] *= L10.PG[k];
      if (in_force(L10.QG[k])) L5.Q[g] *= L10.QG[k];
      break;
    }
  }

  // Loads: only the area selects; level and name never do.
  for (int32_t d = 1; d <= LFINF.nload; ++d) {
    const int32_t b = L6.ibs[d];
    if (b < 1 || b > LFINF.nbus) continue;
    for (int32_t k = 1; k <= nfact; ++k) {
      if (!in_force(L10.PL[k]) && !in_force(L10.QL[k])) continue;
      if (L10.area[k] <= 0 || L10.area[k] != LL1.busarea[b]) continue;
      if (in_force(L10.PL[k])) L6.P[d] *= L10.PL[k];
      if (in_force(L10.QL[k])) L6.Q[d] *= L10.QL[k];
      break;
    }
  }
}

void isrlib(int32_t& flag) {
  flag = 0;
  if (LFINF.nload <= 0) return;
  LFINF.nloadpar = 1;
  ABCLC.ap[1] = 0.0;
  ABCLC.bp[1] = 0.0;
  ABCLC.cp[1] = 1.0;
  ABCLC.aq[1] = 0.0;
  ABCLC.bq[1] = 0.0;
  ABCLC.cq[1] = 1.0;
  for (int32_t d = 1; d <= LFINF.nload; ++d) {
    if (L6.mode_ctrl[d] >= kTypeFirstLoadSet) {
      flag = 1;
      return;
    }
  }
}

}  // namespace lf

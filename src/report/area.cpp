#include "report/area.hpp"

#include <cmath>
#include <string>

#include "control/dcline.hpp"
#include "io/channels.hpp"
#include "report/reports.hpp"
#include "sparse/ymatrix.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "support/fmt.hpp"

namespace lf {

AREARec AREA;

namespace {

// Area of reduced bus b.
int32_t area_of(int32_t b) {
  return LL1.busarea[NNTOON[b]];
}

// The interchange of area a: 0 for a negative area number, which no area
// record can name.
double pact(int32_t a) {
  return a < 0 || static_cast<std::size_t>(a) > AREA.PACT.size() ? 0.0 : AREA.PACT[a];
}

// Adds x to the interchange of area a; an area number beyond the table
// widens it, a negative one takes nothing.
void add_pact(int32_t a, double x) {
  if (a < 0) return;
  AREA.PACT.grow(static_cast<std::size_t>(a));
  AREA.PACT[a] += x;
}

void print_table() {
  wstring(std::string(15, ' ') + "***** AREA  INTERCHANGE RESULTS *****");
  wstring("    AREA NO.   AREA NAME    SCHEDULE(MW)  ACTUAL(MW)   DIFFERENCE(MW)");
  wstring("    " + std::string(8, '-') + "  " + std::string(12, '-') + "  " + std::string(12, '-') +
          "  " + std::string(12, '-') + "  " + std::string(14, '-'));
  const double base = LFINF.base_mva;
  for (int32_t i = 1; i <= LFINF.narea; ++i) {
    const double sched = base * LL7.p_schedule[i];
    const double act = base * pact(LL7.area_no[i]);
    wstring("      " + fmt_i(LL7.area_no[i], 4) + "     " + L7.area_name[i].str() + "     " +
            fmt_f(sched, 8, 1) + "      " + fmt_f(act, 8, 1) + "       " +
            fmt_f(sched - act, 8, 1));
  }
}

void output_warning(const char* what, int32_t rec, double pg, const std::string& more) {
  wstring("", 0);
  wstring("***** Warning *****");
  wstring(what);
  wstring("     Area No.= " + fmt_i(rec, 2) + "     PG=" + fmt_f(pg, 7, 2) + more);
  wstring(" Please Readjust Area Interchange Schedule Value");
}

}  // namespace

int32_t regulating_generator(int32_t rec) {
  const int32_t unit = LL7.unit[rec];
  if (unit < 1 || static_cast<std::size_t>(unit) > NEW.size() || NEW[unit] == 0) return 0;
  const int32_t g = GLP.IGEN[NEW[unit]];
  return g > 0 ? g : 0;
}

void adjare(int32_t& flag) {
  flag = kAreasWithin;
  AREA.PACT.fill(0);
  AREA.PACT[0] = 0;  // area 0 counts too: nothing of an earlier call may stay

  // Tie lines: each end counts its flow to its own area, and the loss goes
  // to the area named by the branch, or else to the first end's area.
  for (int32_t k = 1; k <= LFINF.nacline + LFINF.ntrans; ++k) {
    const int32_t a = area_of(IJB.I[k]), b = area_of(IJB.J[k]);
    if (a == b) continue;
    double pij, qij, pji, qji, ci, cj;
    brpq(k, pij, qij, pji, qji, ci, cj);
    add_pact(a, pij);
    add_pact(b, pji);
    add_pact(IJB.LOSSAREA[k] > 0 ? IJB.LOSSAREA[k] : a, -(pij + pji));
  }
  // DC lines as the interchange sees them: their ends lie on one bus, so
  // DC power crossing an area boundary is not counted.
  for (int32_t k = 1; k <= LFINF.ndcline; ++k) {
    const int32_t a = area_of(LDC3.ibs[k]), b = area_of(LDC3.jbs[k]);
    if (a == b) continue;
    add_pact(a, LDC3.pi[k]);
    add_pact(b, LDC3.pj[k]);
  }

  const int32_t n = LFINF.narea;
  const auto deviation = [](int32_t i) { return LL7.p_schedule[i] - pact(LL7.area_no[i]); };
  bool outside = false;
  for (int32_t i = 1; i <= n && !outside; ++i) outside = std::fabs(deviation(i)) > LL7.tolerance[i];

  if (outside) {
    flag = kAreasMoved;
    for (int32_t i = 1; i <= n; ++i) {
      const double d = deviation(i);
      const int32_t g = regulating_generator(i);
      if (g == 0) {
        const int32_t unit = LL7.unit[i];
        const bool known = unit >= 1 && static_cast<std::size_t>(unit) <= NNTOON.map.size();
        wstring("***** Warning *****");
        wstring("   Area No.= " + fmt_i(i, 2) + "   Regulating Generator" +
                (known ? L1.busname[NNTOON[unit]].str() : std::string(BusName::size(), ' ')) +
                "  Is not Exist !");
        continue;
      }
      L5.P[g] += d;
      if (!(L5.P[g] >= 0.0))
        output_warning(" Regulating Generator Output Is Negative", i, L5.P[g], "");
      if (!(L5.P[g] <= LL7.pmax[i])) {
        flag = kAreasOverLimit;
        output_warning(" Regulating Generator Output Is Over Limit", i, L5.P[g],
                       "     PMAX=" + fmt_f(LL7.pmax[i], 7, 2));
      }
    }
    if (flag == kAreasOverLimit) {  // one area over its limit takes back the changes of all
      for (int32_t i = 1; i <= n; ++i)
        if (const int32_t g = regulating_generator(i); g > 0) L5.P[g] -= deviation(i);
    }
  }
  print_table();
}

}  // namespace lf

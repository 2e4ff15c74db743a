#include "report/area.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "common/golden.hpp"
#include "report/fixture.hpp"
#include "report/reports.hpp"

namespace lf {
namespace {

using test::printed;

// Buses 1 and 4 in area 1, bus 2 in area 2, bus 3 in area 3, a generator on
// each of buses 1 to 3.  The tie line 1-2 is a pure resistance carrying 1.0
// out of bus 1 and 0.9 into bus 2; line 1-4 stays inside area 1.
class AreaCase : public testing::Test {
 protected:
  void SetUp() override {
    test::reset_store();
    test::capture_printed();
    LFINF.base_mva = 100;
    LFINF.nacline = 2;
    NO.nbranch = 2;
    NO.nnode = 4;
    const int32_t area[] = {1, 2, 3, 1};
    const char* names[] = {"ALPHA", "BETA", "GAMMA", "DELTA"};
    grow_buses(4);
    for (int32_t b = 1; b <= 4; ++b) {
      NEW[b] = NNTOON[b] = b;
      LL1.busarea[b] = area[b - 1];
      L1.busname[b] = names[b - 1];
    }
    const double v[] = {1.0, 0.9, 1.0, 0.95};
    for (int32_t b = 1; b <= 4; ++b) test::set_voltage(b, v[b - 1], 0);
    test::branch(1, 1, 2, 1, 0.1, 0, 0, 1);
    test::branch(2, 1, 4, 1, 0.01, 0.1, 0.02, 1);
    IJB.LOSSAREA[1] = 3;
    for (int32_t g = 1; g <= 3; ++g) L5.ibs[g] = GLP.IGEN[g] = g, L5.P[g] = 2.0;
    LFINF.narea = 3;
    const char* area_names[] = {"WEST", "EAST", "HILLS"};
    for (int32_t i = 1; i <= 3; ++i) {
      LL7.area_no[i] = LL7.unit[i] = i;
      LL7.tolerance[i] = 0.001, LL7.pmax[i] = 5;
      L7.area_name[i] = area_names[i - 1];
    }
    // On schedule, with the tie line's loss charged to area 3.
    LL7.p_schedule[1] = 1.0;
    LL7.p_schedule[2] = -0.9;
    LL7.p_schedule[3] = -0.1;
  }
  // Runs the interchange: its flag, the lines printed, the areas' actual
  // interchange and the generators' outputs, under the heading `what`.
  void run(const std::string& what) {
    printed.clear();
    int32_t flag = -1;
    adjare(flag);
    char buf[400];
    std::snprintf(buf, sizeof buf,
                  "== %s: flag %d\nactual %.17g %.17g %.17g\nP %.17g %.17g %.17g\n", what.c_str(),
                  flag, AREA.PACT[1], AREA.PACT[2], AREA.PACT[3], L5.P[1], L5.P[2], L5.P[3]);
    text += buf;
    for (const auto& l : printed) text += l + "\n";
  }
  std::string text;
};

// What each case prints and leaves stands in tests/data/golden/report/areas.txt.
TEST_F(AreaCase, InterchangeAndAdjustment) {
  // On schedule, with the tie line's loss charged to area 3; the areas' own
  // results for the report file.
  run("on schedule");
  test::ScratchFolder dir;
  const std::string stem = dir / "C";
  wlp7(CaseName(stem));
  text += test::report_text(stem, ".LP7");

  // The first end's area counts the flow at the far end.  A deviation
  // exactly equal to the tolerance is within it; just above, the generator
  // moves by the whole difference; a generator moved exactly onto its limit
  // is within it.
  IJB.LOSSAREA[1] = 0;
  LL7.tolerance[1] = LL7.tolerance[2] = LL7.tolerance[3] = 1;
  run("loss on the first area");
  LL7.tolerance[1] = std::fabs(LL7.p_schedule[1] - AREA.PACT[1]);
  run("deviation equal to the tolerance");
  LL7.tolerance[1] = std::nextafter(LL7.tolerance[1], 0.0);
  run("deviation just above the tolerance");
  LL7.pmax[1] = L5.P[1] + (LL7.p_schedule[1] - AREA.PACT[1]);
  run("generator moved onto its limit");

  // Area 2's regulating bus has no generator and stays off schedule; area
  // 3 asks more than its generator gives, whose negative output stays.
  SetUp();
  LL7.unit[2] = 4;
  LL7.p_schedule[1] = 0.5, LL7.p_schedule[2] = -0.5, LL7.p_schedule[3] = -2.5;
  run("missing generator, negative output");

  // Generator 2 driven over its limit: every change is taken back, the area
  // without a generator skipped; the table shows the interchange that led
  // to the changes.
  SetUp();
  LL7.unit[3] = 4;
  LL7.p_schedule[1] = 0.5, LL7.p_schedule[2] = 3.5, LL7.p_schedule[3] = 1;
  run("over the limit");

  LFINF.narea = 0;
  run("no area records");
  test::expect_golden(text, "report/areas.txt");
}

}  // namespace
}  // namespace lf

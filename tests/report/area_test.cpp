#include "report/area.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "report/fixture.hpp"
#include "report/reports.hpp"

namespace lf {
namespace {

using test::printed;
using testing::ElementsAre;

const char* const kHead[] = {
    "               ***** AREA  INTERCHANGE RESULTS *****",
    "    AREA NO.   AREA NAME    SCHEDULE(MW)  ACTUAL(MW)   DIFFERENCE(MW)",
    "    --------  ------------  ------------  ------------  --------------"};

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
  int32_t run() {
    printed.clear();
    int32_t flag = -1;
    adjare(flag);
    return flag;
  }
  static std::vector<std::string> with_head(std::vector<std::string> lines) {
    lines.insert(lines.begin(), std::begin(kHead), std::end(kHead));
    return lines;
  }
};

TEST_F(AreaCase, OnScheduleWithLossChargedToThirdArea) {
  EXPECT_EQ(run(), 0);
  EXPECT_NEAR(AREA.PACT[1], 1.0, 1e-15);
  EXPECT_NEAR(AREA.PACT[2], -0.9, 1e-15);
  EXPECT_NEAR(AREA.PACT[3], -0.1, 1e-15);
  EXPECT_EQ(printed,
            with_head({"         1     WEST              100.0         100.0            0.0",
                       "         2     EAST              -90.0         -90.0           -0.0",
                       "         3     HILLS             -10.0         -10.0           -0.0"}));
  EXPECT_EQ(L5.P[1], 2.0);

  // The areas' own results for the report file.
  test::ScratchFolder dir;
  const std::string stem = dir / "C";
  wlp7(CaseName(stem));
  EXPECT_THAT(
      test::file_lines(stem + ".LP7"),
      ElementsAre("   1,     1.00000000,     2.00000000,", "   2,    -0.90000000,     2.00000000,",
                  "   3,    -0.10000000,     2.00000000,"));
}

TEST_F(AreaCase, LossOnFirstAreaAndToleranceBoundary) {
  IJB.LOSSAREA[1] = 0;  // the first end's area counts the flow at the far end
  LL7.tolerance[1] = LL7.tolerance[2] = LL7.tolerance[3] = 1;
  EXPECT_EQ(run(), 0);
  EXPECT_NEAR(AREA.PACT[1], 0.9, 1e-15);
  EXPECT_NEAR(AREA.PACT[2], -0.9, 1e-15);
  EXPECT_EQ(AREA.PACT[3], 0.0);

  // A deviation exactly equal to the tolerance is within it.
  LL7.tolerance[1] = std::fabs(LL7.p_schedule[1] - AREA.PACT[1]);
  EXPECT_EQ(run(), 0);
  LL7.tolerance[1] = std::nextafter(LL7.tolerance[1], 0.0);
  EXPECT_EQ(run(), 1);
  EXPECT_NEAR(L5.P[1], 2.1, 1e-15);  // moved by the whole difference
  EXPECT_NEAR(L5.P[2], 2.0, 1e-15);
  // A generator moved exactly onto its limit is within it.
  LL7.pmax[1] = L5.P[1] + (LL7.p_schedule[1] - AREA.PACT[1]);
  EXPECT_EQ(run(), 1);
}

TEST_F(AreaCase, MissingGeneratorAndNegativeOutput) {
  LL7.unit[2] = 4;  // bus 4 has no generator
  LL7.p_schedule[1] = 0.5;
  LL7.p_schedule[2] = -0.5;  // area 2 stays off schedule
  LL7.p_schedule[3] = -2.5;  // more than area 3's generator gives
  EXPECT_EQ(run(), 1);
  const std::vector<std::string> warnings(printed.begin(), printed.end() - 6);
  EXPECT_THAT(warnings,
              ElementsAre("***** Warning *****",
                          "   Area No.=  2   Regulating GeneratorDELTA               "
                          "  Is not Exist !",
                          "", "***** Warning *****", " Regulating Generator Output Is Negative",
                          "     Area No.=  3     PG=  -0.40",
                          " Please Readjust Area Interchange Schedule Value"));
  EXPECT_NEAR(L5.P[1], 1.5, 1e-15);
  EXPECT_EQ(L5.P[2], 2.0);
  EXPECT_NEAR(L5.P[3], -0.4, 1e-15);  // the value stays
}

TEST_F(AreaCase, OverLimitTakesBackEveryChange) {
  LL7.unit[3] = 4;  // no generator: skipped when the changes are taken back
  LL7.p_schedule[1] = 0.5;
  LL7.p_schedule[2] = 3.5;  // drives generator 2 to 6.4, over its 5.0
  LL7.p_schedule[3] = 1;
  EXPECT_EQ(run(), 2);
  const std::vector<std::string> warnings(printed.begin(), printed.end() - 6);
  EXPECT_THAT(warnings,
              ElementsAre("", "***** Warning *****", " Regulating Generator Output Is Over Limit",
                          "     Area No.=  2     PG=   6.40     PMAX=   5.00",
                          " Please Readjust Area Interchange Schedule Value", "***** Warning *****",
                          "   Area No.=  3   Regulating GeneratorDELTA               "
                          "  Is not Exist !"));
  // The table shows the interchange that led to the changes.
  EXPECT_EQ(printed.back(), "         3     HILLS             100.0         -10.0          110.0");
  EXPECT_NEAR(L5.P[1], 2.0, 1e-15);
  EXPECT_NEAR(L5.P[2], 2.0, 1e-15);
  EXPECT_EQ(L5.P[3], 2.0);
}

TEST_F(AreaCase, NoAreaRecords) {
  LFINF.narea = 0;
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(printed, with_head({}));
}

}  // namespace
}  // namespace lf

#include "casefile/checks.hpp"

#include <gtest/gtest.h>

#include "engine/store.hpp"

namespace lf {
namespace {

int32_t level_of(double kv) {
  int32_t level = -1;
  vstand(kv, level);
  return level;
}

TEST(Vstand, RoundsThenTakesTheFirstBoundBelow) {
  EXPECT_EQ(level_of(0.0), 0);
  EXPECT_EQ(level_of(8.4), 0);
  EXPECT_EQ(level_of(8.5), 10);  // rounds to 9
  EXPECT_EQ(level_of(220.0), 220);
  EXPECT_EQ(level_of(230.0), 220);
  EXPECT_EQ(level_of(250.4), 220);
  EXPECT_EQ(level_of(250.5), 330);
  EXPECT_EQ(level_of(850.0), 750);
  EXPECT_EQ(level_of(1150.0), 1000);
}

TEST(Lcha, CountsTheNonBlankRunAtTheTwentiethPlace) {
  int32_t n = -1;
  lcha(BusName("BUS1"), n);
  EXPECT_EQ(n, 0);
  lcha(BusName("ABCDEFGHIJ KLMNOPQRS"), n);
  EXPECT_EQ(n, 9);
  lcha(BusName("ABCDEFGHIJKLMNOPQRST"), n);
  EXPECT_EQ(n, 20);
}

// Four buses: 220 kV in area 1, 230 kV in area 2, 110 kV in area 3 and
// 110 kV in area 1; a generator on each of the first three, loads on the
// third and fourth.
class Scaling : public ::testing::Test {
 protected:
  void SetUp() override {
    LFINF = {};
    LF93 = {};
    LFINF.nbus = 4;
    const double kv[] = {220.0, 230.0, 110.0, 110.0};
    const int32_t area[] = {1, 2, 3, 1};
    for (int32_t b = 1; b <= 4; ++b) {
      L1.busname[b] = "BUS" + std::to_string(b);
      LL1.basekv[b] = kv[b - 1];
      LL1.busarea[b] = area[b - 1];
    }
    LFINF.ngenerat = 3;
    for (int32_t g = 1; g <= 3; ++g) {
      L5.ibs[g] = g;
      L5.P[g] = 1.0;
      L5.Q[g] = 1.0;
    }
    LFINF.nload = 2;
    for (int32_t d = 1; d <= 2; ++d) {
      L6.ibs[d] = d + 2;
      L6.P[d] = 1.0;
      L6.Q[d] = 1.0;
    }
  }
  // Adds a factor record.
  void factor(int32_t area, double kv, const char* name1, double pg, double qg, double pl,
              double ql) {
    const int32_t k = ++LF93.ctrl_fact;
    L10.area[k] = area;
    L10.kv[k] = kv;
    L10.name1[k] = name1;
    L10.name2[k] = "";
    L10.PG[k] = pg;
    L10.QG[k] = qg;
    L10.PL[k] = pl;
    L10.QL[k] = ql;
  }
};

TEST_F(Scaling, GeneratorsByAreaLevelOrNameLoadsByAreaOnly) {
  factor(0, 0.0, "", 2.0, 2.0, 2.0, 2.0);        // selects nothing
  factor(3, 0.0, "", 1.0, 0.0, 1.0, 1.0);        // no factor in force: passed over
  factor(0, 230.0, "", 1.5, 0.5, 1.0, 1.0);      // level 220: buses of 220 and 230 kV
  factor(0, 0.0, "XY", 3.0, 0.0, 1.0, 1.0);      // a name pattern: any generator
  factor(0, 110.0, "", 1.0, 1.0, 4.0, 4.0);      // a level never selects a load
  factor(3, 0.0, "", 1.0, 1.0, 2.0, 1.0000001);  // loads of area 3
  factor(3, 0.0, "", 1.0, 1.0, 5.0, 5.0);        // comes too late
  chpq();
  EXPECT_DOUBLE_EQ(L5.P[1], 1.5);
  EXPECT_DOUBLE_EQ(L5.Q[1], 0.5);
  EXPECT_DOUBLE_EQ(L5.P[2], 1.5);
  EXPECT_DOUBLE_EQ(L5.Q[2], 0.5);
  EXPECT_DOUBLE_EQ(L5.P[3], 3.0);
  EXPECT_DOUBLE_EQ(L5.Q[3], 1.0);  // a factor 0 switches nothing off
  EXPECT_DOUBLE_EQ(L6.P[1], 2.0);
  EXPECT_DOUBLE_EQ(L6.Q[1], 1.0);  // within the tolerance of 1.0
  EXPECT_DOUBLE_EQ(L6.P[2], 1.0);
  EXPECT_DOUBLE_EQ(L6.Q[2], 1.0);
}

TEST_F(Scaling, ParameterSetOneIsConstantPowerAndALibraryIsAskedForOnlyWhenNamed) {
  L6.mode_ctrl[1] = 1;
  L6.mode_ctrl[2] = -1;
  ABCLC.cp[1] = 0.0;
  int32_t flag = -1;
  isrlib(flag);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(LFINF.nloadpar, 1);
  EXPECT_EQ(ABCLC.cp[1], 1.0);
  EXPECT_EQ(ABCLC.cq[1], 1.0);
  EXPECT_EQ(ABCLC.ap[1] + ABCLC.bp[1] + ABCLC.aq[1] + ABCLC.bq[1], 0.0);
  L6.mode_ctrl[2] = 3;
  isrlib(flag);
  EXPECT_EQ(flag, 1);
}

}  // namespace
}  // namespace lf

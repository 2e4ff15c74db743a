#include "casefile/checks.hpp"

#include <gtest/gtest.h>

#include "store/store.hpp"

namespace lf {
namespace {

TEST(Vstand, RoundsThenTakesTheFirstBoundBelow) {
  for (auto [kv, want] : {std::pair{0.0, 0},
                          {8.4, 0},
                          {8.5, 10},
                          {220.0, 220},
                          {230.0, 220},
                          {250.4, 220},
                          {250.5, 330},
                          {850.0, 750},
                          {1150.0, 1000}}) {
    int32_t level = -1;
    vstand(kv, level);
    EXPECT_EQ(level, want) << kv;
  }
}

TEST(Lcha, CountsTheNonBlankRunAtTheTwentiethPlace) {
  for (auto [name, want] :
       {std::pair{"BUS1", 0}, {"ABCDEFGHIJ KLMNOPQRS", 9}, {"ABCDEFGHIJKLMNOPQRST", 20}}) {
    int32_t n = -1;
    lcha(BusName(name), n);
    EXPECT_EQ(n, want) << name;
  }
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
    LFINF.ngenerat = 3;
    LFINF.nload = 2;
    const double kv[] = {220.0, 230.0, 110.0, 110.0};
    const int32_t area[] = {1, 2, 3, 1};
    grow_buses(4);
    for (int32_t b = 1; b <= 4; ++b) {
      L1.busname[b] = "BUS" + std::to_string(b);
      LL1.basekv[b] = kv[b - 1];
      LL1.busarea[b] = area[b - 1];
      L5.ibs[b] = b;      // generators on buses 1 to 3
      L6.ibs[b] = b + 2;  // loads on buses 3 and 4
      L5.P[b] = L5.Q[b] = L6.P[b] = L6.Q[b] = 1.0;
    }
  }
  // Adds a factor record.
  void factor(int32_t area, double kv, const char* name1, double pg, double qg, double pl,
              double ql) {
    const int32_t k = ++LF93.ctrl_fact;
    L10.grow(static_cast<std::size_t>(k));
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
  factor(1, 0.0, "", 1.0, 1.0, 1.0, 3.0);        // the Q of loads of area 1 alone
  chpq();
  // Buses 1 and 2 by level, 3 by name; a factor 0 switches nothing off; the
  // load's Q factor counts as 1.0 within the tolerance.
  const double want[] = {1.5, 0.5, 1.5, 0.5, 3.0, 1.0, 2.0, 1.0, 1.0, 3.0};
  const double got[] = {L5.P[1], L5.Q[1], L5.P[2], L5.Q[2], L5.P[3],
                        L5.Q[3], L6.P[1], L6.Q[1], L6.P[2], L6.Q[2]};
  for (int n = 0; n < 10; ++n) EXPECT_DOUBLE_EQ(got[n], want[n]) << n;
}

}  // namespace
}  // namespace lf

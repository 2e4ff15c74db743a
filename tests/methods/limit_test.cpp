// Switching of rows that are out of their reactive limits at convergence.
#include "methods/limit.hpp"

#include <gtest/gtest.h>

#include "methods/iteration.hpp"
#include "methods/net.hpp"
#include "methods/vpq.hpp"

namespace lf {
namespace {
using namespace test;

// Six buses numbered as they come, each with its rows; VPQ as if converged.
class Limit : public ::testing::Test {
 protected:
  void SetUp() override {
    NO.nnode = 6;
    for (int i = 1; i <= 6; ++i) {
      NEW[i] = i;
      qc[i] = 0;
    }
  }
  void limits_gen(int32_t row, double qmin, double qmax) {
    L5P.Qmin[row] = qmin;
    L5P.Qmax[row] = qmax;
  }
  void limits_load(int32_t row, double qmin, double qmax) {
    L6P.Qmin[row] = qmin;
    L6P.Qmax[row] = qmax;
  }
  void run() {
    glpos();
    inivpq();
  }
  Arr<double> qc{6};
};

TEST_F(Limit, ReactiveLimitsSwitchOneWayToTheBoundPassed) {
  LFINF.ngenerat = 2;
  LFINF.nload = 3;
  gen(1, 1, -2, 0.5, 0, 1.02);
  limits_gen(1, -0.2, 0.3);
  load(1, 1, 1, 0.4, 0.1);  // turns to -2 in glpos, to 1 with the generator
  gen(2, 2, -2, 0.5, 0, 1.02);
  limits_gen(2, -0.2, 0.3);
  load(2, 3, -2, 0.1, 0.0, 1.0);  // no generator: tested on -qc
  limits_load(2, -0.1, 0.1);
  load(3, 2, -2, 0.1, 0.0, 1.0);  // left to bus 2's generator
  limits_load(3, 0.5, 0.6);
  run();
  VPQ.QG[1] = 0.35;
  VPQ.QG[2] = -0.2;  // exactly at Qmin: inside
  qc[2] = 5;
  qc[3] = 0.25;  // the load row's Q is -0.25, below its Qmin
  int32_t changed = 7;
  limit(qc, changed);
  EXPECT_EQ(changed, 1);
  EXPECT_EQ(L5.mode_ctrl[1], 1);
  EXPECT_EQ(L5.Q[1], 0.3);
  EXPECT_EQ(VPQ.QG[1], 0.3);
  EXPECT_EQ(L6.mode_ctrl[1], 1);
  EXPECT_EQ(L5.mode_ctrl[2], -2);
  EXPECT_EQ(L6.mode_ctrl[3], -2);
  EXPECT_EQ(L6.mode_ctrl[2], 1);
  EXPECT_EQ(L6.Q[2], -0.1);
  EXPECT_EQ(VPQ.QL[3], -0.1);

  // Nothing is out of limit any more; the switched rows stay switched.
  VPQ.QG[1] = 0;
  limit(qc, changed);
  EXPECT_EQ(changed, 0);
  EXPECT_EQ(L5.mode_ctrl[1], 1);
}

}  // namespace
}  // namespace lf

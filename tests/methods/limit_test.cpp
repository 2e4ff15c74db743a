// Switching of rows that are out of their reactive limits at convergence.
#include "methods/limit.hpp"

#include <gtest/gtest.h>

#include "methods/iteration.hpp"
#include "methods/net.hpp"
#include "store/vpq.hpp"

namespace lf {
namespace {
using namespace test;

TEST(Limit, ReactiveLimitsSwitchOneWayToTheBoundPassed) {
  // Six buses numbered as they come, each with its rows; VPQ as if converged.
  NO.nnode = 6;
  for (int i = 1; i <= 6; ++i) NEW[i] = i;
  Arr<double> qc(6);
  LFINF.ngenerat = 2;
  LFINF.nload = 3;
  gen(1, 1, kTypePVQlim, 0.5, 0, 1.02);
  L5P.Qmin[1] = -0.2, L5P.Qmax[1] = 0.3;
  load(1, 1, kTypePQ, 0.4, 0.1);  // the generator's type in glpos, P-Q again with it
  gen(2, 2, kTypePVQlim, 0.5, 0, 1.02);
  L5P.Qmin[2] = -0.2, L5P.Qmax[2] = 0.3;
  load(2, 3, kTypePVQlim, 0.1, 0.0, 1.0);  // no generator: tested on -qc
  L6P.Qmin[2] = -0.1, L6P.Qmax[2] = 0.1;
  load(3, 2, kTypePVQlim, 0.1, 0.0, 1.0);  // left to bus 2's generator
  L6P.Qmin[3] = 0.5, L6P.Qmax[3] = 0.6;
  glpos();
  inivpq();
  VPQ.QG[1] = 0.35;
  VPQ.QG[2] = -0.2;  // exactly at Qmin: inside
  qc[2] = 5;
  qc[3] = 0.25;  // the load row's Q is -0.25, below its Qmin
  int32_t changed = 7;
  limit(qc, changed);
  EXPECT_EQ(changed, 1);
  EXPECT_EQ(L5.mode_ctrl[1], kTypePQ);
  EXPECT_EQ(L5.Q[1], 0.3);
  EXPECT_EQ(VPQ.QG[1], 0.3);
  EXPECT_EQ(L6.mode_ctrl[1], kTypePQ);
  EXPECT_EQ(L5.mode_ctrl[2], kTypePVQlim);
  EXPECT_EQ(L6.mode_ctrl[3], kTypePVQlim);
  EXPECT_EQ(L6.mode_ctrl[2], kTypePQ);
  EXPECT_EQ(L6.Q[2], -0.1);
  EXPECT_EQ(VPQ.QL[3], -0.1);

  // Nothing is out of limit any more (generator 2 exactly at Qmax is
  // inside); the switched rows stay switched.
  VPQ.QG[1] = 0;
  VPQ.QG[2] = 0.3;
  limit(qc, changed);
  EXPECT_EQ(changed, 0);
  EXPECT_EQ(L5.mode_ctrl[1], kTypePQ);
  EXPECT_EQ(L5.mode_ctrl[2], kTypePVQlim);
}

TEST(Limit, VoltageLimitsOfANewNodeAreThoseOfItsCaseBus) {
  // Bus 3 of a two-bus case was split: node 3 stands for bus 2.
  NO.nnode = 3;
  for (int i = 1; i <= 3; ++i) NEW[i] = i;
  NNTOON[1] = 1, NNTOON[2] = 2, NNTOON[3] = 2;
  LL1.busvmin[2] = 0.95, LL1.busvmax[2] = 1.05;
  LL1.busvmin[3] = LL1.busvmax[3] = 0;  // no row of its own
  LFINF.ngenerat = 0;
  LFINF.nload = 2;
  load(1, 2, kTypePQVlim, 0.1, 0.0, 1.0);
  load(2, 3, kTypePQVlim, 0.1, 0.0, 1.0);
  glpos();
  inivpq();
  VPQ.V[2] = 1.0;  // inside the limits of bus 2: stays
  VPQ.V[3] = 1.07;
  Arr<double> qc(3);
  int32_t changed = 0;
  limit(qc, changed);
  EXPECT_EQ(L6.mode_ctrl[1], kTypePQVlim);
  EXPECT_EQ(L6.mode_ctrl[2], kTypePV);
  EXPECT_EQ(VPQ.V[3], 1.05);
}

}  // namespace
}  // namespace lf

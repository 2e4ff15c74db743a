// The shared machinery of the methods on tiny hand-made networks.
#include "methods/iteration.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "methods/net.hpp"
#include "sparse/ymatrix.hpp"
#include "store/vpq.hpp"

namespace lf {
namespace {
using namespace test;

TEST(Glpos, LoadRowFollowsGeneratorRow) {
  NO.nnode = 6;
  for (int i = 1; i <= 6; ++i) NEW[i] = 7 - i;
  LFINF.ngenerat = 5;
  LFINF.nload = 6;
  gen(1, 1, kTypeSlack, 0, 0, 1.04, 12);
  gen(2, 2, kTypePVQlim, 0.5, 0, 1.02);
  gen(3, 3, kTypePQ, 0.3, 0.1, 1);
  gen(4, 4, kTypePQ, 0.3, 0.1, 1);
  gen(5, 5, kTypePQVlim, 0.2, 0.1, 1);
  load(1, 1, kTypePQ, 0.1, 0.1);
  load(2, 2, kTypePQ, 0.1, 0.1);
  load(3, 3, kTypePV, 0.1, 0.1, 1.01);  // a fixed-voltage load row keeps its own type
  load(4, 4, 5, 0.1, 0.1);              // a voltage-dependent load stays so
  load(5, 5, kTypePQ, 0.1, 0.1);
  load(6, 6, kTypePQ, 0.1, 0.1);  // no generator at bus 6
  glpos();
  EXPECT_EQ(GLP.IGEN[6], 1);  // internal numbers are reversed
  EXPECT_EQ(GLP.ILOAD[6], 1);
  EXPECT_EQ(GLP.IGEN[1], 0);
  EXPECT_EQ(GLP.ILOAD[1], 6);
  EXPECT_EQ((std::vector<int32_t>{L6.mode_ctrl[1], L6.mode_ctrl[2], L6.mode_ctrl[3],
                                  L6.mode_ctrl[4], L6.mode_ctrl[5], L6.mode_ctrl[6]}),
            (std::vector<int32_t>{kTypeSlack, kTypePVQlim, kTypePQ, 5, kTypePQVlim, kTypePQ}));
  EXPECT_EQ(L6.V[1], 1.04);
  EXPECT_EQ(L6.Angle[1], 12);
  EXPECT_EQ(L6.V[2], 1.02);
}

// Rows of both kinds at one bus: who gets the computed reactive power.
TEST(Mismatch, FixedVoltageBusGivesComputedPowerToTheRowWithOutput) {
  two_bus(1, -10);
  LFINF.ngenerat = 1;
  LFINF.nload = 2;
  gen(1, 2, kTypePV, 0.5, 0, 1.0);
  load(1, 1, kTypeSlack, 0.2, 0.1, 1.0);  // slack through its load row
  load(2, 2, kTypePV, 0.3, 0.2, 1.0);
  glpos();
  inivpq();
  Arr<double> pc(2), qc(2), dp(2), dq(2);
  pc[1] = -0.4, pc[2] = 0.25;
  qc[1] = 0.05, qc[2] = 0.15;
  VPQ.PDC[2] = 0.01;
  mismatch_p(2, pc, dp);
  EXPECT_EQ(dp[1], 0);
  EXPECT_EQ(VPQ.PL[1], 0.4);  // no generator: the slack load takes -PC
  EXPECT_DOUBLE_EQ(dp[2], 0.01 - 0.25 + 0.5 - 0.3);
  mismatch_q(2, qc, dq, FixedV::Cut);
  EXPECT_EQ(dq[2], 0);
  EXPECT_EQ(VPQ.QG[2], 0.2 + 0.15);  // load Q + QC to the generator
  EXPECT_EQ(VPQ.QL[2], 0.2);         // the load row keeps its own
  VPQ.V[2] = 0.9;
  mismatch_q(2, qc, dq, FixedV::Squared);
  EXPECT_DOUBLE_EQ(dq[2], 1 - 0.81);

  // A generator of no output leaves the computed power to the load row.
  L5.P[1] = 0;
  L5.Q[1] = 0.0000001;  // just below the single-precision 1e-7
  VPQ.QG[2] = 7;
  mismatch_q(2, qc, dq, FixedV::Cut);
  EXPECT_EQ(VPQ.QG[2], 7);
  EXPECT_EQ(VPQ.QL[2], -0.15);
  // The single-precision 1e-7 itself is output to the generator's row and
  // none to the load's: both take the computed power.
  L5.Q[1] = 1.0000000116860974e-07;
  VPQ.QL[2] = 7;
  mismatch_q(2, qc, dq, FixedV::Cut);
  EXPECT_EQ(VPQ.QG[2], 0.2 + 0.15);
  EXPECT_EQ(VPQ.QL[2], -0.15);
}

TEST(Mismatch, VoltageDependentLoad) {
  two_bus(1, -10);
  LFINF.ngenerat = 0;
  LFINF.nload = 1;
  load(1, 2, 3, 0.4, 0.2, 1.1);
  ABCLC.ap[3] = 0.5, ABCLC.bp[3] = 0.3, ABCLC.cp[3] = 0.2;
  ABCLC.aq[3] = 1, ABCLC.bq[3] = 0, ABCLC.cq[3] = 0;
  glpos();
  inivpq();
  VPQ.V[2] = 0.99;
  Arr<double> pc(2), qc(2), dp(2), dq(2);
  mismatch_p(2, pc, dp);
  mismatch_q(2, qc, dq, FixedV::Cut);
  const double r = 0.99 / 1.1;
  EXPECT_DOUBLE_EQ(VPQ.PL[2], 0.4 * (0.5 * r * r + 0.3 * r + 0.2));
  EXPECT_DOUBLE_EQ(dq[2], -0.2 * r * r);
}

}  // namespace
}  // namespace lf

#include <gtest/gtest.h>

#include "netprep/fixture.hpp"
#include "netprep/netprep.hpp"

namespace lf {
namespace {

using namespace testnet;

TEST(Dwgen, MergesUnitsOfABusAndKeepsTheirShares) {
  reset(6);
  generator(2, -1, 0.3, 0.05);  // 1
  generator(3, 0, 0.0);         // 2: slack
  generator(2, -2, 0.1, 0.01);  // 3
  generator(4, -1, 0.0);        // 4
  generator(3, 1, 0.2);         // 5: plain unit on the slack bus
  generator(4, -1, 0.0);        // 6
  generator(5, -1, 0.4);        // 7: alone on its bus
  dwgen();

  ASSERT_EQ(LFINF.ngenerat, 4);
  EXPECT_EQ(L5OLD.ngenold, 7);
  EXPECT_EQ(L5OLD.genmerged, 1);
  // The merged rows, compacted in the order of their first unit.
  EXPECT_EQ(L5.ibs[1], 2);
  EXPECT_DOUBLE_EQ(L5.P[1], 0.4);
  EXPECT_DOUBLE_EQ(L5.Q[1], 0.06);
  EXPECT_EQ(L5.mode_ctrl[1], -1);
  EXPECT_EQ(L5.merged[1], 2);
  EXPECT_EQ(L5.ibs[2], 3);
  EXPECT_EQ(L5.mode_ctrl[2], 0);  // the slack stays a slack
  EXPECT_EQ(L5.ibs[3], 4);
  EXPECT_EQ(L5.ibs[4], 5);
  EXPECT_EQ(L5.merged[4], 0);
  EXPECT_EQ(L5P.Qmax[4], 70.0);  // limits moved with the row

  const int32_t map[] = {0, 1, 2, 1, 3, 2, 3, 4};
  const double share[] = {0, 0.75, 0.5, 0.25, 0.5, 0.5, 0.5, 1.0};
  for (int32_t r = 1; r <= 7; ++r) {
    EXPECT_EQ(L5OLD.map[r], map[r]) << r;
    EXPECT_NEAR(L5OLD.share[r], share[r], 1e-15) << r;
  }
  EXPECT_EQ(L5OLD.ibs[3], 2);
  EXPECT_EQ(L5OLD.mode_ctrl[3], -2);
}

TEST(Dwload, FoldsLoadsOfABusAndKeepsThemAsRead) {
  reset(4);
  LF93.loadshare = 1;
  load(2, 11, -2, 0.1, 0.02);
  load(3, 12, 1, 0.3, 0.1);
  load(2, 13, 1, 0.2, 0.05);
  load(4, 14, 0, 0.4, 0.0);
  load(4, 15, -3, 0.1, 0.0);
  dwload();
  ASSERT_EQ(LFINF.nload, 3);
  EXPECT_EQ(L6PP.nloadold, 5);
  EXPECT_EQ(L6PP.No[3], 13);
  EXPECT_EQ(L6.ibs[1], 2);
  EXPECT_EQ(L6.No[1], 0);
  EXPECT_EQ(L6.mode_ctrl[1], -1);
  EXPECT_DOUBLE_EQ(L6.P[1], 0.3);
  EXPECT_EQ(L6.No[2], 12);
  EXPECT_EQ(L6.ibs[3], 4);
  EXPECT_EQ(L6.mode_ctrl[3], 0);
  EXPECT_DOUBLE_EQ(L6.P[3], 0.5);

  // Without loadshare the loads stay as they are.
  reset(2);
  load(2, 1, 1, 0.1, 0.0);
  load(2, 2, 1, 0.1, 0.0);
  dwload();
  EXPECT_EQ(LFINF.nload, 2);
}

}  // namespace
}  // namespace lf

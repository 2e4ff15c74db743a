#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "netprep/fixture.hpp"
#include "netprep/netprep.hpp"

namespace lf {
namespace {

using namespace testnet;
using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::Pointwise;

TEST(Dwgen, MergesUnitsOfABusAndKeepsTheirShares) {
  reset(6);
  generator(2, kTypePV, 0.3, 0.05);      // 1
  generator(3, kTypePQ, 0.2);            // 2: plain unit on the slack bus
  generator(2, kTypePVQlim, 0.1, 0.01);  // 3
  generator(4, kTypePV, 0.0);            // 4
  generator(3, kTypeSlack, 0.0);         // 5: the slack, after another unit
  generator(4, kTypePV, 0.0);            // 6
  generator(5, kTypePV, 0.4);            // 7: alone on its bus
  dwgen();

  ASSERT_EQ(LFINF.ngenerat, 4);
  EXPECT_EQ(L5OLD.ngenold, 7);
  EXPECT_EQ(L5OLD.genmerged, 1);
  // The merged rows, compacted in the order of their first unit; a slack
  // unit makes its merged row the slack; the limits move with the row.
  EXPECT_THAT(column(L5.ibs, 4), ElementsAre(2, 3, 4, 5));
  EXPECT_THAT(column(L5.mode_ctrl, 4), ElementsAre(kTypePV, kTypeSlack, kTypePV, kTypePV));
  EXPECT_THAT(column(L5.merged, 4), ElementsAre(2, 2, 2, 0));
  EXPECT_DOUBLE_EQ(L5.P[1], 0.4);
  EXPECT_DOUBLE_EQ(L5.Q[1], 0.06);
  EXPECT_EQ(L5P.Qmax[4], 70.0);
  EXPECT_THAT(column(L5OLD.map, 7), ElementsAre(1, 2, 1, 3, 2, 3, 4));
  EXPECT_THAT(column(L5OLD.share, 7),
              Pointwise(DoubleNear(1e-15), std::vector{0.75, 0.5, 0.25, 0.5, 0.5, 0.5, 1.0}));
  EXPECT_EQ(L5OLD.mode_ctrl[3], kTypePVQlim);
}

TEST(Dwload, FoldsLoadsOfABusAndKeepsThemAsRead) {
  reset(4);
  LF93.loadshare = 1;
  load(2, 11, kTypePVQlim, 0.1, 0.02);
  load(3, 12, kTypePQ, 0.3, 0.1);
  load(2, 13, kTypePQ, 0.2, 0.05);
  load(4, 14, kTypeSlack, 0.4, 0.0);
  load(4, 15, kTypePQVlim, 0.1, 0.0);
  dwload();
  ASSERT_EQ(LFINF.nload, 3);
  EXPECT_EQ(L6PP.nloadold, 5);
  EXPECT_EQ(L6PP.No[3], 13);
  EXPECT_THAT(column(L6.ibs, 3), ElementsAre(2, 3, 4));
  EXPECT_THAT(column(L6.No, 3), ElementsAre(0, 12, 0));
  EXPECT_THAT(column(L6.mode_ctrl, 3), ElementsAre(kTypePV, kTypePQ, kTypeSlack));
  EXPECT_THAT(column(L6.P, 3), Pointwise(DoubleNear(1e-15), std::vector{0.3, 0.3, 0.5}));

  // Without loadshare the loads stay as they are.
  reset(2);
  load(2, 1, kTypePQ, 0.1, 0.0);
  load(2, 2, kTypePQ, 0.1, 0.0);
  dwload();
  EXPECT_EQ(LFINF.nload, 2);
}

}  // namespace
}  // namespace lf

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "io/errlist.hpp"
#include "netprep/fixture.hpp"
#include "netprep/netprep.hpp"

namespace lf {
namespace {

using namespace testnet;
using ::testing::ElementsAre;

std::string named(const char* name, int32_t n) {
  BusName out;
  addname(BusName(name), n, out);
  return out.str();
}

TEST(Addname, NumberFieldGrowsByDivisionByTwenty) {
  EXPECT_EQ(named("ABC", 3), "ABC     _3          ");
  EXPECT_EQ(named("ABC", 15), "ABC     _*          ");
  EXPECT_EQ(named("ABC", 150), "ABC    _**          ");
  EXPECT_EQ(named("ABC", 400), "ABC   _400          ");
  EXPECT_EQ(named("ABC", 9000), "ABC  _              ");
  // Leading blanks give way to the number field; the tail beyond ten stays.
  EXPECT_EQ(named("  XY", 4), "XY      _4          ");
  EXPECT_EQ(named("SUBSTATION_NORTH_BUS", 7), "SUBSTATI_7_NORTH_BUS");
}

TEST(Dwbus, ClosedGroupKeepsOneNodeAndRecordsWithoutNodesArePassedOver) {
  reset(5);
  switch_record(1, 1, 1, 2, 1);
  switch_record(1, 1, 2, 3, 1);
  switch_record(1, 1, 0, 2, 0);
  switch_record(7, 1, 1, 2, 0);        // group is no bus of the case
  switch_record(2, 1, 2, 2000000, 0);  // end beyond any node number
  switch_record(2, 1, 2, 3, 0);
  L13.valid[6] = 0;  // not valid: an open switch that splits nothing
  dwsubij();
  EXPECT_EQ(NO.nnode, 5);
  EXPECT_THAT(column(L13.I, 6), ElementsAre(1, 1, 0, 1, 2, 2));
  EXPECT_THAT(column(L13.J, 6), ElementsAre(1, 1, 2, 2, 2000000, 3));
}

TEST(Dwbus, OpenSwitchSplitsAndMovesTheBranchOnItsSide) {
  reset(5);
  branch(1, 4, 7, 0.1);
  branch(1, 5, 8, 0.1);
  load(1, 3, kTypePQ, 0.5, 0.1);
  switch_record(1, 1, 1, 2, 1);
  switch_record(1, 1, 2, 3, 0, 0, 0, /*line1*/ 8, 0, /*line2*/ 7, /*load2*/ 3);
  dwsubij();
  ASSERT_EQ(NO.nnode, 6);
  EXPECT_EQ(NNTOON.nbase, 5);
  EXPECT_EQ(NNTOON[6], 1);
  EXPECT_EQ(L1.busname[6].str(), "B1      _1          ");
  EXPECT_EQ(L13.I[2], 1);
  EXPECT_EQ(L13.J[2], 6);
  // Branch 7 and load 3 hang on the switch's open side, branch 8 on the
  // side that kept the bus number.
  EXPECT_THAT(column(IJB.I, 2), ElementsAre(6, 1));
  EXPECT_EQ(IJB.J[1], 4);
  EXPECT_EQ(L6.ibs[1], 6);
}

// A string of three switches closes only with all three closed. The
// branch tap (line1) goes with the first switch, the load tap (load2) with
// the third.
TEST(Dwbus, SwitchStringNeedsAllThreeClosed) {
  const struct {
    int32_t sw1, sw2, sw3, nnode, branch_end, load_bus;
  } cases[] = {
      {1, 1, 0, 5, 1, 1},  // both taps stay with I, which kept the bus number
      {0, 1, 1, 5, 5, 5},  // both taps go to J, the new node
      {0, 0, 0, 7, 6, 7},  // each tap a node of its own behind the two ends
      {0, 1, 0, 6, 6, 6},  // one node takes both taps
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.sw1 << c.sw2 << c.sw3);
    reset(4);
    branch(1, 3, 7, 0.1);
    load(1, 2, kTypePQ, 0.2, 0.0);
    switch_record(1, 3, 1, 2, c.sw1, c.sw2, c.sw3, 7, 0, 0, 2);
    dwsubij();
    ASSERT_EQ(NO.nnode, c.nnode);
    EXPECT_EQ(IJB.I[1], c.branch_end);
    EXPECT_EQ(L6.ibs[1], c.load_bus);
  }
  EXPECT_EQ(NNTOON[7], 1);
  EXPECT_EQ(L1.busname[7].str(), "B1      _3          ");
}

TEST(Chl23, MissingBranchIsReportedAndTheLoadStillMoves) {
  errlist_open();
  reset(4);
  branch(1, 3, 7, 0.1);
  load(1, 2, kTypePQ, 0.2, 0.0);
  switch_record(1, 1, 1, 2, 0, 0, 0, 0, 0, /*line2*/ 99, /*load2*/ 2);
  switch_record(1, 1, 1, 2, 0, 0, 0, 0, 0, 0, /*load2*/ 55);
  dwsubij();
  errlist_close();
  EXPECT_EQ(L6.ibs[1], 5);
  std::stringstream text;
  text << std::ifstream("LFERR.LIS").rdbuf();
  EXPECT_EQ(text.str(),
            " ****** Operation Error Information ******\n"
            "line No.    99 that the substation indicated but it is not in AC line & Trans.\n"
            "load No.  55 that the substation indicated but it  is not in Load Data.\n");
}

}  // namespace
}  // namespace lf

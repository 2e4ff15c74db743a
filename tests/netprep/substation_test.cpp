#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "engine/errlist.hpp"
#include "netprep/fixture.hpp"
#include "netprep/netprep.hpp"

namespace lf {
namespace {

using namespace testnet;

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

TEST(Dwbus, ClosedGroupKeepsOneNode) {
  reset(5);
  switch_record(1, 1, 1, 2, 1);
  switch_record(1, 1, 2, 3, 1);
  dwsubij();
  EXPECT_EQ(NO.nnode, 5);
  for (int32_t k = 1; k <= 2; ++k) {
    EXPECT_EQ(L13.I[k], 1);
    EXPECT_EQ(L13.J[k], 1);
  }
}

TEST(Dwbus, RecordsWithoutNodesOrBusArePassedOver) {
  reset(3);
  switch_record(1, 1, 0, 2, 0);
  switch_record(7, 1, 1, 2, 0);        // group is no bus of the case
  switch_record(2, 1, 2, 2000000, 0);  // end beyond any node number
  dwsubij();
  EXPECT_EQ(NO.nnode, 3);
  EXPECT_EQ(L13.J[3], 2000000);
}

TEST(Dwbus, OpenSwitchSplitsAndMovesTheBranchOnItsSide) {
  reset(5);
  branch(1, 4, 7, 0.1);
  branch(1, 5, 8, 0.1);
  load(1, 3, 1, 0.5, 0.1);
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
  EXPECT_EQ(IJB.I[1], 6);
  EXPECT_EQ(IJB.J[1], 4);
  EXPECT_EQ(IJB.I[2], 1);
  EXPECT_EQ(L6.ibs[1], 6);
}

TEST(Dwbus, SwitchStringNeedsAllThreeClosed) {
  // 1-1-0: state 0, so the ends stay apart; the taps go to I, which kept
  // the bus number, so nothing moves.
  reset(4);
  branch(1, 3, 7, 0.1);
  switch_record(1, 3, 1, 2, 1, 1, 0, 7);
  dwsubij();
  EXPECT_EQ(NO.nnode, 5);
  EXPECT_EQ(L13.J[1], 5);
  EXPECT_EQ(IJB.I[1], 1);

  // 0-1-1: both taps go to J, the new node.
  reset(4);
  branch(1, 3, 7, 0.1);
  load(1, 2, 1, 0.2, 0.0);
  switch_record(1, 3, 1, 2, 0, 1, 1, 7, 0, 0, 2);
  dwsubij();
  EXPECT_EQ(NO.nnode, 5);
  EXPECT_EQ(IJB.I[1], 5);
  EXPECT_EQ(L6.ibs[1], 5);

  // 0-0-0: each used tap gets a node of its own behind the two ends' nodes.
  reset(4);
  branch(1, 3, 7, 0.1);
  load(1, 2, 1, 0.2, 0.0);
  switch_record(1, 3, 1, 2, 0, 0, 0, 7, 0, 0, 2);
  dwsubij();
  ASSERT_EQ(NO.nnode, 7);
  EXPECT_EQ(IJB.I[1], 6);
  EXPECT_EQ(L6.ibs[1], 7);
  EXPECT_EQ(NNTOON[7], 1);
  EXPECT_EQ(L1.busname[7].str(), "B1      _3          ");

  // 0-1-0: one node takes both taps.
  reset(4);
  branch(1, 3, 7, 0.1);
  load(1, 2, 1, 0.2, 0.0);
  switch_record(1, 3, 1, 2, 0, 1, 0, 7, 0, 0, 2);
  dwsubij();
  ASSERT_EQ(NO.nnode, 6);
  EXPECT_EQ(IJB.I[1], 6);
  EXPECT_EQ(L6.ibs[1], 6);
}

TEST(Chl23, MissingBranchIsReportedAndTheLoadStillMoves) {
  auto dir = std::filesystem::temp_directory_path() / "lf_netprep_chl23";
  std::filesystem::create_directories(dir);
  auto here = std::filesystem::current_path();
  std::filesystem::current_path(dir);
  errlist_open();
  reset(4);
  branch(1, 3, 7, 0.1);
  load(1, 2, 1, 0.2, 0.0);
  switch_record(1, 1, 1, 2, 0, 0, 0, 0, 0, /*line2*/ 99, /*load2*/ 2);
  switch_record(1, 1, 1, 2, 0, 0, 0, 0, 0, 0, /*load2*/ 55);
  dwsubij();
  errlist_close();
  EXPECT_EQ(L6.ibs[1], 5);
  std::ifstream in("LFERR.LIS");
  std::stringstream text;
  text << in.rdbuf();
  std::filesystem::current_path(here);
  EXPECT_EQ(text.str(),
            " ****** Operation Error Information ******\n"
            "line No.    99 that the substation indicated but it is not in AC line & Trans.\n"
            "load No.  55 that the substation indicated but it  is not in Load Data.\n");
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace lf

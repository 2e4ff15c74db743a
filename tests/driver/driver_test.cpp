#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "casefile/readers.hpp"
#include "common/golden.hpp"
#include "driver/engine_fixture.hpp"
#include "driver/newlf.hpp"
#include "io/channels.hpp"
#include "io/errlist.hpp"
#include "netprep/netprep.hpp"
#include "store/store.hpp"

namespace lf::test {
namespace {

using Driver = EngineTest;

TEST_F(Driver, CaseNamesComeFromNameIncOrTheDefaults) {
  read_names();
  EXPECT_EQ(casename.trimmed() + datalibname.trimmed() + udlibname.trimmed(), "LFDATALIBUDLIB");
  write_file("NAME.INC", "1\nMYCASE\nskipped\nlib/DATA\n5\n6\n7\n8\n" + std::string(70, 'n'));
  read_names();
  EXPECT_EQ(casename.str(), "MYCASE" + std::string(54, ' '));
  EXPECT_EQ(datalibname.trimmed(), "lib/DATA");
  EXPECT_EQ(udlibname.str(), std::string(60, 'n'));
  write_file("NAME.INC", "1\nSHORT\n");
  read_names();
  EXPECT_EQ(casename.trimmed() + datalibname.trimmed(), "SHORTDATALIB");
}

TEST_F(Driver, CalculationMakesTheErrorListAnewAndEndsWithTimeAndClosingLines) {
  write_file("LFERR.LIS", " ****** Operation Error Information ******\nold trouble\n");
  init(LF_FLAG_PRINT);
  EXPECT_EQ(cal(LF_FLAG_PRINT), 0);  // converged
  EXPECT_EQ(read_file("LFERR.LIS"), " ****** Operation Error Information ******\n");
  EXPECT_EQ(read_file("LF.L2"), "1 1 2 1 0.01 0.1 0.0 0 0 0 0 0 0.0\n");  // no branch changed
  for (const std::string& line : printed) EXPECT_EQ(line.find("old trouble"), std::string::npos);
  ASSERT_GE(printed.size(), 2u);
  EXPECT_EQ(printed[printed.size() - 2], " elapsed   0:m  0:s");
  EXPECT_EQ(printed.back(), "End of Program.  Please Close the Window....");
}

TEST_F(Driver, MethodAboveFourIsStoredBackAsZeroAndAreasStayAfterNoConvergence) {
  init(0);
  write_two_bus_case(7);
  EXPECT_EQ(cal(0), 0);
  EXPECT_EQ(LFINF.method, 0);
  write_two_bus_case(-1);
  EXPECT_EQ(cal(0), 0);
  EXPECT_EQ(LFINF.method, -1);
  write_two_bus_case(0, 1, 1);
  EXPECT_EQ(cal(LF_FLAG_PRINT), 1);  // not converged within one iteration
  auto at = std::find(printed.begin(), printed.end(), "Load Flow Calculation Is Not Convergent");
  ASSERT_LT(at + 1, printed.end());
  EXPECT_EQ(at[1], "Area Interchange Will Not Be Readjusted");
}

TEST_F(Driver, ErrorListIsPrintedFramedAndOnlyWhenItHoldsLines) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  errlist_open();
  serror();
  EXPECT_TRUE(printed.empty());
  errlist_write("first trouble");
  errlist_write("second trouble");
  serror();
  errlist_close();
  EXPECT_EQ(printed, (std::vector<std::string>{"    ****** Operation Error Information ******",
                                               "first trouble", "second trouble",
                                               "    *****************************************"}));
  // The window gets the framing 49 wide, the list's lines 80 wide.
  ASSERT_EQ(screen.drawn.size(), 4u);
  EXPECT_EQ(screen.drawn[0].text.size(), 49u);
  EXPECT_EQ(screen.drawn[1].text, "first trouble" + std::string(67, ' '));
  EXPECT_EQ(read_file("LFERR.LIS"),
            " ****** Operation Error Information ******\nfirst trouble\nsecond trouble\n");
}

TEST_F(Driver, MagnetisingBranchesOnlyForTransformersWithAnImpedance) {
  grow_branches(4);
  LFINF.nacline = 2;
  LFINF.ntrans = 2;
  IJB.I[4] = 7;
  L3PP.grow(2);
  L3PP.Rm[1] = 9e-12;
  L3PP.Xm[1] = -9e-12;
  L3PP.Rm[2] = 0.0;
  L3PP.Xm[2] = -0.5;
  dwrmxm();
  ASSERT_EQ(NO.nbranch, 5);
  EXPECT_EQ(IJB.I[5], 7);
  EXPECT_EQ(IJB.J[5], 7);
  EXPECT_EQ(IJB.No[5], 0);
  EXPECT_EQ(RXB.X[5], -0.5);
  EXPECT_EQ(RXB.T[5], 1.0);
  L3PP.Xm[2] = 1e-12;
  dwrmxm();
  EXPECT_EQ(NO.nbranch, 4);
}

TEST_F(Driver, BranchFilesAreRewrittenRowByRowWithTheChangedValues) {
  write_file("CASE.L2",
             "1 1 2 1 0.01 0.1 0.02 0 0 0 0 0 0.0 0.0 0\n"
             "1,2,3,1,0.02,0.2,0.0,1,2,3,4,5,1.5,-2.5,6\n"
             "0 3 4 2 0.03 0.3\n");
  write_file("CASE.L3", "1 -4 5 1 0.001 0.05 1.0 0.1 0.2 1 2 3 4 5 6 0.3 0.4 0.5 7 8 9 10\n");
  LFINF.nacline = 3;
  LFINF.ntrans = 1;
  grow_branches(3);
  NO.nbranch = 3;
  // Branch 1 changes the second .L2 row (the first branch of equal ends wins),
  // branch 3 the transformer row, compared by its ends without sign.
  IJB.I[1] = 2, IJB.J[1] = 3, IJB.No[1] = 1;
  RXB.R[1] = 0.5, RXB.X[1] = -1234567.25, RXB.B[1] = 0.125, RXB.T[1] = 9.0;
  IJB.I[2] = 2, IJB.J[2] = 3, IJB.No[2] = 1;
  RXB.R[2] = 7.0;
  IJB.I[3] = 4, IJB.J[3] = 5, IJB.No[3] = 1;
  RXB.R[3] = 0.0025, RXB.X[3] = 0.0625, RXB.B[3] = 3.0, RXB.T[3] = 1.05;
  wrl23(CaseName("CASE"));
  // The files stand in tests/data/golden/driver/branch_files.txt.  The first
  // .L2 row has no branch and comes back as it was; the third lacks fields at
  // the end of the file and is not a row.  The fields behind those of the
  // case reader are written as zeros.
  expect_golden(read_file("CASE.L2") + read_file("CASE.L3"), "driver/branch_files.txt");
}

}  // namespace
}  // namespace lf::test

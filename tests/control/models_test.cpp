// Model input, arrangement, evaluation and output, on small libraries and a
// two-bus case written into the scratch folder.
#include "control/models.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "common/files.hpp"
#include "control/blockbench.hpp"
#include "control/udeval.hpp"
#include "control/udmodel.hpp"
#include "driver/newlf.hpp"
#include "io/channels.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/vpq.hpp"

namespace lf::test {
namespace {

int count_of(const std::string& text, char c) {
  return static_cast<int>(std::count(text.begin(), text.end(), c));
}

// The library tests/data/control/library/LIB.DLF has a section that is
// skipped by lines (model 6002, groups of ten values over two lines each) and
// model 6001: a CIRC, then a CONS that reads the CIRC's third parameter (the
// step after block 41 is 2), then nine named blocks of which eight are
// recorded.
TEST(Models, InputAndArrangement) {
  copy_folder("tests/data/control/library", ".");
  // A row of mark 0 leaves no gap; group 0 is group 1; a line comes first
  // in the location list; 6009 is in neither library.
  write_file("CASE.L9",
             "0 1 2 5 0 0 0 0 0 0 0 0 0 0\n"
             "1 1 0 5 0.1 0.2 0.3 0 0 7 2 6 0 8\n"
             "1 1 2 6 0 0 0 0 0 0 0 0 0 0\n"
             "1 9 1 5 0 0 0 0 0 0 0 0 0 0\n");
  LFINF.ngenerat = LFINF.nload = LFINF.nacline = LFINF.ntrans = 0;
  NU.nl9 = 4;
  errlist_open();
  rudlf(CaseName("CASE"), CaseName("LIB"));
  fmlfar();
  errlist_close();
  EXPECT_EQ(NU.nud, 3);
  EXPECT_EQ(NU.nl9, 3);
  EXPECT_EQ(UDR.UDGRP[1], 1);
  EXPECT_EQ(UDR.UDGRP[2], 2);
  const int32_t o = UDR.LOCFST[1];
  EXPECT_EQ(UDR.LOCCNT[1], 4);
  EXPECT_EQ(UDR.LOCA[o], -7);
  EXPECT_EQ(UDR.LOCB[o], 2);
  int32_t loc1 = 0, loc2 = 0;
  resolve(1, 1, loc1, loc2);  // location 1 is the first bus, past the line
  EXPECT_EQ(loc1, 5);
  resolve(1, 3, loc1, loc2);
  EXPECT_EQ(loc1, 8);
  EXPECT_EQ(read_file("LFERR.LIS"),
            " ****** Operation Error Information ******\nU.D Modle 6009 is not in LIB" +
                std::string(57, ' ') + ".DLF & SYSMODEL.DLF\n");
  // One reading of the section serves both instances, each with its own
  // blocks and parameters; the unknown model has no blocks.
  EXPECT_EQ(UDR.BLKCNT[1], 11);
  EXPECT_EQ(UDR.BLKFST[2], 12);
  EXPECT_EQ(UDR.BLKCNT[3], 0);
  EXPECT_EQ(NUPA[UDR.PARFST[1]], 11);
  EXPECT_EQ(NUPA[UDR.PARFST[2]], 21);
  // Nine names count, eight are kept; the branch output marks the branch
  // files for rewriting; the negative output node inverts into port 2.
  EXPECT_EQ(YP.YPCNT[1], 9);
  EXPECT_EQ(NU.udout, 2);
  EXPECT_EQ(CL23, 1);
  const int32_t n8 = UDR.BLKFST[1] + 9;
  EXPECT_EQ(UDB.LNKX2[UDB.LNKFST[n8]], -(n8 + 1));

  // Evaluation: the CONS behind the CIRC reads the CIRC's third parameter,
  // a block with an initial-value parameter is held at it.
  NO.nnode = 0;
  initlf();
  EXPECT_EQ(UDXY.Y[2], 13);
  EXPECT_EQ(UDXY.Y[3], 14);
  EXPECT_EQ(UDB.BLKHLD[3], 1);
  EXPECT_EQ(UDXY.Y[UDR.BLKFST[2] + 1], 23);
  EXPECT_EQ(UDXY.X2[n8 + 1], -14) << "the inverted link";
}

// Output codes act on the rows of a two-bus network: code 15 turns the bus
// type, with value 0 the bus takes its row's voltage and angle; two
// injections on one bus add up; a branch output sets UDCHG.
TEST(Models, OutputsActOnTheNetwork) {
  NO.nnode = 2;
  NO.nbranch = 1;
  NEW[1] = 1, NEW[2] = 2;
  IJB.I[1] = 1, IJB.J[1] = 2, IJB.No[1] = 7;
  GLP.grow(2);
  GLP.IGEN[1] = 0, GLP.IGEN[2] = 1, GLP.ILOAD[1] = GLP.ILOAD[2] = 0;
  L5.mode_ctrl[1] = kTypePQ, L5.V[1] = 1.03, L5.Angle[1] = 10;
  VPQ.V[2] = 1, VPQ.TH[2] = 0;
  LFUDOT.grow(8);
  fmlfot(15, 2, 0, 0.0, 1);
  fmlfot(3, 2, 0, 0.25, 2);
  fmlfot(-3, 2, 0, -0.5, 3);
  fmlfot(19, -7, 0, 1.05, 4);
  dwout(1, 4);
  EXPECT_EQ(L5.mode_ctrl[1], kTypeSlack);
  EXPECT_EQ(VPQ.V[2], 1.03);
  EXPECT_NEAR(VPQ.TH[2], 10 * 0.0174532925239284, 1e-15);
  EXPECT_NEAR(VPQ.E[2], 1.03 * std::cos(VPQ.TH[2]), 1e-15);
  EXPECT_EQ(LFUDOT.UDPINJ[2], 0.75);
  EXPECT_EQ(RXB.T[1], 1.05);
  EXPECT_EQ(LFUDOT.UDCHG, 1);
}

// A whole calculation with recording (tests/data/control/recording): six
// instances record 41 values, all write interface variable 1 at bus 2, and
// one changes the ratio of line 7.
TEST(Models, RecordingFilesOfACalculation) {
  copy_folder("tests/data/control/recording", ".");
  prnon = 0;
  int32_t convergent = 0;
  newlf(convergent);
  EXPECT_EQ(convergent, 1);
  const std::string fl1 = read_file("FL1.DAT"), fl2 = read_file("FL2.DAT");
  const int sets = count_of(fl1, '\n');
  EXPECT_GT(sets, 0);
  EXPECT_EQ(count_of(fl1, ','), 40 * sets);
  EXPECT_EQ(count_of(fl2, ','), sets);
  EXPECT_EQ(std::filesystem::file_size("LFUDOUT.DDD"), 41u * 4 * static_cast<unsigned>(sets));
  EXPECT_EQ(count_of(read_file("FUDLF.INF"), '\n'), 6);
  EXPECT_EQ(read_file("FUDLF.INF").substr(0, 43), "      1,  6003,     2,     2,     0,     8,");
  EXPECT_EQ(read_file("TMUD.DAT"),
            "   2,      .5,      0.,      0.,      0.,      0.,      0.,      0.,"
            "      0.,      0.,      0.,\n");
  EXPECT_EQ(read_file("CASE.CAL").substr(0, 7), "  1, 1,");
  EXPECT_EQ(read_file("CASE.UDP"), "           6\n");
  EXPECT_EQ(read_file("CASE.L2").substr(0, 20), "  1,   1,   2,   7, ");
}

}  // namespace
}  // namespace lf::test

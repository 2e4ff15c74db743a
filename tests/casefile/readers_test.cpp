#include "casefile/readers.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "casefiles.hpp"
#include "io/errlist.hpp"

namespace lf {
namespace {

using test::CaseFiles;
using test::printed;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::IsEmpty;

class Readers : public CaseFiles {
 protected:
  // A four-bus case, tests/data/casefile/readers, with every file but .NL4
  // and the .DAT library.
  void write_case() { test::copy_folder("tests/data/casefile/readers", dir_.path()); }
};

TEST_F(Readers, ReadsAWholeCaseWithItsQuirks) {
  write_case();
  rdlf(name(), lib());
  EXPECT_THAT(printed, IsEmpty());

  EXPECT_EQ(LFINF.nbus, 4);
  // Limits in kV turn per unit; no base voltage, limits the wrong way round
  // or a zero limit give the defaults.
  EXPECT_DOUBLE_EQ(LL1.busvmax[1], 1.1);  // 242 / 220
  EXPECT_DOUBLE_EQ(LL1.busvmin[1], 0.9);
  for (int32_t b = 2; b <= 4; ++b) {
    EXPECT_DOUBLE_EQ(LL1.busvmax[b], 1.1) << b;
    EXPECT_DOUBLE_EQ(LL1.busvmin[b], 0.9) << b;
  }

  // The mark 0 line takes no slot; transformers follow the lines, their
  // negative ends lose the sign and their B is 0.
  ASSERT_EQ(LFINF.nacline, 3);
  ASSERT_EQ(LFINF.ntrans, 2);
  EXPECT_EQ(NO.nbranch, 5);
  EXPECT_THAT((std::vector<int>{IJB.No[1], IJB.No[2], IJB.No[3], IJB.No[4], IJB.No[5]}),
              ElementsAre(11, 12, 13, 21, 22));
  EXPECT_EQ(IJOPEN.mark[2], 3);
  EXPECT_EQ(IJB.I[4], 3);
  EXPECT_EQ(IJB.J[5], 4);
  EXPECT_EQ(RXB.B[5], 0.0);

  // Extended codes fold without user-defined models.
  ASSERT_EQ(LFINF.ngenerat, 2);
  EXPECT_EQ(L5.mode_ctrl[2], kTypePV);
  ASSERT_EQ(LFINF.nload, 2);
  EXPECT_EQ(L6.mode_ctrl[2], kTypePQ);
  EXPECT_EQ(LF93.loadshare, 1);  // two loads on bus 3

  // ctrl_fact 0: the factor file is not read and nothing is scaled.
  EXPECT_EQ(LF93.ctrl_fact, 0);
  EXPECT_EQ(L6.P[1], 0.4);

  // Group 3 ends with its zero record; "0" is a group read that starts
  // over, then group 2 follows.
  ASSERT_EQ(LF93.nswitch, 2);
  EXPECT_EQ(L13.group[1], 3);
  EXPECT_EQ(L13.group[2], 2);

  // Constant power as the only parameter set: no library is needed.
  EXPECT_EQ(LFINF.nloadpar, 1);
  EXPECT_EQ(ABCLC.cp[1], 1.0);
  EXPECT_EQ(ABCLC.cq[1], 1.0);
}

TEST_F(Readers, UserDefinedModelsKeepTheExtendedCodes) {
  write_case();
  write(".L0", "4 3 2 0 2 3 1 0 0 3 0\n100.0 1.1 0.9 1e-6 1 30 0 1 0 0\n");
  rdlf(name(), lib());
  EXPECT_EQ(L5.mode_ctrl[2], kTypeModel6);
  EXPECT_EQ(L6.mode_ctrl[2], kTypeModel7);
  EXPECT_EQ(LF93.nswitch, 3);  // ctrl_sub 0: .L13 not read, the count stands
}

TEST_F(Readers, OptionalFilesMayBeMissing) {
  write_case();
  for (const char* ext : {".L3", ".L6", ".L7", ".L13"})
    std::filesystem::remove(dir_ / (std::string("CASE") + ext));
  write(".L0", "4 3 2 0 2 3 1 0 0 3 1\n100.0 1.1 0.9 1e-6 1 30 0 0 0 1\n");
  std::filesystem::remove(dir_ / "CASE.L10");
  rdlf(name(), lib());
  EXPECT_THAT(printed, IsEmpty());
  EXPECT_THAT((std::vector<int>{LFINF.ntrans, LFINF.nload, LF93.loadshare, LFINF.narea,
                                LF93.ctrl_fact, LF93.nswitch}),
              Each(0));
  EXPECT_EQ(NO.nbranch, 3);
}

TEST_F(Readers, DcLinesKeepOnlyMarkOneAndAMissingFileGoesOnTheErrorList) {
  write_case();
  write(".L0", "4 0 0 2 0 0 0 0 0 0 0\n100.0 1.1 0.9 1e-6 1 30 0 0 0 0\n");
  errlist_open();
  rdlf(name(), lib());
  errlist_close();
  EXPECT_EQ(test::read_file("LFERR.LIS"),
            " ****** Operation Error Information ******\nFile " + stem() + ".L4 not found !\n");
  EXPECT_EQ(LFINF.ndcline, 0);
  EXPECT_THAT(printed, IsEmpty());

  const std::string body =
      " 3 4 7 1\n"
      "1.0 2.0 3.0 4.0 5.0 6.0 7.0 8.0 9.0 10.0\n"
      "500.0\n"
      "230.0 200.0 2 600.0 0.1 15.0 250.0 210.0 3\n"
      "231.0 201.0 2 601.0 0.2 16.0 251.0 211.0 4\n"
      "1 10.0 20.0\n"
      "300.0 500.0 5.0 15.0 17.0 18.0\n"
      "301.0 501.0 6.0 16.0 19.0 20.0\n";
  write(".NL4", "2" + body + "1" + body);
  rdlf(name(), lib());
  ASSERT_EQ(LFINF.ndcline, 1);
  EXPECT_EQ(NO.ndc, 1);
  EXPECT_EQ(NL4.I[1], 3);
  EXPECT_EQ(NL4.j_tap[1], 4);
  EXPECT_EQ(NL4.gam20_d[1], 20.0);
}

TEST_F(Readers, MandatoryFilesStopTheRun) {
  test::echo_printed = true;  // the stop's messages, where the death test looks
  for (std::string ext : {"L0", "L1", "L2", "L5"}) {
    write_case();
    std::filesystem::remove(dir_ / ("CASE." + ext));
    std::string lower = ext;
    lower[0] = 'l';
    EXPECT_EXIT(rdlf(name(), lib()), ExitedWithCode(1),
                "File .*CASE\\." + ext + " not found !\n\\*\\." + lower + " file not found!");
  }
}

// A load that names parameter set 2 needs the library.
TEST_F(Readers, LibrarySetsFollowTheSkippedSections) {
  test::echo_printed = true;
  write_case();
  write(".L6", "1 3 31 2 0.4 0.2 1.0 0.0 0.0 0.0 0.0 0.0 0 0 0 0.0\n");
  EXPECT_EXIT(rdlf(name(), lib()), ExitedWithCode(1),
              "File .*LIB\\.DAT Not Exist !\n\\*\\.dat file not found!");
  write_lib(
      "2 0 1 0 0 0 0 0 2 0\n"
      "skipped one\n"
      "skipped 'two'\n"
      "skipped three\n"
      "0.1 0.2 0.7 9 9 0.3 0.3 0.4 9 9\n"
      "0.5 0.0 0.5 9 9 1.0 0.0 0.0 9 9\n");
  rdlf(name(), lib());
  EXPECT_THAT(printed, IsEmpty());
  EXPECT_EQ(LFINF.nloadpar, 2);
  EXPECT_EQ(ABCLC.ap[1], 0.1);  // the first set takes the default's place
  EXPECT_EQ(ABCLC.cq[1], 0.4);
  EXPECT_EQ(ABCLC.ap[2], 0.5);
  EXPECT_EQ(ABCLC.aq[2], 1.0);

  // A set that cannot be read: a message, the sets read so far stay.
  write_lib(
      "0 0 0 0 0 0 0 0 3 0\n"
      "0.1 0.2 0.7 9 9 0.3 0.3 0.4 9 9\n"
      "0.5 0.0 'x' 9 9 1.0 0.0 0.0 9 9\n");
  printed.clear();
  rdlf(name(), lib());
  EXPECT_THAT(printed, ElementsAre("Read " + (dir_ / "LIB") + ".DAT File Error!"));
  EXPECT_EQ(LFINF.nloadpar, 1);
  EXPECT_EQ(ABCLC.cq[1], 0.4);
}

TEST_F(Readers, UnreadableSwitchRecordKeepsWhatWasRead) {
  write_case();
  write(".L13",
        "3\n"
        "1 1 3 5 1 0 0 0 0 0 0\n"
        "1 1 3 X 1 0 0 0 0 0 0\n"
        "1 1 3 6 1 0 0 0 0 0 0\n");
  rdlf(name(), lib());
  EXPECT_THAT(printed, ElementsAre("ERROR Read In File *.L13"));
  EXPECT_EQ(LF93.nswitch, 1);

  // A file that ends inside a group is no error.
  write(".L13", "3\n1 1 3 5 1 0 0 0 0 0 0\n1 1 3");
  LF93.nswitch = 5;
  printed.clear();
  rl13(stem());
  EXPECT_THAT(printed, IsEmpty());
  EXPECT_EQ(LF93.nswitch, 1);
}

TEST_F(Readers, TruncatedAndGarbledFilesKeepTheRecordsSoFar) {
  write_case();
  write(
      ".L1",
      "'BUS1' 220.0 1 242.0 198.0\n'BUS2' 110.0 1 121.0 99.0\n'BUS3' 1 1 1 1\n'BUS4' 1 1.5 1 1\n");
  write(".L2", "1 1 2 11 0.01 0.1 0.02 0 0 0 0 0 0.0\n1 2 3 12 0.02 0.2");
  write(".L3", "\x01\x02garbage\n");
  write(".L5", "1 1 0 0.0 0.0 1.05 0.0 9.0 -9.0 9.0 0.0 0 0 0 0.0\n1 2 -1 0.5 ,,,/\n");
  write(".L6", "");
  rdlf(name(), lib());
  EXPECT_EQ(LFINF.nbus, 3);  // area 1.5 is no integer
  EXPECT_EQ(LFINF.nacline, 1);
  EXPECT_EQ(LFINF.ntrans, 0);
  // A slash ends a record early: it counts, with the fields it has.
  EXPECT_EQ(LFINF.ngenerat, 2);
  EXPECT_EQ(L5.P[2], 0.5);
  EXPECT_EQ(LFINF.nload, 0);
  EXPECT_EQ(NO.nbranch, 1);
}

TEST_F(Readers, RecordsGrowPastTheirStartingCapacity) {
  std::string l1, l5;
  const int n = static_cast<int>(kCapBus) + 5;
  for (int i = 1; i <= n; ++i) {
    const std::string num = std::to_string(i);
    l1.append("'B").append(num).append("' 10.0 1 11.0 9.0\n");
    l5.append("1 ").append(num).append(" 1 0.1 0.0 1.0 0.0 0.0 0.0 0.0 0.0 0 0 0 0.0\n");
  }
  write(".L0", "1 0 0 0 1 0 0 0 0 0 0\n100.0 1.1 0.9 1e-6 1 30 0 0 0 0\n");
  write(".L1", l1);
  write(".L5", l5);
  rdlf(name(), lib());
  EXPECT_EQ(LFINF.nbus, n);
  EXPECT_EQ(LFINF.ngenerat, n);
  EXPECT_EQ(L1.busname[n].trimmed(), std::string("B").append(std::to_string(n)));
  EXPECT_EQ(L5.ibs[n], n);
}

// Every file of a case cut short or with a bad character anywhere: the
// reading keeps what it had and nothing breaks.  (Fewer buses than the
// records name stop the run: the bad-input table has those.)
TEST_F(Readers, CutAndSpoiltFilesAnywhere) {
  write_case();
  for (const char* ext : {".L2", ".L3", ".L5", ".L6", ".L7", ".L13"}) {
    const std::string full = test::read_file(dir_ / (std::string("CASE") + ext));
    for (std::size_t at = 0; at < full.size(); at += 5) {
      write(ext, full.substr(0, at));
      rdlf(name(), lib());
      std::string spoilt = full;
      spoilt[at] = 'x';
      write(ext, spoilt);
      rdlf(name(), lib());
      EXPECT_LE(LFINF.nload, 2);
      EXPECT_LE(NO.nbranch, 5);
    }
    write(ext, full);
  }
}

}  // namespace
}  // namespace lf

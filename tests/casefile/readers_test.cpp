#include "casefile/readers.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "casefiles.hpp"
#include "common/golden.hpp"
#include "common/storedump.hpp"
#include "io/errlist.hpp"

namespace lf {
namespace {

using test::CaseFiles;
using test::printed;
using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::IsEmpty;

class Readers : public CaseFiles {
 protected:
  // A four-bus case, tests/data/casefile/readers, with every file but .NL4
  // and the .DAT library.
  void write_case() { test::copy_folder("tests/data/casefile/readers", dir_.path()); }
};

// Each case read, with the lines printed and the store it leaves, stands in
// tests/data/golden/casefile/readers.txt:
// - the whole case: limits in kV turn per unit; no base voltage, limits the
//   wrong way round or a zero limit give the defaults.  The mark 0 line
//   takes no slot; transformers follow the lines, their negative ends lose
//   the sign and their B is 0.  Extended codes fold without user-defined
//   models; two loads share bus 3.  ctrl_fact 0: the factor file is not read
//   and nothing is scaled.  Group 3 of the switches ends with its zero
//   record; "0" is a group read that starts over, then group 2 follows.
//   Constant power as the only parameter set: no library is needed;
// - with user-defined models: the extended codes stay; ctrl_sub 0: .L13 is
//   not read and the count stands;
// - the optional files missing;
// - a library whose first set takes the default's place, behind skipped
//   sections, then one with a set that cannot be read: the sets read so far
//   stay;
// - truncated and garbled files keep the records so far: area 1.5 is no
//   integer; a slash ends a record early, which counts with the fields it has.
TEST_F(Readers, CasesAsTheStoreHoldsThem) {
  std::string text;
  const auto read = [&](const std::string& what) {
    printed.clear();
    rdlf(name(), lib());
    text += "== " + what + "\n";
    for (std::string l : printed) {
      if (const auto at = l.find(dir_.path().string()); at != std::string::npos)
        l.replace(at, dir_.path().string().size(), "<dir>");
      text += l + "\n";
    }
    text += test::store_dump();
  };
  write_case();
  read("whole case");
  write(".L0", "4 3 2 0 2 3 1 0 0 3 0\n100.0 1.1 0.9 1e-6 1 30 0 1 0 0\n");
  read("user-defined models");

  write_case();
  for (const char* ext : {".L3", ".L6", ".L7", ".L10", ".L13"})
    std::filesystem::remove(dir_ / (std::string("CASE") + ext));
  write(".L0", "4 3 2 0 2 3 1 0 0 3 1\n100.0 1.1 0.9 1e-6 1 30 0 0 0 1\n");
  read("optional files missing");

  write_case();
  write(".L6", "1 3 31 2 0.4 0.2 1.0 0.0 0.0 0.0 0.0 0.0 0 0 0 0.0\n");
  write_lib(
      "2 0 1 0 0 0 0 0 2 0\n"
      "skipped one\n"
      "skipped 'two'\n"
      "skipped three\n"
      "0.1 0.2 0.7 9 9 0.3 0.3 0.4 9 9\n"
      "0.5 0.0 0.5 9 9 1.0 0.0 0.0 9 9\n");
  read("library");
  write_lib(
      "0 0 0 0 0 0 0 0 3 0\n"
      "0.1 0.2 0.7 9 9 0.3 0.3 0.4 9 9\n"
      "0.5 0.0 'x' 9 9 1.0 0.0 0.0 9 9\n");
  read("library with a set that cannot be read");

  write_case();
  write(
      ".L1",
      "'BUS1' 220.0 1 242.0 198.0\n'BUS2' 110.0 1 121.0 99.0\n'BUS3' 1 1 1 1\n'BUS4' 1 1.5 1 1\n");
  write(".L2", "1 1 2 11 0.01 0.1 0.02 0 0 0 0 0 0.0\n1 2 3 12 0.02 0.2");
  write(".L3", "\x01\x02garbage\n");
  write(".L5", "1 1 0 0.0 0.0 1.05 0.0 9.0 -9.0 9.0 0.0 0 0 0 0.0\n1 2 -1 0.5 ,,,/\n");
  write(".L6", "");
  read("truncated and garbled files");
  test::expect_golden(text, "casefile/readers.txt");
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

  // Two DC lines, the first of mark 2.
  write(".NL4", test::read_file(LF_TEST_DATA_DIR "/casefile/dcline.NL4"));
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
TEST_F(Readers, LoadSetWithoutTheLibraryStopsTheRun) {
  test::echo_printed = true;
  write_case();
  write(".L6", "1 3 31 2 0.4 0.2 1.0 0.0 0.0 0.0 0.0 0.0 0 0 0 0.0\n");
  EXPECT_EXIT(rdlf(name(), lib()), ExitedWithCode(1),
              "File .*LIB\\.DAT Not Exist !\n\\*\\.dat file not found!");
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

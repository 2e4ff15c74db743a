#include "common/golden.hpp"
#include "common/storedump.hpp"
#include "rtdb/rtdb.hpp"
#include "store/store.hpp"
#include "testdb.hpp"

namespace lf::test {
namespace {

class ReadTest : public TestDb {
 protected:
  void start() {
    RTDBLSCMN.session = open();
    RTDBLSCMN.rtdbmode = 1;
    RMXMVALID = 0;
    LFINF = LFINFRec{};
    LF93 = LF93Rec{};
    LL1.busarea.fill(0);  // the reader leaves a dead bus's area as it was
  }
  // Reads the case and gives what went to standard output.
  std::string read() {
    testing::internal::CaptureStdout();
    rdrtlf();
    return testing::internal::GetCapturedStdout();
  }
};

// The tables of tests/data/rtdb/read.sql; the store after reading stands in
// tests/data/golden/rtdb/read.txt: reals in single precision; buses in id
// order behind the placeholder, limits from their kv row (none without a base
// voltage or the wrong way round); one branch list of lines, shunt branches
// and transformers; extended type codes folded without user-defined models;
// the library walk ends on the highest set number.
TEST_F(ReadTest, FillsTheStoreFromEveryTable) {
  sql(read_file(fs::path(LF_TEST_DATA_DIR) / "rtdb/read.sql"));
  start();
  EXPECT_EQ(read(), "");
  EXPECT_EQ(RMXMVALID, 1);
  EXPECT_EQ(L3P.J[1], 3);
  EXPECT_EQ(L3P.ang_shift[4], 30.0);  // at the branch index, not the transformer's
  test::expect_golden(test::store_dump(), "rtdb/read.txt");
}

TEST_F(ReadTest, AnEmptyStudyCaseReadsEveryTableWithTheDefaults) {
  sql("INSERT INTO global (base_mva) VALUES (50);"
      "INSERT INTO bs (id, iisland) VALUES (0, 0), (1, -1);"
      "INSERT INTO un (ibs, mode_ctrl) VALUES (1, -6);"
      "INSERT INTO ld (ibs, w) VALUES (1, 0.5);");
  start();
  LF93.ctrl_ud = 1;
  EXPECT_EQ(read(), " RDkv: cli_fetch failed with code           0\n");
  // The defaults in single precision; the defaults switch models off.
  test::expect_golden(test::store_dump(), "rtdb/read_defaults.txt");
}

TEST_F(ReadTest, ModelsKeepTheExtendedTypeCodes) {
  sql("INSERT INTO case_lf (ctrl_ud, nbus, ngenerat) VALUES (1, 1, 1);"
      "INSERT INTO bs (id, iisland) VALUES (0, 0), (1, -1);"
      "INSERT INTO un (ibs, mode_ctrl) VALUES (1, -6);");
  start();
  read();
  EXPECT_EQ(L5.mode_ctrl[1], kTypeModel6);
}

TEST_F(ReadTest, ARefusedColumnOrAFailedFetchLeavesTheRestOfTheCase) {
  sql("INSERT INTO case_lf (nbus, nacline) VALUES (2, 1);"
      "INSERT INTO kv (id, vbase) VALUES ('a', 10);"
      "INSERT INTO bs (id) VALUES (0);"
      "INSERT INTO bs (id, name) VALUES (1, 'A'), (2, 'B');"
      "INSERT INTO cp (ibs, cpno, r1, x1) VALUES (1, 1, 0.5, 4);"
      "ALTER TABLE cp DROP COLUMN r1;"
      "DROP TABLE ln;");
  start();
  EXPECT_EQ(read(),
            " Rdln: cli_fetch failed with code         -15\n"
            " Bindcp failed!\n");
  EXPECT_EQ(LFINF.nbus, 2);
  ASSERT_EQ(LFINF.nacline, 1);
  EXPECT_EQ(IJB.I[1], 1);    // bound before the refused column
  EXPECT_EQ(RXB.X[1], 0.0);  // behind it: the default
}

}  // namespace
}  // namespace lf::test

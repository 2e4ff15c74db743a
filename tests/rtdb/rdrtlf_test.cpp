#include <array>

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
  }
  // Reads the case and gives what went to standard output.
  std::string read() {
    testing::internal::CaptureStdout();
    rdrtlf();
    return testing::internal::GetCapturedStdout();
  }
};

TEST_F(ReadTest, FillsTheStoreFromEveryTable) {
  sql("INSERT INTO global (base_mva) VALUES (50);"
      "INSERT INTO case_lf (vmax, vmin, tolerance, method, iteration, ctrl_rmxm, nbus, ngenerat, "
      "nload, nacline, ndcline, ntrans) VALUES (1.1, 0.9, 0.001, 4, 30, 1, 9, 9, 9, 9, 9, 9);"
      // kv rows by id: 'a' has index 0, 'b' 1, 'c' 2.
      "INSERT INTO kv (id, dv, vbase, vmax, vmin) VALUES ('c', '7', 110, 100, 120), "
      "('a', ' 3 ', 220, 242, 198), ('b', '4', 0, 1.05, 0.95);"
      "INSERT INTO bs (id, name, ikv, iisland) VALUES (5, 'Second bus', 1, 0), (0, 'x', 0, 0), "
      "(2, 'First bus with a long name', 0, 0), (7, 'Gone', 0, -1), (9, 'Crossed', 2, 0);"
      "INSERT INTO ln (ibs, zbs, lnno, dv, r1, x1, bch, q, topflags, mode_ctrl, par_group) VALUES "
      "(1, 2, 1, '12', 0.01, 0.1, 0.02, 3, 0, 5, 6), (1, 2, 2, '', 0.01, 0.1, 0, 1, 0, 0, 0), "
      "(1, 3, 1, '', 0.01, 0.1, 0, 0, 4, 0, 0);"
      "INSERT INTO cp (ibs, cpno, r1, x1, q, par_no) VALUES (2, 1, 0, -20, 0, 8), (3, 1, 0, 5, 1, "
      "0);"
      "INSERT INTO xf (ibs, zbs, xfno, r1, x1, tk, rm, xm, ang_shift, q, topflags, par_no) VALUES "
      "(2, 4, 1, 0, 0.05, 1.05, 0, 0, 0, 1, 0, 0), (2, 3, 1, 0.001, 0.05, 0.95, 80, 40, 30, 0, "
      "0, 11);"
      "INSERT INTO dln (ibs, zbs, dlnno, dv, rl_ohm, i_bridge, j_tap, q) VALUES "
      "(1, 4, 1, '2', 6.5, 2, 3, 0), (1, 4, 2, '', 1, 1, 1, 4);"
      "INSERT INTO un (ibs, mode_ctrl, w, r, v, adeg, rmx, rmn, q, topflags) VALUES "
      "(1, 0, 1.5, 0.5, 1.02, 0, 2, -1, 0, 0), (2, -6, 0.25, 0, 1.01, 0, 1, -1, 0, 0), "
      "(3, 1, 9, 9, 1, 0, 0, 0, 0, 1);"
      "INSERT INTO ld (ibs, ldno, mode_ctrl, w, r) VALUES "
      "(2, 1, 1, 0.5, 0.25), (3, 1, 2, 0.125, 0), (2, 2, -5, 0.75, 0.5);"
      "INSERT INTO load_lib (par_no, ap, cq) VALUES (3, 0.5, 0.25), (2, 0.75, 0), (7, 1, 1);");
  start();
  EXPECT_EQ(read(), "");

  EXPECT_EQ(LFINF.vmax, double(1.1f));
  EXPECT_EQ(RMXMVALID, 1);

  // Buses in id order behind the placeholder.
  ASSERT_EQ(LFINF.nbus, 4);
  EXPECT_EQ(L1.busname[1].trimmed(), "First bus with a lon");
  EXPECT_EQ(LL1.busarea[1], 3);
  EXPECT_EQ(LL1.busvmax[1], double(242.0f) / 220.0);
  EXPECT_EQ(L1.busname[2].trimmed(), "Second bus");
  EXPECT_EQ(LL1.busvmax[2], LFINF.vmax);  // no base voltage: case limits
  EXPECT_EQ(L1.busname[3].trimmed(), "NULL   1");
  EXPECT_EQ(LL1.busvmin[4], LFINF.vmin);  // limits the wrong way round
  EXPECT_EQ(LL1.busvmax[4], LFINF.vmax);
  EXPECT_EQ(LL1.busarea[4], 7);

  // One branch list: lines, shunt branches, transformers.
  ASSERT_EQ(LFINF.nacline, 3);
  ASSERT_EQ(LFINF.ntrans, 1);
  EXPECT_EQ(NO.nbranch, 4);
  EXPECT_EQ((std::array{IJOPEN.mark[1], IJOPEN.mark[2]}), (std::array{3, 2}));
  EXPECT_EQ(IJB.LOSSAREA[1], 12);
  EXPECT_EQ(RXB.B[1], double(0.02f));
  EXPECT_EQ((std::array{IJB.I[3], IJB.J[3]}), (std::array{2, 2}));  // the shunt branch
  EXPECT_EQ(L2P.par_group[3], 8);
  EXPECT_EQ(IJB.J[4], 3);
  EXPECT_EQ(RXB.T[4], double(0.95f));
  EXPECT_EQ(L3P.J[1], 3);
  EXPECT_EQ(L3P.ang_shift[4], 30.0);  // at the branch index, not the transformer's
  EXPECT_EQ(L2P.par_group[4], 11);

  EXPECT_EQ((std::array{LFINF.ndcline, NO.ndc}), (std::array{1, 1}));
  EXPECT_EQ(NL4.LOSSAREA[1], 2);

  // Extended type codes fold without user-defined models.
  ASSERT_EQ(LFINF.ngenerat, 2);
  EXPECT_EQ(L5.mode_ctrl[2], kTypePV);
  ASSERT_EQ(LFINF.nload, 3);
  EXPECT_EQ(L6.mode_ctrl[3], kTypePQ);
  EXPECT_EQ(LF93.loadshare, 1);

  // The library walk ends on the highest set number.
  EXPECT_EQ(LFINF.nloadpar, 7);
  EXPECT_EQ(ABCLC.cq[1], 1.0);
  EXPECT_EQ(ABCLC.ap[7], 1.0);
}

TEST_F(ReadTest, AnEmptyStudyCaseReadsEveryTableWithTheDefaults) {
  sql("INSERT INTO global (base_mva) VALUES (50);"
      "INSERT INTO bs (id, iisland) VALUES (0, 0), (1, -1);"
      "INSERT INTO un (ibs, mode_ctrl) VALUES (1, -6);"
      "INSERT INTO ld (ibs, w) VALUES (1, 0.5);");
  start();
  LF93.ctrl_ud = 1;
  EXPECT_EQ(read(), " RDkv: cli_fetch failed with code           0\n");
  EXPECT_EQ(LFINF.base_mva, 100.0);
  EXPECT_EQ(LFINF.vmax, 1.149999976158142);
  EXPECT_EQ(LFINF.vmin, 0.8500000238418579);
  EXPECT_EQ(LFINF.tolerance, 9.999999747378752e-05);
  EXPECT_EQ(LFINF.iteration, 50);
  EXPECT_EQ(LFINF.ngenerat, 1);
  EXPECT_EQ(L5.mode_ctrl[1], kTypePV);  // the defaults switch models off
  EXPECT_EQ(LFINF.nload, 1);
  EXPECT_EQ(LF93.loadshare, 0);
  EXPECT_EQ(LFINF.nloadpar, 1);
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

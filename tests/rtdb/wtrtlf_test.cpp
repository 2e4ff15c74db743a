#include <cmath>
#include <regex>

#include "common/golden.hpp"
#include "control/dcline.hpp"
#include "report/fixture.hpp"
#include "report/reports.hpp"
#include "rtdb/rtdb.hpp"
#include "sparse/ymatrix.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "testdb.hpp"

namespace lf::test {
namespace {

// A solved state by hand on the tables of tests/data/rtdb/written.sql: case
// buses 1, 2 at internal nodes 2, 1; bus 3 has no node.  Branch 1 is a line 1-2, branch 2 a shunt
// at bus 2, branch 3 a transformer 1-2 with a magnetising branch.
class WriteTest : public TestDb {
 protected:
  void SetUp() override {
    TestDb::SetUp();
    sql(read_file(fs::path(LF_TEST_DATA_DIR) / "rtdb/written.sql"));
    RTDBLSCMN.session = open();
    RTDBLSCMN.rtdbmode = 1;

    LFINF = LFINFRec{};
    LFINF.nbus = 3, LFINF.nacline = 2, LFINF.ntrans = 1, LFINF.ngenerat = 2, LFINF.nload = 1;
    NO.nbranch = 3, NO.nnode = 2, NU.nud = 0;
    LF93.loadshare = 0;
    RMXMVALID = 1;
    NEW.grow(3);
    NEW[1] = 2, NEW[2] = 1, NEW[3] = 0;
    grow_buses(3);
    for (int i = 1; i <= 3; ++i) NNTOON[i] = i;
    VPQ.grow(2);
    GLP.grow(2);
    set_node(1, 0.98, -0.05);
    set_node(2, 1.02, 0.1);
    VPQ.PG[2] = 1.5, VPQ.QG[2] = 0.25, VPQ.PL[1] = 0.75, VPQ.QL[1] = 0.125;
    branch(1, 1, 2, 1, 0.01, 0.1, 0.02, 1.0);
    branch(2, 2, 2, 1, 0.0, -5.0, 0.0, 1.0);
    branch(3, 1, 2, 2, 0.005, 0.05, 0.0, 1.05);
    L3P.mode_ctrl[1] = 0, L3PP.Rm[1] = 100.0, L3PP.Xm[1] = 50.0;
    L5.ibs[1] = 1, L5.mode_ctrl[1] = kTypeSlack;
    L5OLD.grow(2);
    L5OLD.ngenold = 2, L6PP.nloadold = 1;
    L5OLD.share[1] = L5OLD.share[2] = 1.0;
  }
  void set_node(int n, double v, double th) {
    VPQ.V[n] = v, VPQ.TH[n] = th, VPQ.E[n] = v * std::cos(th), VPQ.F[n] = v * std::sin(th);
  }
};

// The tables after writing stand in tests/data/golden/rtdb/written.txt: the
// placeholder bus, the nodeless and the dead one in the order of their rows;
// a line found with its ends the other way round, one without a branch (all
// zeros), one passed over; the transformer's sending power carries the
// magnetising power; a unit without a node keeps its values; the study case
// stamped, and stamped -1 when the case did not converge.
TEST_F(WriteTest, WritesVoltagesFlowsAndOutputsAndKeepsEverythingElse) {
  int32_t converged = 1;
  wtrtlf(converged);
  std::string tables;
  for (const char* q : {"id, name, v, adeg FROM bs", "id, v FROM bus",
                        "id, descr, w, r, wz, rz, rci, rcz, i, iz FROM ln", "id, r FROM cp",
                        "id, pm, w, wz FROM xf", "id, w, r, rate_mva FROM un", "id, w, r FROM ld"})
    tables += std::string("== ") + q + "\n" + query_text(path_, std::string("SELECT ") + q);
  const std::string stamp = "SELECT calculate, nbus, nacline, case_no, scheme FROM case_lf";
  tables += "== case_lf\n" + query_text(path_, stamp);
  EXPECT_TRUE(std::regex_match(value("SELECT cal_date || ' ' || cal_time FROM case_lf"),
                               std::regex(R"(\d{4}/\d\d/\d\d \d\d:\d\d:\d\d)")));
  converged = 0;
  wtrtlf(converged);
  test::expect_golden(tables + query_text(path_, stamp), "rtdb/written.txt");
}

TEST_F(WriteTest, SharesTheNodePowersAmongTheUnitsAndLoadsOfABus) {
  sql("DELETE FROM ld; DELETE FROM un;"
      "INSERT INTO un (id, ibs) VALUES ('g1', 1), ('g2', 3), ('g3', 1);"
      "INSERT INTO ld (id, ibs) VALUES ('d1', 2), ('d2', 2), ('d3', 2), ('d4', 1);");
  LFINF.ngenerat = 3;
  LFINF.nload = 4;
  L5OLD.grow(3);
  L5OLD.ngenold = 3;
  L5OLD.share[1] = 0.6, L5OLD.share[3] = 0.4, L5OLD.map[1] = L5OLD.map[3] = 1;
  L5OLD.P[3] = 0.125, L5OLD.Q[3] = 0.0625;
  L5.mode_ctrl[1] = kTypeSlack;  // the merged unit regulates: shares of the node's output

  LF93.loadshare = 1;
  L6PP.nloadold = 4;
  const int ibs[] = {2, 2, 2, 1};
  const int type[] = {kTypePQ, kTypeFirstLoadSet, kTypeFirstLoadSet, kTypeFirstLoadSet};
  const double p[] = {0.5, 0.3, 0.2, 0.4}, q[] = {0.25, 0.1, 0.1, 0.2};
  for (int d = 1; d <= 4; ++d) {
    L6PP.ibs[d] = ibs[d - 1], L6PP.mode_ctrl[d] = type[d - 1];
    L6PP.P[d] = p[d - 1], L6PP.Q[d] = q[d - 1];
  }
  GLP.ILOAD[1] = 1, GLP.ILOAD[2] = 2, L6.mode_ctrl[1] = L6.mode_ctrl[2] = kTypeFirstLoadSet;
  VPQ.PL[1] = 1.1, VPQ.QL[1] = 0.5, VPQ.PL[2] = 0.45, VPQ.QL[2] = 0.25;

  // The outputs of both runs stand in tests/data/golden/rtdb/shares.txt.
  int32_t converged = 1;
  wtrtlf(converged);
  const std::string outputs = "SELECT id, w, r FROM un; SELECT id, w, r FROM ld";
  std::string tables = query_text(path_, outputs);
  // A fixed merged unit: each unit keeps what it was given.  A voltage-
  // controlled merged load: the load keeps its P and takes Q in proportion.
  L5.mode_ctrl[1] = kTypePQ;
  L6.mode_ctrl[1] = kTypePV;
  wtrtlf(converged);
  test::expect_golden(tables + query_text(path_, outputs), "rtdb/shares.txt");
}

TEST_F(WriteTest, WritesTheOperatingPointOfADcLine) {
  sql("INSERT INTO dln (id, dlnno, q, vdrate_kv) VALUES ('off', 1, 4, 1), ('dc', 1, 0, 500);");
  LFINF.ndcline = 1;
  DCLFOP.grow(1), DCBASE.grow(1), DCLFPU.grow(1);
  NL4.op_mode[1] = 20, NL4.i_bridge[1] = 2, NL4.vli_kv[1] = 210, NL4.vhi_kv[1] = 230;
  DCBASE.vbi[1] = 230, DCBASE.vdb[1] = 500, DCLFPU.qcip[1] = 0.75;
  DCLFOP.tk1i[1] = 1.02, DCLFOP.pd1i[1] = -3.0, DCLFOP.pd2i[1] = -2.0, DCLFOP.qd1i[1] = -1.0;
  DCLFOP.id10[1] = 0.5, DCLFOP.id20[1] = 0.25;
  int32_t converged = 1;
  wtrtlf(converged);
  // Both poles' powers, the filters of two poles, the ratio as a percentage
  // of the tap (none from a J end without data), nothing for the line out of
  // service: tests/data/golden/rtdb/dcline.txt.
  test::expect_golden(query_text(path_, "SELECT id, w, r, iz, qcip, ttk1i, ttk1j FROM dln"),
                      "rtdb/dcline.txt");
}

}  // namespace
}  // namespace lf::test

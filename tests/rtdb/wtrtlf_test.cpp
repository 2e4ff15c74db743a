#include <cmath>
#include <regex>

#include "control/dcline.hpp"
#include "report/reports.hpp"
#include "rtdb/rtdb.hpp"
#include "sparse/ymatrix.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "testdb.hpp"

namespace lf::test {
namespace {

// A solved state by hand: case buses 1, 2 at internal nodes 2, 1; bus 3
// has no node.  Branch 1 is a line 1-2, branch 2 a shunt at bus 2, branch 3
// a transformer 1-2 with a magnetising branch.
class WriteTest : public TestDb {
 protected:
  void SetUp() override {
    TestDb::SetUp();
    sql("INSERT INTO case_lf (case_no, scheme, calculate, cal_date) VALUES (5, 'base', 0, 'x');"
        "INSERT INTO bs (id, name) VALUES (0, 'placeholder');"
        "INSERT INTO bs (id, name, v, iisland) VALUES (3, 'C', 7, 0), (1, 'A', 7, 0), "
        "(2, 'B', 7, -1);"
        "INSERT INTO bus (id, ibs, v) VALUES ('p1', 1, 7), ('p0', 0, 7), ('p3', 3, 7);"
        "INSERT INTO ln (id, descr, ibs, zbs, lnno, w, q, topflags) VALUES "
        "('match', 'line one', 2, 1, 1, 9, 0, 0), ('nobranch', '', 1, 3, 1, 9, 0, 0), "
        "('dropped', '', 1, 2, 1, 9, 4, 0);"
        "INSERT INTO cp (id, ibs, cpno, w) VALUES ('shunt', 2, 1, 9);"
        "INSERT INTO xf (id, ibs, zbs, xfno, i, w) VALUES ('xf', 1, 2, 2, 9, 9);"
        "INSERT INTO un (id, ibs, w, r, rate_mva) VALUES ('g1', 1, 9, 9, 250), ('g2', 3, 9, 9, 1);"
        "INSERT INTO ld (id, ibs, w, r) VALUES ('d1', 2, 9, 9);");
    RTDBLSCMN.session = open();
    RTDBLSCMN.rtdbmode = 1;

    LFINF = LFINFRec{};
    LFINF.nbus = 3, LFINF.nacline = 2, LFINF.ntrans = 1, LFINF.ngenerat = 2, LFINF.nload = 1;
    NO.nbranch = 3, NO.nnode = 2, NU.nud = 0;
    LF93.loadshare = 0;
    RMXMVALID = 1;
    NEW.grow(3);
    NEW[1] = 2, NEW[2] = 1, NEW[3] = 0;
    NNTOON.grow(3);
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
  void branch(int k, int i, int j, int no, double r, double x, double b, double t) {
    IJB.I[k] = i, IJB.J[k] = j, IJB.No[k] = no;
    RXB.R[k] = r, RXB.X[k] = x, RXB.B[k] = b, RXB.T[k] = t;
  }
  static double narrowed(double x) { return static_cast<float>(x); }
};

TEST_F(WriteTest, WritesVoltagesFlowsAndOutputsAndKeepsEverythingElse) {
  int32_t converged = 1;
  wtrtlf(converged);

  EXPECT_EQ(number("SELECT v FROM bs WHERE id = 1"), 1.02);
  EXPECT_NEAR(number("SELECT adeg FROM bs WHERE id = 1"), 0.1 * 57.295780181884766, 1e-12);
  // The placeholder, the nodeless and the dead bus, in the order of their rows:
  EXPECT_EQ(value("SELECT group_concat(v, ' ') FROM bs WHERE id <> 1"), "0.0 7.0 7.0");
  EXPECT_EQ(value("SELECT group_concat(v, ' ') FROM bus"), "1.02 7.0 7.0");

  // A line found with its ends the other way round, one without a branch,
  // one passed over.
  double pij, qij, pji, qji, ci, cj, ii, ij;
  brpq(1, pij, qij, pji, qji, ci, cj);
  bracurrent(1, ii, ij);
  EXPECT_EQ(number("SELECT w FROM ln WHERE id = 'match'"), narrowed(pij));
  EXPECT_EQ(number("SELECT rz FROM ln WHERE id = 'match'"), narrowed(-qji));
  EXPECT_EQ(number("SELECT iz FROM ln WHERE id = 'match'"), narrowed(-ij));
  EXPECT_EQ(value("SELECT descr FROM ln WHERE id = 'match'"), "line one");
  EXPECT_EQ(value("SELECT w || r || wz || rz || rci || rcz || i || iz FROM ln "
                  "WHERE id = 'nobranch'"),
            "0.00.00.00.00.00.00.00.0");
  EXPECT_EQ(number("SELECT w FROM ln WHERE id = 'dropped'"), 9);

  brpq(2, pij, qij, pji, qji, ci, cj);
  EXPECT_EQ(number("SELECT r FROM cp"), narrowed(qij));

  // The transformer's sending power carries the magnetising power.
  brpq(3, pij, qij, pji, qji, ci, cj);
  double v2 = 1.02 * 1.02, d = 100.0 * 100.0 + 50.0 * 50.0;
  EXPECT_EQ(number("SELECT pm FROM xf"), narrowed(100.0 * v2 / d));
  EXPECT_EQ(number("SELECT w FROM xf"), narrowed(pij + 100.0 * v2 / d));
  EXPECT_EQ(number("SELECT wz FROM xf"), narrowed(-pji));

  EXPECT_EQ(value("SELECT w || ' ' || r || ' ' || rate_mva FROM un WHERE id = 'g1'"),
            "1.5 0.25 250.0");
  EXPECT_EQ(number("SELECT w FROM un WHERE id = 'g2'"), 9);  // no node
  EXPECT_EQ(value("SELECT w || ' ' || r FROM ld"), "0.75 0.125");

  // The study case is stamped.
  EXPECT_EQ(value("SELECT calculate || ' ' || nbus || ' ' || nacline || ' ' || case_no || ' ' || "
                  "scheme FROM case_lf"),
            "1 3 2 5 base");
  EXPECT_TRUE(std::regex_match(value("SELECT cal_date || ' ' || cal_time FROM case_lf"),
                               std::regex(R"(\d{4}/\d\d/\d\d \d\d:\d\d:\d\d)")));

  converged = 0;
  wtrtlf(converged);
  EXPECT_EQ(value("SELECT calculate FROM case_lf"), "-1");
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

  int32_t converged = 1;
  wtrtlf(converged);
  EXPECT_EQ(number("SELECT w FROM un WHERE id = 'g1'"), narrowed(0.6 * 1.5));
  EXPECT_EQ(number("SELECT r FROM un WHERE id = 'g3'"), narrowed(0.4 * 0.25));
  // Constant-power loads keep their values, the others share the rest.
  EXPECT_EQ(value("SELECT group_concat(w || '/' || r, ' ') FROM ld"),
            "0.5/0.25 0.300000011920929/0.125 0.300000011920929/0.125 0.449999988079071/0.25");

  // A fixed merged unit: each unit keeps what it was given.  A voltage-
  // controlled merged load: the load keeps its P and takes Q in proportion.
  L5.mode_ctrl[1] = kTypePQ;
  L6.mode_ctrl[1] = kTypePV;
  wtrtlf(converged);
  EXPECT_EQ(number("SELECT r FROM un WHERE id = 'g3'"), 0.0625);
  EXPECT_EQ(number("SELECT w FROM ld WHERE id = 'd3'"), narrowed(0.2));
  EXPECT_EQ(number("SELECT r FROM ld WHERE id = 'd3'"), narrowed(0.2 * 0.25 / 0.6));
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
  const std::string dc = " FROM dln WHERE id = 'dc'";
  EXPECT_EQ(number("SELECT w" + dc), 5.0);
  EXPECT_EQ(number("SELECT r" + dc), 1.0);
  EXPECT_EQ(number("SELECT iz" + dc), 0.75);
  EXPECT_EQ(number("SELECT qcip" + dc), 1.5);  // two poles, two filters
  EXPECT_EQ(number("SELECT ttk1i" + dc),
            ((1.02 * 2 * 230.0 / 500.0) * 210.0 * 1.350474473703044 / 230.0 - 1) * 100);
  EXPECT_EQ(value("SELECT ttk1j IS NULL" + dc), "1");  // 0/0 from a J end without data
  EXPECT_EQ(number("SELECT w FROM dln WHERE id = 'off'"), 0.0);
}

}  // namespace
}  // namespace lf::test

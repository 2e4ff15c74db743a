// Reading the case from the tables of the real-time database into the
// network store.  The counts of case_lf decide which tables are read; each
// table then replaces its count with the rows that it really kept.  All
// network data are per unit on the system base in the tables and are only
// widened; bus voltage limits alone come in kV and are divided by the base.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "casefile/checks.hpp"
#include "casefile/indexcheck.hpp"
#include "casefile/sequence.hpp"
#include "rtdb/pass.hpp"
#include "rtdb/rtdb.hpp"
#include "rtdb/rtdbls.hpp"
#include "rtdb/rtlfcase.hpp"
#include "store/store.hpp"
#include "support/fmt.hpp"

namespace lf {

namespace {

// Case values that stand when case_lf has no row: 32-bit constants widened.
constexpr double kDefaultVmax = 1.149999976158142;
constexpr double kDefaultVmin = 0.8500000238418579;
constexpr double kDefaultTolerance = 9.999999747378752e-05;
constexpr double kDefaultBaseMva = 100.0;
constexpr int32_t kDefaultMethod = 1;       // Newton's method with the correction test
constexpr int32_t kDefaultIterations = 50;  // the iteration limit

// The bus, type and set values of generator or load k.  Without
// user-defined models the extended type codes fold into the plain ones.
template <typename Rec, typename Row>
void store_setpoint(Rec& rec, int32_t k, const Row& row) {
  rec.ibs[k] = row.ibs;
  rec.mode_ctrl[k] = row.mode_ctrl;
  if (LF93.ctrl_ud == 0) fold_mode_ctrl(rec.mode_ctrl[k]);
  rec.P[k] = row.w;
  rec.Q[k] = row.r;
  rec.V[k] = row.v;
  rec.Angle[k] = row.adeg;
}

// The limits and control data of generator or load k.
template <typename Row>
void store_limits(LPRec& rec, int32_t k, const Row& row) {
  rec.Qmax[k] = row.rmx;
  rec.Qmin[k] = row.rmn;
  rec.Pmax[k] = row.wmx;
  rec.Pmin[k] = row.wmn;
  rec.par_group[k] = row.par_group;
  rec.ibs_ctrl[k] = row.ibs_ctrl;
  rec.line_ctrl[k] = row.line_ctrl;
  rec.value_ctrl[k] = row.value_ctrl;
}

}  // namespace

void rdrtlfctrl() {
  case_lf_row c;
  global_row g;
  TablePass pc = open_pass("select * from case_lf", c, bindcase_lf, "Bindcase_lf failed!",
                           Say::Print, cli_view_only, nullptr, 0);
  TablePass pg = open_pass("select * from global", g, bindglobal, "Bindglobal failed!",
                           Say::Wstring, cli_view_only, nullptr, 0);
  if (pg.count >= 1 && cli_get_first(pg.stmt) == cli_ok) LFINF.base_mva = g.base_mva;
  if (pc.count < 1) {
    LFINF.nbus = LFINF.nacline = LFINF.ntrans = LFINF.ndcline = LFINF.ngenerat = LFINF.nload = 1;
    LFINF.nloadpar = LFINF.narea = 0;
    LFINF.vmax = kDefaultVmax;
    LFINF.vmin = kDefaultVmin;
    LFINF.tolerance = kDefaultTolerance;
    LFINF.method = kDefaultMethod;
    LFINF.iteration = kDefaultIterations;
    LFINF.ctrl_area = 0;
    LF93.ctrl_ud = LF93.ctrl_sub = 0;
    LFINF.base_mva = kDefaultBaseMva;
  } else if (cli_get_first(pc.stmt) == cli_ok) {
    LFINF.vmax = c.vmax;
    LFINF.vmin = c.vmin;
    LFINF.tolerance = c.tolerance;
    LFINF.method = c.method;
    LFINF.iteration = c.iteration;
    LFINF.ctrl_area = c.ctrl_area;
    LF93.ctrl_ud = c.ctrl_ud;
    LF93.ctrl_sub = c.ctrl_sub;
    LF93.ctrl_fact = c.ctrl_fact;
    LFINF.nbus = c.nbus;
    LFINF.ngenerat = c.ngenerat;
    LFINF.nload = c.nload;
    LFINF.nacline = c.nacline;
    LFINF.ndcline = c.ndcline;
    LFINF.ntrans = c.ntrans;
    LFINF.nloadpar = 0;
    // A magnetising branch switch once on stays on.
    if (RMXMVALID == 0 && c.ctrl_rmxm == 1) RMXMVALID = 1;
  }
  close_pass(pc);
  close_pass(pg);
}

void rdrtbus() {
  kv_row k;
  TablePass pk = open_pass("select * from kv order by id", k, bindkv, "Bindkv failed!", Say::Print,
                           cli_view_only, "RDkv: cli_fetch failed with code", 1);
  std::vector<kv_row> levels;  // by ikv, from 0
  levels.reserve(static_cast<std::size_t>(std::max(pk.count, 0)));
  while (next_row(pk)) {
    strc2f(k.dv, kTextWidth);
    levels.push_back(k);
  }
  close_pass(pk);

  bs_row b;
  TablePass pb = open_pass("select * from bs order by id", b, bindbs, "Bindbs failed!", Say::Print,
                           cli_view_only, "RDbs: cli_fetch failed with code", 1);
  if (cli_get_first(pb.stmt) == cli_ok) pb.row = 1;  // the placeholder row, never a bus
  int32_t i = 0, dead = 0;
  while (next_row(pb)) {
    ++i;
    if (static_cast<std::size_t>(i) > L1.busname.size())
      grow_buses(2 * static_cast<std::size_t>(i));
    if (b.iisland < 0) {
      ++dead;
      L1.busname[i] = "NULL" + fmt_i(dead, 4);
      LL1.basekv[i] = LL1.busvmax[i] = LL1.busvmin[i] = 0;
    } else {
      strc2f(b.name, kTextWidth);
      L1.busname[i] = std::string_view(b.name, BusName::size());
      kv_row level;
      if (b.ikv >= 0 && static_cast<std::size_t>(b.ikv) < levels.size()) {
        level = levels[static_cast<std::size_t>(b.ikv)];
      } else {
        reset(level);
        fail_row(pb, "kv row index " + std::to_string(b.ikv) + " names none of the " +
                         std::to_string(levels.size()) + " kv rows");
      }
      LL1.basekv[i] = level.vbase;
      read_int(level.dv, kTextWidth, LL1.busarea[i]);
      double base = LL1.basekv[i] == 0 ? 1.0 : LL1.basekv[i];
      LL1.busvmax[i] = level.vmax / base;
      LL1.busvmin[i] = level.vmin / base;
    }
    repair_bus_limits(i);
  }
  LFINF.nbus = i;
  close_pass(pb);
}

namespace {

// Stores the ends of kept branch n into IJB and IJOPEN.
void store_branch(int32_t n, int32_t i, int32_t j, int32_t no, int32_t mark) {
  if (static_cast<std::size_t>(n) > IJB.I.size()) grow_branches(2 * static_cast<std::size_t>(n));
  IJB.I[n] = IJOPEN.I[n] = i;
  IJB.J[n] = IJOPEN.J[n] = j;
  IJB.No[n] = IJOPEN.No[n] = no;
  IJOPEN.mark[n] = mark;
}

void store_rx(int32_t n, double r, double x, double b, double t) {
  RXB.R[n] = r;
  RXB.X[n] = x;
  RXB.B[n] = b;
  RXB.T[n] = t;
}

// The control data of a branch row into row n of L2P or L3P.
template <typename Rec>
void store_control(Rec& rec, int32_t n, int32_t mode_ctrl, int32_t par_group, int32_t ibs_ctrl,
                   int32_t line_ctrl, double value_ctrl) {
  rec.mode_ctrl[n] = mode_ctrl;
  rec.par_group[n] = par_group;
  rec.ibs_ctrl[n] = ibs_ctrl;
  rec.line_ctrl[n] = line_ctrl;
  rec.value_ctrl[n] = value_ctrl;
}

void store_line_ends(int32_t n) {
  L2P.I[n] = IJB.I[n];
  L2P.J[n] = IJB.J[n];
  L2P.No[n] = IJB.No[n];
}

}  // namespace

// The three tables fill one branch list, in the order the statements return
// the rows: lines, then shunt branches, then transformers.
void rdrtactrs() {
  ln_row l;
  TablePass pl = open_pass("select * from ln", l, bindln, "Bindln failed!", Say::Print,
                           cli_view_only, "Rdln: cli_fetch failed with code", 0);
  LFINF.nacline = walk_kept(pl, l, [&](int32_t n) {
    if (!bus_ok(pl, l.ibs) || !bus_ok(pl, l.zbs)) return;
    store_branch(n, l.ibs, l.zbs, l.lnno, open_mark(l.q));
    store_line_ends(n);
    store_rx(n, l.r1, l.x1, l.bch, 1.0);
    strc2f(l.dv, kTextWidth);
    read_int(l.dv, kTextWidth, IJB.LOSSAREA[n]);
    store_control(L2P, n, l.mode_ctrl, l.par_group, l.ibs_ctrl, l.line_ctrl, l.value_ctrl);
  });
  close_pass(pl);

  cp_row c;
  TablePass pc = open_pass("select * from cp", c, bindcp, "Bindcp failed!", Say::Print,
                           cli_view_only, "RDcp: cli_fetch failed with code", 0);
  const int32_t lines = LFINF.nacline;
  LFINF.nacline += walk_kept(pc, c, [&](int32_t k) {
    int32_t n = lines + k;
    if (!bus_ok(pc, c.ibs)) return;
    store_branch(n, c.ibs, c.ibs, c.cpno, kInService);
    store_line_ends(n);
    store_rx(n, c.r1, c.x1, 0.0, 1.0);
    IJB.LOSSAREA[n] = 0;
    store_control(L2P, n, c.mode_ctrl, c.par_no, c.ibs_ctrl, c.line_ctrl, c.value_ctrl);
  });
  close_pass(pc);

  // A transformer's ends and magnetising branch go to L3P and L3PP at its
  // own index t, but its angle to L3P at the branch index n; its loss area
  // is not set.
  xf_row x;
  TablePass px = open_pass("select * from xf", x, bindxf, "Bindxf failed!", Say::Print,
                           cli_view_only, "RDxf: cli_fetch failed with code", 0);
  LFINF.ntrans = walk_kept(px, x, [&](int32_t t) {
    int32_t n = LFINF.nacline + t;
    if (!bus_ok(px, x.ibs) || !bus_ok(px, x.zbs)) return;
    store_branch(n, x.ibs, x.zbs, x.xfno, kInService);
    L3P.I[t] = x.ibs;
    L3P.J[t] = x.zbs;
    L3P.No[t] = x.xfno;
    L3PP.Rm[t] = x.rm;
    L3PP.Xm[t] = x.xm;
    store_rx(n, x.r1, x.x1, 0.0, x.tk);
    L3P.ang_shift[n] = x.ang_shift;
    store_control(L2P, n, x.mode_ctrl, x.par_no, x.ibs_ctrl, x.line_ctrl, x.value_ctrl);
    // The standard models of a transformer are made from its own record.
    store_control(L3P, t, x.mode_ctrl, x.par_no, x.ibs_ctrl, x.line_ctrl, x.value_ctrl);
  });
  close_pass(px);
}

void rdrtdc() {
  dln_row d;
  TablePass p = open_pass("select * from dln", d, binddln, "Binddln failed!", Say::Print,
                          cli_view_only, "Rddln: cli_fetch failed with code", 0);
  LFINF.ndcline = walk_kept(p, d, [&](int32_t m) {
    if (!bus_ok(p, d.ibs) || !bus_ok(p, d.zbs)) return;
    NL4.grow(static_cast<std::size_t>(m));
    NL4.I[m] = d.ibs;
    NL4.J[m] = d.zbs;
    NL4.No[m] = d.dlnno;
    strc2f(d.dv, kTextWidth);
    read_int(d.dv, kTextWidth, NL4.LOSSAREA[m]);
    NL4.rpi_ohm[m] = d.rpi_ohm;
    NL4.lpi_mh[m] = d.lpi_mh;
    NL4.rpj_ohm[m] = d.rpj_ohm;
    NL4.lpj_mh[m] = d.lpj_mh;
    NL4.rl_ohm[m] = d.rl_ohm;
    NL4.ll_mh[m] = d.ll_mh;
    NL4.rei_ohm[m] = d.rei_ohm;
    NL4.rej_ohm[m] = d.rej_ohm;
    NL4.lsi_mh[m] = d.lsi_mh;
    NL4.lsj_mh[m] = d.lsj_mh;
    NL4.op_mode[m] = d.op_mode;
    NL4.vdrate_kv[m] = d.vdrate_kv;
    NL4.vd1_kv[m] = d.vd1_kv;
    NL4.pd1_mw[m] = d.pd1_mw;
    NL4.a1min_d[m] = d.a1min_d;
    NL4.a10_d[m] = d.a10_d;
    NL4.gam1min_d[m] = d.gam1min_d;
    NL4.gam10_d[m] = d.gam10_d;
    NL4.vd2_kv[m] = d.vd2_kv;
    NL4.pd2_mw[m] = d.pd2_mw;
    NL4.a2min_d[m] = d.a2min_d;
    NL4.a20_d[m] = d.a20_d;
    NL4.gam2min_d[m] = d.gam2min_d;
    NL4.gam20_d[m] = d.gam20_d;
    NL4.vhi_kv[m] = d.vhi_kv;
    NL4.vli_kv[m] = d.vli_kv;
    NL4.i_bridge[m] = d.i_bridge;
    NL4.qci_mvar[m] = d.qci_mvar;
    NL4.sti_mva[m] = d.sti_mva;
    NL4.rti_ohm[m] = d.rti_ohm;
    NL4.xti_perc[m] = d.xti_perc;
    NL4.vtimax_kv[m] = d.vtimax_kv;
    NL4.vtimin_kv[m] = d.vtimin_kv;
    NL4.i_tap[m] = d.i_tap;
    NL4.vhj_kv[m] = d.vhj_kv;
    NL4.vlj_kv[m] = d.vlj_kv;
    NL4.j_bridge[m] = d.j_bridge;
    NL4.qcj_mvar[m] = d.qcj_mvar;
    NL4.stj_mva[m] = d.stj_mva;
    NL4.rtj_ohm[m] = d.rtj_ohm;
    NL4.xtj_perc[m] = d.xtj_perc;
    NL4.vtjmax_kv[m] = d.vtjmax_kv;
    NL4.vtjmin_kv[m] = d.vtjmin_kv;
    NL4.j_tap[m] = d.j_tap;
  });
  close_pass(p);
}

namespace {

// The rows of the generator or load table into rec and lp: bus, type, set
// values, limits and control data, with keep(k) for what only that kind
// keeps; grow makes room for a row.  Gives the count kept.
template <typename Row, typename Rec, typename Keep>
int32_t read_units(TablePass& p, const Row& row, Rec& rec, LPRec& lp, void (*grow)(std::size_t),
                   Keep keep) {
  return walk_kept(p, row, [&](int32_t k) {
    if (!bus_ok(p, row.ibs)) return;
    if (static_cast<std::size_t>(k) > rec.P.size()) grow(2 * static_cast<std::size_t>(k));
    store_setpoint(rec, k, row);
    keep(k);
    store_limits(lp, k, row);
  });
}

}  // namespace

void rdrtgen() {
  un_row u;
  TablePass p = open_pass("select * from un", u, bindun, "Bindun failed!", Say::Print,
                          cli_view_only, "Rdun: cli_fetch failed with code", 0);
  LFINF.ngenerat = read_units(p, u, L5, L5P, grow_generators, [](int32_t g) { L5.merged[g] = 0; });
  close_pass(p);
}

void rdrtload() {
  ld_row l;
  TablePass p = open_pass("select * from ld", l, bindld, "Bindld failed!", Say::Print,
                          cli_view_only, "Rdld: cli_fetch failed with code", 0);
  LFINF.nload = read_units(p, l, L6, L6P, grow_loads, [&](int32_t d) { L6.No[d] = l.ldno; });
  close_pass(p);
  set_loadshare();
}

void rdrtl10() {
  fact_gl_row f;
  TablePass p = open_pass("select * from fact_gl", f, bindfact_gl, "Bindfact_gl failed!",
                          Say::Print, cli_view_only, "Rdfact_gl: cli_fetch failed with code", 0);
  int32_t k = 0;
  while (next_row(p)) {
    if (f.valid != 1) continue;
    ++k;
    L10.grow(static_cast<std::size_t>(k));
    L10.area[k] = f.area_no;
    L10.kv[k] = f.v_level;
    L10.PG[k] = f.factor_pg;
    L10.QG[k] = f.factor_qg;
    L10.PL[k] = f.factor_pl;
    L10.QL[k] = f.factor_ql;
    L10.name1[k] = "";
    L10.name2[k] = "";
  }
  close_pass(p);
  LF93.ctrl_fact = k;
}

void rdrtloadpar() {
  load_lib_row l;
  TablePass p = open_pass("select * from load_lib order by par_no", l, bindload_lib,
                          "Bindload_lib failed!", Say::Wstring, cli_view_only, nullptr, 0);
  LFINF.nloadpar = p.count;
  // The set number comes from the row and indexes ABCLC: a library may number
  // its sets up to its capacity or its row count, whichever is more.  A
  // number below 1 names no set.
  const int32_t top = std::max(static_cast<int32_t>(kCapLoadPar), p.count);
  while (next_row(p)) {
    if (l.par_no >= 1 && in_range(p, "parameter set number", l.par_no, top)) {
      ABCLC.grow(static_cast<std::size_t>(l.par_no));
      ABCLC.ap[l.par_no] = l.ap;
      ABCLC.bp[l.par_no] = l.bp;
      ABCLC.cp[l.par_no] = l.cp;
      ABCLC.aq[l.par_no] = l.aq;
      ABCLC.bq[l.par_no] = l.bq;
      ABCLC.cq[l.par_no] = l.cq;
    }
    LFINF.nloadpar = l.par_no;
  }
  close_pass(p);
}

namespace {

// The tables of the database session, each part read by its own pass.  The
// database has no area schedules and no switch records.
class CaseTables final : public CaseSource {
 public:
  bool ok() const override { return RTDBFAIL.text.empty(); }
  void control() override { rdrtlfctrl(); }
  void buses() override { rdrtbus(); }
  void branches() override { rdrtactrs(); }
  void dc_lines() override { rdrtdc(); }
  void generators() override { rdrtgen(); }
  void loads() override { rdrtload(); }
  void factors() override { rdrtl10(); }
  void load_library() override { rdrtloadpar(); }
  std::string load_origin() const override { return "table ld"; }
};

}  // namespace

// The reading stops at the first table that fails; the driver then stops
// the calculation.  The reading transaction ends here, so that no lock of
// this session keeps other writers waiting while the case is solved.
void rdrtlf() {
  if (RTDBLSCMN.rtdbmode == 0) return;
  RTDBFAIL = {};
  NU.nl9 = 0;  // model rows come from a case file only, never from the database
  CaseTables tables;
  read_case(tables);
  cli_precommit(RTDBLSCMN.session);
}

}  // namespace lf

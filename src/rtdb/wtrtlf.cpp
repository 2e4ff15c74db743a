// Writing the solved state back into the tables of the real-time database.
// Rows are mapped to the solver's internal nodes through NEW and to the
// branch list through a search on their ends and circuit number; only the
// result columns change, every other column is written back as it was read.
// All tables are written in one transaction: one commit at the end makes
// the whole pass durable, and a table that fails rolls all of it back.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <tuple>

#include "control/dcline.hpp"
#include "io/channels.hpp"
#include "report/reports.hpp"
#include "rtdb/pass.hpp"
#include "rtdb/rtdb.hpp"
#include "rtdb/rtdbls.hpp"
#include "rtdb/rtlfcase.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "support/angles.hpp"

namespace lf {

namespace {

// The internal node of reduced bus i, 0 for none.
int32_t node(int32_t i) {
  if (i < 1 || static_cast<std::size_t>(i) > NEW.size()) return 0;
  return NEW[i];
}

// The first branch k of IJB with circuit number c whose ends, taken back to
// case buses, are a and b in either order; 0 when there is none.
class BranchIndex {
 public:
  BranchIndex() {
    for (int32_t k = NO.nbranch; k >= 1; --k)
      first_[key(case_bus(IJB.I[k]), case_bus(IJB.J[k]), IJB.No[k])] = k;
  }
  int32_t find(int32_t a, int32_t b, int32_t c) const {
    auto it = first_.find(key(a, b, c));
    return it == first_.end() ? 0 : it->second;
  }

 private:
  static int32_t case_bus(int32_t n) {
    if (n < 1 || static_cast<std::size_t>(n) > NNTOON.map.size()) return 0;
    return NNTOON[n];
  }
  static std::tuple<int32_t, int32_t, int32_t> key(int32_t a, int32_t b, int32_t c) {
    return {std::min(a, b), std::max(a, b), c};
  }
  std::map<std::tuple<int32_t, int32_t, int32_t>, int32_t> first_;
};

// A model injection at internal node n; none where the models left no entry.
double injection(const Arr<double>& a, int32_t n) {
  return static_cast<std::size_t>(n) <= a.size() ? a[n] : 0.0;
}

struct Flows {
  double pij = 0, qij = 0, pji = 0, qji = 0, ci = 0, cj = 0, ii = 0, ij = 0;
};

// The flows of branch k, all zero when there is no branch.
Flows flows_of(int32_t k) {
  Flows f;
  if (k == 0) return f;
  brpq(k, f.pij, f.qij, f.pji, f.qji, f.ci, f.cj);
  bracurrent(k, f.ii, f.ij);
  return f;
}

// Row k of a pass has a row of the case as read (there are n); a table that
// has gained rows since the case was read is a failure.
bool row_read(const TablePass& p, int32_t k, int32_t n) {
  if (k <= n) return true;
  fail_row(p, "not there when the case was read");
  return false;
}

// A text column: the text, a NUL and blanks up to the field's width.
void put_text(char* field, const char* text) {
  std::memset(field, ' ', kTextWidth);
  std::size_t n = std::min(std::strlen(text), static_cast<std::size_t>(kTextWidth - 1));
  std::memcpy(field, text, n);
  field[n] = '\0';
}

}  // namespace

void wtrtbus() {
  bs_row b;
  TablePass pb = open_pass("select * from bs  order by id", b, bindbs, "Bindbs failed!", Say::Print,
                           cli_for_update, "Wribs: cli_fetch failed with code", 1);
  cli_get_first(pb.stmt);  // the placeholder row, never a bus
  int32_t i = 0;
  while (next_row(pb)) {
    ++i;
    int32_t n = node(i);
    if (b.iisland < 0 || n == 0) continue;
    b.v = VPQ.V[n];
    b.adeg = VPQ.TH[n] * kRadToDegSingle;
    b.e = VPQ.E[n];
    b.f = VPQ.F[n];
    update_row(pb);
  }
  close_pass(pb);

  bus_row u;
  TablePass pu = open_pass("select * from bus", u, bindbus, "Bindbus failed!", Say::Print,
                           cli_for_update, "Wbus: cli_fetch failed with code", 1);
  while (next_row(pu)) {
    int32_t n = u.ibs > 0 ? node(u.ibs) : 0;
    if (n == 0) continue;
    u.v = VPQ.V[n];
    u.adeg = VPQ.TH[n] * kRadToDegSingle;
    update_row(pu);
  }
  close_pass(pu);
}

void wtrtac() {
  BranchIndex index;

  // A line without a branch of its own, such as one dropped by the network
  // preparation, is written with zeros.
  ln_row l;
  TablePass pl = open_pass("select * from ln", l, bindln, "Bindln failed!", Say::Print,
                           cli_for_update, "cli_fetch failed with code", 0);
  walk_kept(pl, l, [&](int32_t) {
    Flows f = flows_of(index.find(l.ibs, l.zbs, l.lnno));
    l.w = f.pij;
    l.r = f.qij;
    l.wz = -f.pji;
    l.rz = -f.qji;
    l.rci = f.ci;
    l.rcz = f.cj;
    l.i = f.ii;
    l.iz = -f.ij;
    update_row(pl);
  });
  close_pass(pl);

  cp_row c;
  TablePass pc = open_pass("select * from cp", c, bindcp, "Bindcp failed!", Say::Print,
                           cli_for_update, "cli_fetch failed with code", 0);
  walk_kept(pc, c, [&](int32_t) {
    Flows f = flows_of(index.find(c.ibs, c.ibs, c.cpno));
    c.w = f.pij;
    c.r = f.qij;
    c.i = f.ii;
    update_row(pc);
  });
  close_pass(pc);
}

void wtrttrs() {
  BranchIndex index;
  xf_row x;
  TablePass p = open_pass("select * from xf", x, bindxf, "Bindxf failed!", Say::Print,
                          cli_for_update, "Wxf: cli_fetch failed with code", 0);
  walk_kept(p, x, [&](int32_t t) {
    if (!row_read(p, t, LFINF.ntrans)) return;
    Flows f = flows_of(index.find(x.ibs, x.zbs, x.xfno));
    int32_t ni = node(x.ibs), nj = node(x.zbs);
    // A transformer under a user-defined model carries the model's output
    // at its two ends.
    if (L3P.mode_ctrl[t] == kXfRatioKept || L3P.mode_ctrl[t] == kXfHoldsP) {
      f.pij -= injection(LFUDOT.UDPINJ, ni);
      f.qij -= injection(LFUDOT.UDQINJ, ni);
      f.pji += injection(LFUDOT.UDPINJ, nj);
      f.qji += injection(LFUDOT.UDQINJ, nj);
    }
    double pm = 0, qm = 0;
    double rm = L3PP.Rm[t], xm = L3PP.Xm[t];
    if (RMXMVALID != 0 && std::fabs(rm) + std::fabs(xm) > kNegligibleMagnetising) {
      double v = VPQ.V[ni];
      double d = rm * rm + xm * xm;
      pm = rm * v * v / d;
      qm = xm * v * v / d;
      f.pij += pm;
      f.qij += qm;
    }
    x.w = f.pij;
    x.r = f.qij;
    x.wz = -f.pji;
    x.rz = -f.qji;
    x.pm = pm;
    x.qm = qm;
    update_row(p);
  });
  close_pass(p);
}

void wtrtdc() {
  dln_row d;
  TablePass p = open_pass("select * from dln", d, binddln, "Binddln failed!", Say::Print,
                          cli_for_update, "Wdln: cli_fetch failed with code", 0);
  walk_kept(p, d, [&](int32_t m) {
    if (!row_read(p, m, LFINF.ndcline)) return;
    // The operating point, the base values and the fixed per-unit values.
    d.id10 = DCLFOP.id10[m];
    d.id20 = DCLFOP.id20[m];
    d.vaci = DCLFOP.vaci[m];
    d.vacj = DCLFOP.vacj[m];
    d.pd1i = DCLFOP.pd1i[m];
    d.qd1i = DCLFOP.qd1i[m];
    d.vd10i = DCLFOP.vd10i[m];
    d.tk1i = DCLFOP.tk1i[m];
    d.a10r_d = DCLFOP.a10r_d[m];
    d.pd1j = DCLFOP.pd1j[m];
    d.qd1j = DCLFOP.qd1j[m];
    d.vd10j = DCLFOP.vd10j[m];
    d.tk1j = DCLFOP.tk1j[m];
    d.pd2i = DCLFOP.pd2i[m];
    d.qd2i = DCLFOP.qd2i[m];
    d.vd20i = DCLFOP.vd20i[m];
    d.tk2i = DCLFOP.tk2i[m];
    d.a20r_d = DCLFOP.a20r_d[m];
    d.pd2j = DCLFOP.pd2j[m];
    d.qd2j = DCLFOP.qd2j[m];
    d.vd20j = DCLFOP.vd20j[m];
    d.tk2j = DCLFOP.tk2j[m];
    d.vbi = DCBASE.vbi[m];
    d.vbj = DCBASE.vbj[m];
    d.vdb = DCBASE.vdb[m];
    d.idb = DCBASE.idb[m];
    d.zdb = DCBASE.zdb[m];
    d.ldb = DCBASE.ldb[m];
    d.tkbi = DCBASE.tkbi[m];
    d.tkbj = DCBASE.tkbj[m];
    d.xci = DCLFPU.xci[m];
    d.xcj = DCLFPU.xcj[m];
    d.tkimax = DCLFPU.tkimax[m];
    d.tkimin = DCLFPU.tkimin[m];
    d.tkjmax = DCLFPU.tkjmax[m];
    d.tkjmin = DCLFPU.tkjmin[m];
    // The line's parameters, per unit since the DC set-up.
    d.rpi = NL4.rpi_ohm[m];
    d.lpi = NL4.lpi_mh[m];
    d.rpj = NL4.rpj_ohm[m];
    d.lpj = NL4.lpj_mh[m];
    d.rl = NL4.rl_ohm[m];
    d.ll = NL4.ll_mh[m];
    d.rei = NL4.rei_ohm[m];
    d.rej = NL4.rej_ohm[m];
    d.lsi = NL4.lsi_mh[m];
    d.lsj = NL4.lsj_mh[m];
    // One filter per pole in bipolar operation.
    const double filters = dc_poles(m);
    d.qcip = DCLFPU.qcip[m] * filters;
    d.qcjp = DCLFPU.qcjp[m] * filters;
    // Tap positions of the converter transformers in percent.
    auto tap_i = [&](double tk) {
      return converter_tap_percent(tk, NL4.i_bridge[m], d.vbi, d.vdb, NL4.vli_kv[m], NL4.vhi_kv[m]);
    };
    auto tap_j = [&](double tk) {
      return converter_tap_percent(tk, NL4.j_bridge[m], d.vbj, d.vdb, NL4.vlj_kv[m], NL4.vhj_kv[m]);
    };
    d.ttk1i = tap_i(d.tk1i);
    d.ttk2i = tap_i(d.tk2i);
    d.ttk1j = tap_j(d.tk1j);
    d.ttk2j = tap_j(d.tk2j);
    d.w = -(d.pd1i + d.pd2i);
    d.r = -(d.qd1i + d.qd2i);
    d.wz = d.pd1j + d.pd2j;
    d.rz = d.qd1j + d.qd2j;
    d.i = d.iz = d.id10 + d.id20;
    update_row(p);
  });
  close_pass(p);
}

void wtrtgen() {
  un_row u;
  TablePass p = open_pass("select * from un", u, bindun, "Bindun failed!", Say::Print,
                          cli_for_update, "Wun: cli_fetch failed with code", 0);
  walk_kept(p, u, [&](int32_t g) {
    if (!row_read(p, g, L5OLD.ngenold)) return;
    int32_t n = node(u.ibs);
    if (n == 0) return;
    double pg, qg;
    unit_output(g, VPQ.PG[n], VPQ.QG[n], pg, qg);
    u.w = pg;
    u.r = qg;
    update_row(p);
  });
  close_pass(p);
}

void wtrtload() {
  ld_row l;
  TablePass p = open_pass("select * from ld", l, bindld, "Bindld failed!", Say::Print,
                          cli_for_update, "Wld: cli_fetch failed with code", 0);
  walk_kept(p, l, [&](int32_t d) {
    if (LF93.loadshare != 0 && !row_read(p, d, L6PP.nloadold)) return;
    int32_t n = node(l.ibs);
    if (n == 0) return;
    double pl = VPQ.PL[n], ql = VPQ.QL[n];
    int32_t c = L6.mode_ctrl[GLP.ILOAD[n]];  // type of the merged load
    if (LF93.loadshare == 0) {
      l.w = pl;
      l.r = ql;
    } else if (c == kTypePQ) {
      l.w = L6PP.P[d];
      l.r = L6PP.Q[d];
    } else {
      // The loads of the bus given as constant power keep their values; the
      // others share what remains.
      int32_t total = 0, rest = 0;
      for (int32_t j = 1; j <= L6PP.nloadold; ++j) {
        if (L6PP.ibs[j] != L6PP.ibs[d]) continue;
        ++total;
        if (L6PP.mode_ctrl[j] == kTypePQ) {
          pl -= L6PP.P[j];
          ql -= L6PP.Q[j];
        } else {
          ++rest;
        }
      }
      if (total == 1) {
        l.w = VPQ.PL[n];
        l.r = VPQ.QL[n];
      } else if (L6PP.mode_ctrl[d] == kTypePQ) {
        l.w = L6PP.P[d];
        l.r = L6PP.Q[d];
      } else if (c >= kTypeSlack) {
        l.w = pl / rest;
        l.r = ql / rest;
      } else {
        l.w = L6PP.P[d];
        l.r = std::fabs(pl) >= kShareFloor ? L6PP.P[d] * ql / pl : ql / rest;
      }
    }
    update_row(p);
  });
  close_pass(p);
}

void wtrtlfctrl(int32_t& converged) {
  case_lf_row c;
  TablePass p = open_pass("select * from case_lf", c, bindcase_lf, "Bindcase_lf failed!",
                          Say::Print, cli_for_update, nullptr, 0);
  if (cli_get_first(p.stmt) == cli_ok) {
    c.calculate = converged != 0 ? 1 : -1;
    c.nbus = LFINF.nbus;
    c.ngenerat = LFINF.ngenerat;
    c.nload = LFINF.nload;
    c.nacline = LFINF.nacline;
    c.ndcline = LFINF.ndcline;
    c.ntrans = LFINF.ntrans;
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y/%m/%d", &local);
    put_text(c.cal_date, text);
    std::strftime(text, sizeof text, "%H:%M:%S", &local);
    put_text(c.cal_time, text);
    update_row(p);
  }
  close_pass(p);
}

// The tables are written one after the other until one fails; then the
// whole pass is rolled back, the failure is printed and the calculation
// counts as a failed one, since its results are nowhere.
void wtrtlf(int32_t& converged) {
  if (RTDBLSCMN.rtdbmode == 0) return;
  RTDBFAIL = {};
  prnslackbuspq();
  if (NU.nud > 0) dwirii();
  const auto ok = [] { return RTDBFAIL.text.empty(); };
  if (ok() && NO.nnode != 0) wtrtbus();
  if (ok() && LFINF.nacline != 0) wtrtac();
  if (ok() && LFINF.ntrans != 0) wtrttrs();
  if (ok() && LFINF.ndcline != 0) wtrtdc();
  if (ok() && LFINF.ngenerat != 0) wtrtgen();
  if (ok() && LFINF.nload != 0) wtrtload();
  if (ok() && LFINF.ctrl_area != 0 && LFINF.narea != 0) wlp7(casename);
  if (ok()) wtrtlfctrl(converged);
  if (int rc = ok() ? cli_commit(RTDBLSCMN.session) : cli_ok; rc != cli_ok)
    RTDBFAIL.text = "cli_commit failed with code " + std::to_string(rc);
  if (ok()) return;
  cli_abort(RTDBLSCMN.session);
  wstring("Results not written: the database is left as it was");
  wstring(" " + RTDBFAIL.text);
  converged = 0;
}

}  // namespace lf

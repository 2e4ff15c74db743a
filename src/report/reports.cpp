// The report files of a file-mode calculation and the branch flows they and
// the database writer share.
//
// Branch k of IJB between buses i and j (V = E + jF), y = 1/(R + jX), Z =
// R^2 + X^2, B half the charging and T the turns ratio at the J end (1 when
// not above 0), as the admittance matrix takes them (see RXRec):
//   I_ij = y (V_i - V_j/T) + jB V_i            current into the branch at i
//   I_ji = -(y/T) (V_i - V_j/T) + jB V_j       current into the branch at j
//   S_ij = V_i conj(I_ij) = pij + j qij,  S_ji = V_j conj(I_ji) = pji + j qji
//   charging ci = B V_i^2, cj = B V_j^2
// A shunt row (i equal to j) draws S = V_i^2 (R + jX) / Z.  A branch
// without impedance (Z = 0) carries no series current, as in the matrix.
#include "report/reports.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "io/channels.hpp"
#include "report/area.hpp"
#include "report/dcreports.hpp"
#include "report/reportfile.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/vpq.hpp"
#include "support/angles.hpp"
#include "support/fmt.hpp"
#include "support/prefetch.hpp"

namespace lf {

namespace {

// Name of the bus that reduced bus b stands for.
std::string bus_name(int32_t b) {
  return L1.busname[NNTOON[b]].trimmed();
}

// One row of the slack bus table.
void slack_row(int32_t b, double p, double q) {
  wstring("  " + fmt_a(bus_name(b), 20) + " " + fmt_f(p, 9, 4) + " " + fmt_f(q, 9, 4));
}

void slack_head() {
  wstring("  " + std::string(48, '-'));
  wstring("       Slack Bus          P          Q");
  wstring("  " + std::string(20, '-') + " " + std::string(9, '-') + " " + std::string(9, '-'));
}

// The currents at the two ends of a series branch, in rectangular form.
struct EndCurrents {
  double cr, cx, dr, dx;
};

// x / Z for a branch of squared impedance Z; a branch without impedance
// carries no current of its own, as in the admittance matrix.
double per_z(double x, double Z) {
  return Z == 0 ? 0.0 : x / Z;
}

EndCurrents end_currents(int32_t i, int32_t j, double R, double X, double B, double T, double Z) {
  const double t = T > 0 ? T : 1.0;
  const double a = t * VPQ.E[i] - VPQ.E[j];
  const double b = t * VPQ.F[i] - VPQ.F[j];
  const double sr = per_z(R * a + X * b, Z) / t;
  const double si = per_z(R * b - X * a, Z) / t;
  return {sr - B * VPQ.F[i], si + B * VPQ.E[i], -sr / t - B * VPQ.F[j], B * VPQ.E[j] - si / t};
}

// The branch that stands for a row as read: the first with the same number
// and the same two case buses, in either order; NO.nbranch + 1 without one.
// The branches are kept in groups by the lower of their two case buses, each
// group by ascending branch: the rows of a case come roughly by bus, so the
// look-ups walk the groups in order instead of jumping over a large table.
class BranchIndex {
 public:
  BranchIndex() {
    const auto ends = [](int32_t k) {
      const int32_t a = NNTOON[IJB.I[k]], b = NNTOON[IJB.J[k]];
      return std::pair{std::min(a, b), std::max(a, b)};
    };
    int32_t top = 0;
    for (int32_t k = 1; k <= NO.nbranch; ++k) top = std::max(top, ends(k).second);
    start_.assign(static_cast<std::size_t>(top) + 2, 0);
    for (int32_t k = 1; k <= NO.nbranch; ++k)
      if (const int32_t lo = ends(k).first; lo >= 0) ++start_[static_cast<std::size_t>(lo) + 1];
    for (std::size_t b = 1; b < start_.size(); ++b) start_[b] += start_[b - 1];
    entries_.resize(static_cast<std::size_t>(start_.back()));
    std::vector<int32_t> at(start_.begin(), start_.end() - 1);
    for (int32_t k = 1; k <= NO.nbranch; ++k) {
      const auto [lo, hi] = ends(k);
      if (lo >= 0)
        entries_[static_cast<std::size_t>(at[static_cast<std::size_t>(lo)]++)] = {IJB.No[k], hi, k};
    }
  }
  int32_t find(int32_t no, int32_t i, int32_t j) const {
    const int32_t lo = std::min(i, j), hi = std::max(i, j);
    if (lo >= 0 && static_cast<std::size_t>(lo) + 1 < start_.size()) {
      const std::size_t b = static_cast<std::size_t>(lo);
      for (int32_t t = start_[b]; t < start_[b + 1]; ++t) {
        const Entry& e = entries_[static_cast<std::size_t>(t)];
        if (e.no == no && e.hi == hi) return e.branch;
      }
    }
    return NO.nbranch + 1;
  }
  // find for the rows from .. to of IJOPEN, by row from `from` on.
  std::vector<int32_t> rows(int32_t from, int32_t to) const {
    std::vector<int32_t> k;
    for (int32_t r = from; r <= to; ++r) k.push_back(find(IJOPEN.No[r], IJOPEN.I[r], IJOPEN.J[r]));
    return k;
  }

 private:
  struct Entry {
    int32_t no, hi, branch;  // number, higher case bus, branch in IJB
  };
  std::vector<int32_t> start_;  // by lower case bus b: group b is entries_[start_[b] ..]
  std::vector<Entry> entries_;
};

// How many rows ahead the reports ask for the bus values of a row.
constexpr int32_t kBusesAhead = 16;

// Asks early for the bus values that the flows of branch k read: the rows
// come by case bus, their internal buses in the order of the ordering.
[[gnu::always_inline]] inline void prefetch_buses(int32_t k) {
  if (k < 1 || k > NO.nbranch) return;
  prefetch_at(NEW[IJB.I[k]], VPQ.E, VPQ.F, VPQ.V);
  prefetch_at(NEW[IJB.J[k]], VPQ.E, VPQ.F, VPQ.V);
}

// Flows of the branch found for a row as read.  A row past the branch list
// that holds no branch yields zeros.
void row_flows(int32_t k, double& pij, double& qij, double& pji, double& qji, double& ci,
               double& cj) {
  pij = qij = pji = qji = ci = cj = 0;
  if (k > NO.nbranch) {
    if (static_cast<std::size_t>(k) > RXB.R.size()) return;
    if (RXB.R[k] * RXB.R[k] + RXB.X[k] * RXB.X[k] == 0) return;
  }
  brpq(k, pij, qij, pji, qji, ci, cj);
}

std::string now_stamp() {
  std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char buf[40];
  std::snprintf(buf, sizeof buf, "%04d%02d%02d at %02d:%02d:%02d", tm.tm_year + 1900, tm.tm_mon + 1,
                tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
  return buf;
}

// .LPD: the voltage of every new node, once for each branch at it, with the
// load number that it carries.
void write_lpd(const CaseName& casename) {
  const std::string path = casename.trimmed() + ".LPD";
  std::remove(path.c_str());
  const int32_t nbase = NNTOON.nbase, nnode = NNTOON.nnode;
  if (nnode == nbase) return;
  ReportFile out(path);
  const auto node_slot = [&](int32_t k) -> int32_t {
    return k > nbase && k <= nnode ? k - nbase - 1 : -1;
  };
  const std::size_t nnew = static_cast<std::size_t>(std::max(nnode - nbase, 0));
  std::vector<std::vector<int32_t>> branches(nnew), shared(nnew);
  std::vector<int32_t> first_load(nnew, 0);
  for (int32_t b = 1; b <= NO.nbranch; ++b) {
    const int32_t si = node_slot(IJB.I[b]);
    if (si >= 0) branches[si].push_back(b);
    const int32_t sj = node_slot(IJB.J[b]);
    if (sj >= 0 && IJB.J[b] != IJB.I[b]) branches[sj].push_back(b);
  }
  for (int32_t r = LFINF.nload; r >= 1; --r) {
    const int32_t s = node_slot(L6.ibs[r]);
    if (s >= 0) first_load[s] = r;
  }
  for (int32_t q = 1; q <= L6PP.nloadold; ++q) {
    const int32_t s = node_slot(L6PP.ibs[q]);
    if (s >= 0) shared[s].push_back(q);
  }
  for (int32_t k = nbase + 1; k <= nnode; ++k) {
    const int32_t i = NEW[k];
    if (i == 0) continue;
    const int32_t s = k - nbase - 1;
    const std::string tail = csv_f({VPQ.V[i], VPQ.TH[i] * kRadToDegShort}, 15, 10) + "'" +
                             L1.busname[NNTOON[k]].str() + "',";
    const auto line = [&](int32_t b, int32_t n) {
      out.ints({NNTOON[k], k, IJB.No[b], n}, 6);
      out.text(tail);
      out.end_line();
    };
    const int32_t r = LFINF.nload > 0 ? first_load[s] : 0;
    const int32_t n = r > 0 ? L6.No[r] : 0;
    for (int32_t b : branches[s]) {
      if (n < 1 && LF93.loadshare != 0 && r > 0) {
        for (int32_t q : shared[s]) line(b, L6PP.No[q]);
      } else {
        line(b, n);
      }
    }
  }
}

}  // namespace

void brpq(int32_t k, double& pij, double& qij, double& pji, double& qji, double& ci, double& cj) {
  const int32_t i = NEW[IJB.I[k]], j = NEW[IJB.J[k]];
  const double R = RXB.R[k], X = RXB.X[k], B = RXB.B[k], T = RXB.T[k];
  const double Z = R * R + X * X;
  pji = qji = ci = cj = 0;
  if (i == j) {  // shunt to ground
    pij = per_z(VPQ.V[i] * VPQ.V[i] * R, Z);
    qij = per_z(VPQ.V[i] * VPQ.V[i] * X, Z);
    return;
  }
  const EndCurrents c = end_currents(i, j, R, X, B, T, Z);
  pij = c.cr * VPQ.E[i] + c.cx * VPQ.F[i];
  qij = c.cr * VPQ.F[i] - c.cx * VPQ.E[i];
  pji = c.dr * VPQ.E[j] + c.dx * VPQ.F[j];
  qji = c.dr * VPQ.F[j] - c.dx * VPQ.E[j];
  ci = VPQ.V[i] * VPQ.V[i] * B;
  cj = VPQ.V[j] * VPQ.V[j] * B;
}

void bracurrent(int32_t k, double& ii, double& ij) {
  const int32_t i = NEW[IJB.I[k]], j = NEW[IJB.J[k]];
  const double R = RXB.R[k], X = RXB.X[k];
  const double Z = R * R + X * X;
  if (i == j) {
    ii = Z == 0 ? 0.0 : VPQ.V[i] * VPQ.V[i] / std::sqrt(Z);
    ij = 0;
    return;
  }
  const EndCurrents c = end_currents(i, j, R, X, RXB.B[k], RXB.T[k], Z);
  ii = std::sqrt(c.cr * c.cr + c.cx * c.cx);
  ij = std::sqrt(c.dr * c.dr + c.dx * c.dx);
}

void dwirii() {
  LFUDOT.grow(static_cast<std::size_t>(NO.nnode));
  for (int32_t i = 1; i <= NO.nnode; ++i) {
    const double p = LFUDOT.UDPINJ[i], q = LFUDOT.UDQINJ[i];
    if (std::fabs(p) + std::fabs(q) < kNoInjection) continue;
    // A slack row gives both parts back, a voltage row the reactive part.
    const auto take_out = [p, q](int32_t type, double& pw, double& qw) {
      if (type == kTypeSlack) {
        pw -= p;
        qw -= q;
      } else if (type == kTypePV) {
        qw -= q;
      }
    };
    if (const int32_t g = GLP.IGEN[i]; g > 0) take_out(L5.mode_ctrl[g], VPQ.PG[i], VPQ.QG[i]);
    if (const int32_t l = GLP.ILOAD[i]; l > 0) take_out(L6.mode_ctrl[l], VPQ.PL[i], VPQ.QL[i]);
  }
}

void prnslackbuspq() {
  slack_head();
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    const int32_t i = NEW[L5.ibs[g]];
    if (i != 0 && L5.mode_ctrl[g] == kTypeSlack) slack_row(L5.ibs[g], VPQ.PG[i], VPQ.QG[i]);
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    const int32_t i = NEW[L6.ibs[l]];
    if (i != 0 && L6.mode_ctrl[l] == kTypeSlack && GLP.IGEN[i] == 0)
      slack_row(L6.ibs[l], -VPQ.PL[i], -VPQ.QL[i]);
  }
}

void wlp1(int32_t convergent, const CaseName& casename) {
  {
    ReportFile out(casename.trimmed() + ".LP1");
    out.put(fmt_i(convergent != 0 ? 0 : 1, 3) + ",'LF Result File Created on " + now_stamp() +
            "',");
    for (int32_t k = 1; k <= NNTOON.nbase; ++k) {
      if (k + kBusesAhead <= NNTOON.nbase) prefetch_at(NEW[k + kBusesAhead], VPQ.V, VPQ.TH);
      const int32_t i = NEW[k];
      if (i == 0) continue;
      double angle = VPQ.TH[i] * kRadToDegShort;
      if (std::fabs(angle) > kFullTurnDeg) angle -= std::trunc(angle / kFullTurnDeg) * kFullTurnDeg;
      out.ints({k}, 4);
      out.reals({VPQ.V[i], angle}, 15, 10);
      out.end_line();
    }
  }
  write_lpd(casename);
}

namespace {

void write_lp2(const CaseName& casename, const BranchIndex& index) {
  ReportFile out(casename.trimmed() + ".LP2");
  double pij, qij, pji, qji, ci, cj;
  const std::vector<int32_t> branch = index.rows(1, LFINF.nacline);
  for (int32_t r = 1; r <= LFINF.nacline; ++r) {
    const std::size_t at = static_cast<std::size_t>(r - 1);
    if (const std::size_t next = at + kBusesAhead; next < branch.size())
      prefetch_buses(branch[next]);
    row_flows(branch[at], pij, qij, pji, qji, ci, cj);
    out.ints({IJOPEN.I[r], IJOPEN.J[r], IJOPEN.No[r]}, 6);
    out.reals({pij, qij, 0.0 - pji, 0.0 - qji, ci, cj}, 10, 5);
    out.end_line();
  }
}

void write_lp3(const CaseName& casename, const BranchIndex& index) {
  ReportFile out(casename.trimmed() + ".LP3");
  LFUDOT.grow(static_cast<std::size_t>(NO.nnode));
  double pij, qij, pji, qji, ci, cj;
  const std::vector<int32_t> branch = index.rows(LFINF.nacline + 1, LFINF.nacline + LFINF.ntrans);
  for (int32_t t = 1; t <= LFINF.ntrans; ++t) {
    const int32_t r = LFINF.nacline + t;
    const std::size_t at = static_cast<std::size_t>(t - 1);
    if (const std::size_t next = at + kBusesAhead; next < branch.size())
      prefetch_buses(branch[next]);
    row_flows(branch[at], pij, qij, pji, qji, ci, cj);
    double pb = 0.0 - pji, qb = 0.0 - qji;  // counted from I to J
    const int32_t i = NEW[IJOPEN.I[r]], j = NEW[IJOPEN.J[r]];
    if (L3P.mode_ctrl[t] == 1 || L3P.mode_ctrl[t] == 2) {  // a model's transformer control
      pij -= LFUDOT.UDPINJ[i];
      qij -= LFUDOT.UDQINJ[i];
      pb += LFUDOT.UDPINJ[j];
      qb += LFUDOT.UDQINJ[j];
    }
    const double rm = L3PP.Rm[t], xm = L3PP.Xm[t];
    double pm = 0, qm = 0;
    if (!(std::fabs(rm) + std::fabs(xm) < kNegligibleMagnetising)) {  // magnetising branch
      pm = rm * VPQ.V[i] * VPQ.V[i] / (rm * rm + xm * xm);
      qm = xm * VPQ.V[i] * VPQ.V[i] / (rm * rm + xm * xm);
      pij += pm;
      qij += qm;
    }
    out.ints({IJOPEN.I[r], IJOPEN.J[r], IJOPEN.No[r]}, 6);
    out.reals({pij, qij, pb, qb, pm, qm}, 10, 5);
    out.end_line();
  }
}

}  // namespace

void wlp2(const CaseName& casename) {
  write_lp2(casename, BranchIndex());
}

void wlp3(const CaseName& casename) {
  write_lp3(casename, BranchIndex());
}

void unit_output(int32_t r, double pg, double qg, double& p, double& q) {
  const double share = static_cast<std::size_t>(r) <= L5OLD.share.size() ? L5OLD.share[r] : 1.0;
  if (!(share < 1.0)) {
    p = pg;
    q = qg;
  } else if (L5.mode_ctrl[L5OLD.map[r]] < kTypePQ) {
    p = share * pg;
    q = share * qg;
  } else {
    p = L5OLD.P[r];
    q = L5OLD.Q[r];
  }
}

void wlp5(const CaseName& casename) {
  ReportFile out(casename.trimmed() + ".LP5", ReportFile::kReplace);
  if (!out.ok()) return;
  for (int32_t r = 1; r <= L5OLD.ngenold; ++r) {
    if (r + kBusesAhead <= L5OLD.ngenold)
      prefetch_at(NEW[L5OLD.ibs[r + kBusesAhead]], VPQ.PG, VPQ.QG);
    const int32_t b = L5OLD.ibs[r];
    const int32_t i = NEW[b];
    if (i == 0) continue;
    double p, q;
    unit_output(r, VPQ.PG[i], VPQ.QG[i], p, q);
    // The row number as read also serves as a row of the merged generators here.
    if (static_cast<std::size_t>(r) <= L5.mode_ctrl.size() && L5.mode_ctrl[r] == kTypeSlack)
      slack_row(L5.ibs[r], VPQ.PG[i], VPQ.QG[i]);
    out.text(" ");
    out.ints({b}, 4);
    out.reals({p, q}, 20, 10);
    out.ints({L5OLD.merged[r]}, 6);
    out.end_line();
  }
}

void wlp6(const CaseName& casename) {
  ReportFile out(casename.trimmed() + ".LP6");
  const bool shares = LF93.loadshare != 0 && LFINF.nload != L6PP.nloadold;
  std::unordered_map<int32_t, std::vector<int32_t>> as_read;  // rows of L6PP by bus
  if (shares)
    for (int32_t q = 1; q <= L6PP.nloadold; ++q) as_read[L6PP.ibs[q]].push_back(q);
  for (int32_t r = 1; r <= LFINF.nload; ++r) {
    if (r + kBusesAhead <= LFINF.nload) prefetch_at(NEW[L6.ibs[r + kBusesAhead]], VPQ.PL, VPQ.QL);
    const int32_t b = L6.ibs[r];
    const int32_t i = NEW[b];
    if (i == 0) continue;
    if (L6.mode_ctrl[r] == kTypeSlack && GLP.IGEN[i] == 0) slack_row(b, -VPQ.PL[i], -VPQ.QL[i]);
    if (shares && L6.No[r] == 0) {
      const auto it = as_read.find(b);
      const std::size_t c = it == as_read.end() ? 0 : it->second.size();
      if (c > 1) {  // a merged load: each load as read gets its part
        const int32_t m = L6.mode_ctrl[r];
        for (int32_t q : it->second) {
          double p, qq;
          if (m == kTypeSlack) {
            p = VPQ.PL[i] / static_cast<double>(c);
            qq = VPQ.QL[i] / static_cast<double>(c);
          } else if (m < kTypeSlack) {
            p = L6PP.P[q];
            qq = VPQ.QL[i] * L6PP.P[q] / VPQ.PL[i];
          } else {
            p = L6PP.P[q];
            qq = L6PP.Q[q];
          }
          out.ints({NNTOON[L6PP.ibs[q]], L6PP.No[q]}, 4);
          out.reals({p, qq}, 20, 10);
          out.end_line();
        }
        continue;
      }
    }
    out.ints({NNTOON[b], L6.No[r]}, 4);
    out.reals({VPQ.PL[i], VPQ.QL[i]}, 20, 10);
    out.end_line();
  }
}

void wlp7(const CaseName& casename) {
  ReportFile out(casename.trimmed() + ".LP7");
  for (int32_t a = 1; a <= LFINF.narea; ++a) {
    const int32_t no = LL7.area_no[a];
    const double pact =
        no >= 1 && static_cast<std::size_t>(no) <= AREA.PACT.size() ? AREA.PACT[no] : 0;
    // An area whose regulating generator was not found shows 0 for its output.
    const int32_t g = regulating_generator(a);
    out.ints({no}, 4);
    out.reals({pact, g > 0 ? L5.P[g] : 0.0}, 15, 8);
    out.end_line();
  }
}

void wtlf(int32_t convergent, const CaseName& casename) {
  wstring("", 0);
  slack_head();
  if (NU.nud > 0) dwirii();
  if (NO.nnode != 0) wlp1(convergent, casename);
  if (LFINF.nacline != 0 || LFINF.ntrans != 0) {
    // One index serves both files.
    const BranchIndex index;
    if (LFINF.nacline != 0) write_lp2(casename, index);
    if (LFINF.ntrans != 0) write_lp3(casename, index);
  }
  if (LFINF.ndcline != 0) {
    nwlp4(casename);
    wlp4_new(casename);
  }
  if (LFINF.ngenerat != 0) wlp5(casename);
  if (LFINF.nload != 0) wlp6(casename);
  if (LFINF.ctrl_area != 0 && LFINF.narea != 0) wlp7(casename);
  wstring("", 0);
}

}  // namespace lf

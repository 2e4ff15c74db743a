#include "methods/iteration.hpp"

#include <algorithm>
#include <cmath>

#include "control/models.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/vpq.hpp"
#include "support/fmt.hpp"
#include "support/prefetch.hpp"

namespace lf {

void start_models() {
  UDWORK = 100;
  if (NU.nud != 0) initlf();
}

bool run_models(int32_t t) {
  if (NU.nud == 0) return false;
  elfud(t);
  udlpex();
  if (LFUDOT.UDCHG == 0) return false;
  fomy12();
  return true;
}

void glpos() {
  const int32_t n = NO.nnode;
  GLP.grow(n);
  GLP.IGEN.clear(n);
  GLP.ILOAD.clear(n);
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    int32_t i = internal_bus(L5.ibs[g]);
    if (i != 0) GLP.IGEN[i] = g;
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    int32_t i = internal_bus(L6.ibs[l]);
    if (i != 0) GLP.ILOAD[i] = l;
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    int32_t i = internal_bus(L6.ibs[l]);
    if (i == 0 || GLP.IGEN[i] == 0) continue;
    const int32_t g = GLP.IGEN[i];
    const int32_t gt = L5.mode_ctrl[g];
    int32_t& lt = L6.mode_ctrl[l];
    if (gt == lt) {
      if (gt == kTypeSlack) {
        L6.V[l] = L5.V[g];
        L6.Angle[l] = L5.Angle[g];
      } else if (gt == kTypePV) {
        L6.V[l] = L5.V[g];
      }
    } else if (gt == kTypeSlack) {
      lt = kTypeSlack;
      L6.V[l] = L5.V[g];
      L6.Angle[l] = L5.Angle[g];
    } else if (gt == kTypePV || gt == kTypePVQlim) {
      lt = gt;
      L6.V[l] = L5.V[g];
    } else if (gt == kTypeModel4 || gt == kTypeModel6) {
      // A generator whose voltage a model moves: the load row holds the
      // bus voltage with it, as for a plain voltage-given generator.
      lt = kTypePV;
      L6.V[l] = L5.V[g];
    } else if (gt == kTypePQVlim) {
      lt = kTypePQVlim;
    } else if (gt >= kTypePQ && lt <= kTypePQ) {
      lt = kTypePQ;
    }
  }
}

void inivpq() {
  const int32_t n = NO.nnode;
  VPQ.grow(n);
  for (int32_t i = 1; i <= n; ++i) {
    VPQ.V[i] = 1;
    VPQ.TH[i] = 0;
    VPQ.E[i] = 1;
    VPQ.F[i] = 0;
    VPQ.PG[i] = VPQ.QG[i] = VPQ.PL[i] = VPQ.QL[i] = VPQ.PDC[i] = VPQ.QDC[i] = 0;
  }
  // A fixed-voltage row sets the bus voltage; a slack row also its angle.
  auto start = [](int32_t i, int32_t type, double v, double angle) {
    if (iter_type(type) >= kTypePQ) return;
    VPQ.V[i] = v;
    if (type == kTypeSlack) VPQ.TH[i] = angle * kDegToRadSingle;
    VPQ.E[i] = VPQ.V[i] * std::cos(VPQ.TH[i]);
    VPQ.F[i] = VPQ.V[i] * std::sin(VPQ.TH[i]);
  };
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    int32_t i = internal_bus(L5.ibs[g]);
    if (i == 0) continue;
    VPQ.PG[i] = L5.P[g];
    VPQ.QG[i] = L5.Q[g];
    start(i, L5.mode_ctrl[g], L5.V[g], L5.Angle[g]);
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    int32_t i = internal_bus(L6.ibs[l]);
    if (i == 0) continue;
    VPQ.PL[i] = L6.P[l];
    VPQ.QL[i] = L6.Q[l];
    start(i, L6.mode_ctrl[l], L6.V[l], L6.Angle[l]);
  }
}

void allbpq(int32_t k, int32_t n, const Arr<double>& e, const Arr<double>& f, Arr<double>& ir,
            Arr<double>& ii, Arr<double>& pc, Arr<double>& qc) {
  ir.clear(n);
  ii.clear(n);
  for (int32_t i = 1; i <= n; ++i) {
    for (int32_t p = Y.IY[i]; p < Y.IY[i + 1]; ++p) {
      const int32_t j = Y.JY[p];
      const double g = Y.YG[p], b = Y.YB[p];
      ir[i] += g * e[j] - b * f[j];
      ii[i] += g * f[j] + b * e[j];
      if (i != j) {
        ir[j] += g * e[i] - b * f[i];
        ii[j] += g * f[i] + b * e[i];
      }
    }
  }
  const bool want_q = k == 2 || k == 3;
  const bool want_p = !(k == 2);
  for (int32_t i = 1; i <= n; ++i) {
    if (want_p) pc[i] = ii[i] * f[i] + ir[i] * e[i];
    if (want_q) qc[i] = ir[i] * f[i] - ii[i] * e[i];
  }
}

void addspace(const BusName& in, BusName& out) {
  const std::string t = in.trimmed();
  out = std::string(BusName::size() - t.size(), ' ') + t;
}

double load_p(int32_t row, double v) {
  const int32_t t = L6.mode_ctrl[row];
  const double v0 = L6.V[row];
  return L6.P[row] * ((ABCLC.ap[t] * v / v0) * v / v0 + ABCLC.bp[t] * v / v0 + ABCLC.cp[t]);
}

double load_q(int32_t row, double v) {
  const int32_t t = L6.mode_ctrl[row];
  const double v0 = L6.V[row];
  return L6.Q[row] * ((ABCLC.aq[t] * v / v0) * v / v0 + ABCLC.bq[t] * v / v0 + ABCLC.cq[t]);
}

namespace {

// How many rows ahead the mismatches ask for the bus arrays of a row: the
// rows come by case bus, their internal buses in the order of the ordering,
// so on a large grid each row reaches far apart in the bus arrays.
constexpr int32_t kRowsAhead = 40;

}  // namespace

void mismatch_p(int32_t n, const Arr<double>& pc, Arr<double>& dp) {
  const bool models = NU.nud != 0 || UPCLF != 0;
  for (int32_t i = 1; i <= n; ++i) {
    dp[i] = VPQ.PDC[i] - pc[i];
    if (models) dp[i] += LFUDOT.UDPINJ[i];
  }
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    if (g + kRowsAhead <= LFINF.ngenerat)
      prefetch_at(internal_bus(L5.ibs[g + kRowsAhead]), dp, pc, VPQ.PG);
    const int32_t i = internal_bus(L5.ibs[g]);
    if (i == 0) continue;
    if (iter_type(L5.mode_ctrl[g]) == kTypeSlack) {
      const int32_t l = GLP.ILOAD[i];
      dp[i] = 0;
      VPQ.PG[i] = (l != 0 ? L6.P[l] : 0.0) + pc[i];
    } else {
      dp[i] += L5.P[g];
      VPQ.PG[i] = L5.P[g];
    }
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    if (l + kRowsAhead <= LFINF.nload)
      prefetch_at(internal_bus(L6.ibs[l + kRowsAhead]), dp, VPQ.PL, VPQ.V);
    const int32_t i = internal_bus(L6.ibs[l]);
    if (i == 0) continue;
    const int32_t t = iter_type(L6.mode_ctrl[l]);
    if (t == kTypeSlack) {
      dp[i] = 0;
      VPQ.PL[i] = GLP.IGEN[i] == 0 ? -pc[i] : L6.P[l];
    } else if (t <= kTypePQ) {
      dp[i] -= L6.P[l];
      VPQ.PL[i] = L6.P[l];
    } else {
      const double p = load_p(l, VPQ.V[i]);
      dp[i] -= p;
      VPQ.PL[i] = p;
    }
  }
}

void mismatch_q(int32_t n, const Arr<double>& qc, Arr<double>& dq, FixedV fixed) {
  const bool models = NU.nud != 0 || UPCLF != 0;
  for (int32_t i = 1; i <= n; ++i) {
    dq[i] = VPQ.QDC[i] - qc[i];
    if (models) dq[i] += LFUDOT.UDQINJ[i];
  }
  // The equation of a fixed-voltage row.  Without one, rows of types -4 and
  // -6 take the row's voltage, which a user-defined model may have moved.
  auto fixed_row = [&](int32_t i, int32_t type, double v) {
    if (fixed == FixedV::Squared) {
      dq[i] = v * v - VPQ.V[i] * VPQ.V[i];
      return;
    }
    dq[i] = 0;
    if (type == kTypeModel4 || type == kTypeModel6) VPQ.V[i] = v;
  };
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    if (g + kRowsAhead <= LFINF.ngenerat)
      prefetch_at(internal_bus(L5.ibs[g + kRowsAhead]), dq, qc, VPQ.QG, VPQ.V, GLP.ILOAD);
    const int32_t i = internal_bus(L5.ibs[g]);
    if (i == 0) continue;
    const int32_t t = iter_type(L5.mode_ctrl[g]);
    const int32_t l = GLP.ILOAD[i];
    if (t == kTypeSlack) {
      dq[i] = 0;
      VPQ.QG[i] = (l != 0 ? L6.Q[l] : 0.0) + qc[i];
    } else if (t < kTypeSlack) {
      fixed_row(i, t, L5.V[g]);
      if (l == 0 || std::fabs(L5.Q[g]) + std::fabs(L5.P[g]) >= kNoOutput)
        VPQ.QG[i] = (l != 0 ? L6.Q[l] : 0.0) + qc[i];
    } else {
      dq[i] += L5.Q[g];
      VPQ.QG[i] = L5.Q[g];
    }
  }
  for (int32_t l = 1; l <= LFINF.nload; ++l) {
    if (l + kRowsAhead <= LFINF.nload)
      prefetch_at(internal_bus(L6.ibs[l + kRowsAhead]), dq, qc, VPQ.QL, VPQ.V, GLP.IGEN);
    const int32_t i = internal_bus(L6.ibs[l]);
    if (i == 0) continue;
    const int32_t t = iter_type(L6.mode_ctrl[l]);
    const int32_t g = GLP.IGEN[i];
    if (t == kTypeSlack) {
      dq[i] = 0;
      VPQ.QL[i] = g == 0 ? -qc[i] : L6.Q[l];
    } else if (t < kTypeSlack) {
      fixed_row(i, t, L6.V[l]);
      if (g == 0 || std::fabs(L5.Q[g]) + std::fabs(L5.P[g]) <= kNoOutput) VPQ.QL[i] = -qc[i];
    } else if (t == kTypePQ) {
      dq[i] -= L6.Q[l];
      VPQ.QL[i] = L6.Q[l];
    } else {
      const double q = load_q(l, VPQ.V[i]);
      dq[i] -= q;
      VPQ.QL[i] = q;
    }
  }
}

double largest(const Arr<double>& a, const Arr<double>& b, int32_t n, int32_t& at) {
  double m = 0;
  for (int32_t i = 1; i <= n; ++i) {
    const double x = std::max(std::fabs(a[i]), std::fabs(b[i]));
    if (x > m) {
      m = x;
      at = i;
    }
  }
  return m;
}

BusName reduced_label(int32_t s) {
  BusName out;
  const int32_t c = s >= 1 && static_cast<std::size_t>(s) <= NNTOON.map.size() ? NNTOON[s] : 0;
  if (c >= 1 && static_cast<std::size_t>(c) <= L1.busname.size()) addspace(L1.busname[c], out);
  return out;
}

BusName bus_label(int32_t bus, int32_t last) {
  if (bus != 0)
    for (int32_t s = 1; s <= last; ++s)
      if (internal_bus(s) == bus) return reduced_label(s);
  return BusName();
}

std::string table_count(int32_t t) {
  return "    " + fmt_i(t, 3);
}

std::string table_cell(const BusName& name, double value) {
  return " " + name.str() + " " + fmt_f(value, 12, 6);
}

}  // namespace lf

#include "methods/pqdecp.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "control/dcline.hpp"
#include "io/channels.hpp"
#include "methods/finite.hpp"
#include "methods/iteration.hpp"
#include "methods/limit.hpp"
#include "sparse/symfactor.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf {

namespace {

// Largest bound on the maximum mismatch; the best of a pass starts here.
constexpr double kNoBest = 100000000;
// The opened tolerance of the second pass is the best maximum of the first
// plus this share of it (single-precision 0.1).
constexpr double kOpening = 0.10000000149011612;

// Room of a matrix on Y's structure.  Rows of B1 take one slot per series
// branch when parallel branches are not adjacent, so keep a tail for that.
std::size_t matrix_room() {
  return static_cast<std::size_t>(NO.NYENT) + static_cast<std::size_t>(NO.nbranch) + 1;
}

// Cuts the row and column of bus i to the identity: a bus whose equation is
// not solved.
void cut(Arr<double>& b, int32_t i) {
  const int32_t d = Y.IY[i];
  b[d] = 1;
  for (int32_t p = d + 1; p < Y.IY[i + 1]; ++p) b[p] = 0;
  for (int32_t p = Y.LKNEXT[d]; p != 0 && p != d; p = Y.LKNEXT[p]) b[p] = 0;
}

// The factors of B1 and B2 share one pattern, so one set of positions.
struct Factors {
  SymFactors pattern;
  Arr<double> lv1, lv2;  // the values of the factors of B1 and B2
};

// Factorises b, on Y's structure, into the pattern and lv; five times NYENT
// is the first room of the factors.
void factorise(const Arr<double>& b, Factors& f, Arr<double>& lv) {
  symtri71({NO.nnode, Y.IY.data(), Y.JY.data(), b.data()}, 5 * NO.NYENT, f.pattern, lv);
}

void heading() {
  wstring("  P Q Decoupled Iterative Process");
  wstring("  " + std::string(31, '-'));
  wstring("      T         BUS.           MAX(DP)         BUS.           MAX(DQ)");
  const std::string rule = " " + std::string(20, '-') + " " + std::string(12, '-');
  wstring("    ---" + rule + rule);
}

void set_ef(int32_t n) {
  for (int32_t i = 1; i <= n; ++i) {
    VPQ.E[i] = VPQ.V[i] * std::cos(VPQ.TH[i]);
    VPQ.F[i] = VPQ.V[i] * std::sin(VPQ.TH[i]);
  }
}

// Solves b x = d / V on the given factors; x overwrites d.
void correction(int32_t n, Factors& f, Arr<double>& lv, Arr<double>& d, Arr<double>& x) {
  for (int32_t i = 1; i <= n; ++i) d[i] /= VPQ.V[i];
  solvxs(f.pattern, lv, d, x);
}

}  // namespace

void formb1(Arr<double>& b) {
  const int32_t n = NO.nnode;
  const std::size_t room = matrix_room();
  b.grow(room);
  b.clear(room);
  std::vector<int32_t> slot(n + 1);
  Arr<int32_t> col(room);
  for (int32_t i = 1; i <= n; ++i) slot[i] = Y.IY[i] + 1;
  for (int32_t p = 1; p <= NO.NYENT; ++p) col[p] = Y.JY[p];
  const int32_t nseries = LFINF.nacline + LFINF.ntrans;
  for (int32_t k = 1; k <= nseries; ++k) {
    const int32_t ni = internal_bus(IJB.I[k]), nj = internal_bus(IJB.J[k]);
    if (ni == nj || ni == 0 || nj == 0) continue;
    const int32_t lo = std::min(ni, nj), hi = std::max(ni, nj);
    const double r = RXB.R[k], x = RXB.X[k];
    const double s = x / (r * r + x * x);
    b[slot[lo]] += s;
    b[Y.IY[ni]] -= s;
    b[Y.IY[nj]] -= s;
    col[slot[lo]] = hi;
    // Parallel branches in adjacent rows share the slot.
    if (k != NO.nbranch) {
      const bool same = (IJB.I[k + 1] == IJB.I[k] && IJB.J[k + 1] == IJB.J[k]) ||
                        (IJB.I[k + 1] == IJB.J[k] && IJB.J[k + 1] == IJB.I[k]);
      if (!same) ++slot[lo];
    }
  }
  // Branches came in IJB order; put each row's slots in ascending column.
  for (int32_t i = 1; i <= n; ++i) {
    if (IOU[i] <= 1) continue;
    const int32_t first = Y.IY[i] + 1, last = Y.IY[i + 1] - 1;
    for (int32_t p = first; p < last; ++p) {
      for (int32_t q = p + 1; q <= last; ++q) {
        if (col[q] < col[p]) {
          std::swap(col[p], col[q]);
          std::swap(b[p], b[q]);
        }
      }
    }
  }
  // Slack rows and columns are cut once the slots stand where Y's column
  // chains expect them, so that the whole column of a slack bus is found.
  for (int32_t i = 1; i <= n; ++i)
    if (slack_bus(i)) cut(b, i);
}

void formb2(Arr<double>& b) {
  const int32_t n = NO.nnode;
  b.grow(matrix_room());
  for (int32_t p = 1; p <= NO.NYENT; ++p) b[p] = Y.YB[p];
  for (int32_t i = 1; i <= n; ++i) {
    const int32_t g = GLP.IGEN[i], l = GLP.ILOAD[i];
    bool fixed = g != 0 && iter_type(L5.mode_ctrl[g]) < kTypePQ;
    if (!fixed && l != 0) {
      const int32_t t = iter_type(L6.mode_ctrl[l]);
      if (t < kTypePQ) {
        fixed = true;
      } else if (t != kTypePQ) {
        // A voltage-dependent load: its reactive slope at the rated voltage.
        const double v0 = L6.V[l];
        b[Y.IY[i]] += (2 * ABCLC.aq[t] + ABCLC.bq[t]) * L6.Q[l] / v0 / v0;
      }
    }
    if (fixed) cut(b, i);
  }
}

void pqdecp(int32_t& status, bool& finite) {
  const int32_t n = NO.nnode;
  finite = true;
  int32_t convergent = 1;
  glpos();
  Arr<double> b1, b2;
  Factors f;
  formb1(b1);
  factorise(b1, f, f.lv1);
  formb2(b2);
  factorise(b2, f, f.lv2);
  double peps = LFINF.tolerance;

  Arr<double> dp(n), dq(n), x(n), pc(n), qc(n), ir(n), ii(n);
  int32_t ip = 0, iq = 0;
  // A value that is not finite ends the run: the buses go back to the state
  // before the last correction, and the powers are that state's.
  BusState before;
  const auto diverge = [&](std::string_view what, int32_t at) {
    say_nonfinite(what, at);
    before.restore(n);
    allbpq(3, n, VPQ.E, VPQ.F, ir, ii, pc, qc);
    mismatch_p(n, pc, dp);
    mismatch_q(n, qc, dq, FixedV::Cut);
    finite = false;
    status = 0;
  };
  for (;;) {
    // A pass from the flat start.
    double pbest = kNoBest;
    heading();
    int32_t t = 0;
    inivpq();
    start_models();
    before.save(n);
    for (;;) {
      if (run_models(t)) {  // a model changed a branch: both matrices anew
        formb1(b1);
        factorise(b1, f, f.lv1);
        formb2(b2);
        factorise(b2, f, f.lv2);
      }
      if (LFINF.ndcline != 0) dctran();

      allbpq(1, n, VPQ.E, VPQ.F, ir, ii, pc, qc);
      mismatch_p(n, pc, dp);
      if (const int32_t at = nonfinite_at(n, dp)) return diverge("mismatch", at);
      const double maxdp = largest(dp, dp, n, ip);
      if (maxdp >= peps) {
        correction(n, f, f.lv1, dp, x);
        if (const int32_t at = nonfinite_at(n, x)) return diverge("correction", at);
        before.save(n);
        for (int32_t i = 1; i <= n; ++i) VPQ.TH[i] -= x[i];
        set_ef(n);
      }

      allbpq(2, n, VPQ.E, VPQ.F, ir, ii, pc, qc);
      mismatch_q(n, qc, dq, FixedV::Cut);
      if (const int32_t at = nonfinite_at(n, dq)) return diverge("mismatch", at);
      double maxdq = largest(dq, dq, n, iq);
      if (maxdq >= peps) {
        correction(n, f, f.lv2, dq, x);
        if (const int32_t at = nonfinite_at(n, x)) return diverge("correction", at);
        before.save(n);
        for (int32_t i = 1; i <= n; ++i) VPQ.V[i] -= x[i];
        set_ef(n);
      }

      wstring(table_count(t) + table_cell(bus_label(ip, n), maxdp) +
              table_cell(bus_label(iq, n), maxdq));

      if (maxdp < peps && maxdq < peps) {
        int32_t changed = 0;
        limit(qc, changed);
        if (changed == 0) {
          status = convergent;
          return;
        }
        // Slack rows never change, so B1 stays.
        formb2(b2);
        factorise(b2, f, f.lv2);
        continue;
      }

      ++t;
      maxdq = std::max(maxdp, maxdq);
      pbest = std::min(pbest, maxdq);
      UDWORK = maxdq;
      if (t > LFINF.iteration) break;
    }
    if (convergent == 0) {
      status = 0;
      return;
    }
    // One more pass from the flat start, with the tolerance opened to just
    // above the best the first pass reached.
    peps = pbest + pbest * kOpening;
    convergent = 0;
  }
}

}  // namespace lf

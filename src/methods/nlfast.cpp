// The nonlinear method: the Jacobian J of the mismatches is formed and
// factorised once, at the start voltages, and kept to the end.  The power
// equations are quadratic in E and F, so the power at E0 - X1, F0 - X2 is
// exactly P(E0, F0) + J X + P(X1, X2); each iteration solves
// J X = S - P(E0, F0) - P(X1, X2) with the second-order term of the last
// accumulated correction X.  Its table goes to the standard output of the run.
#include <cmath>
#include <cstdio>

#include "control/dcline.hpp"
#include "methods/newton.hpp"
#include "methods/newton_frame.hpp"
#include "support/fmt.hpp"

namespace lf {

namespace {

// Widening of the tolerance for the second pass (single-precision 1e-5).
constexpr double kWidenBy = 9.999999747378752e-06;

void put_line(const std::string& line) {
  std::printf("%s\n", line.c_str());
}

}  // namespace

void nlfast(int32_t& status) {
  glpos();
  status = 1;
  double peps = LFINF.tolerance;
  // The best mismatch is not tracked by this method, so a second pass takes
  // its first solution.
  const double pbest = 100000000;
  NewtonWork& w = newton_work();
  const AnglesOnReturn settle{w};
  const int32_t n = w.n;
  Arr<double> e0(n), f0(n), p0(n), q0(n), xn1(n), xn2(n);
  Arr<double>& c1 = w.C1;
  Arr<double>& c2 = w.C2;
  BusState before;  // the buses before the last correction
  int32_t ip = 0;
  for (int32_t pass = 1; pass <= 2; ++pass) {
    put_line("  NOLINEAR METHOD ITERATIVE PROCESS");
    put_line("  ---------------------------------");
    put_line("       T            BUS.       MAX(DVR,DVI)");
    put_line("      ---       ----------     ------------");
    int32_t t = 0;
    inivpq();
    w.angles_due = false;
    save_buses(w, before);
    for (int32_t i = 1; i <= n; ++i) {
      e0[i] = VPQ.E[i];
      f0[i] = VPQ.F[i];
      w.X1[i] = w.X2[i] = c1[i] = c2[i] = 0;
    }
    allbpq(3, n, e0, f0, w.IR, w.II, p0, q0);
    formj(w.nent, w.IR, w.II, w.IA, w.JA, jacobian_sink(w, true));
    factorise_whole(w);
    for (;;) {
      if (LFINF.ndcline != 0) dctran();
      // The voltage equation of a row with V given is quadratic as well: V²
      // at E0 - X1, F0 - X2 is V0² - 2 (E0 X1 + F0 X2) + X1² + X2², whose
      // linear part the Jacobian holds; the rows take the rest through V.
      for (int32_t i = 1; i <= n; ++i) {
        w.PC[i] = p0[i] + c1[i];
        w.QC[i] = q0[i] + c2[i];
        if (!pq_row(i))
          VPQ.V[i] =
              std::sqrt(e0[i] * e0[i] + f0[i] * f0[i] + w.X1[i] * w.X1[i] + w.X2[i] * w.X2[i]);
      }
      power_mismatch(w);
      if (const int32_t at = nonfinite_at(n, w.D1, w.D2))
        return diverge(w, before, "mismatch", at, status);
      solve(w, w.D1, w.D2, xn1, xn2);
      if (const int32_t at = nonfinite_at(n, xn1, xn2))
        return diverge(w, before, "correction", at, status);
      // The change of the accumulated correction decides convergence.
      for (int32_t i = 1; i <= n; ++i) {
        w.D1[i] = xn1[i] - w.X1[i];
        w.D2[i] = xn2[i] - w.X2[i];
      }
      const double dmax = largest(w.D1, w.D2, n, ip);
      put_line("      " + fmt_i(t, 3) + "       " + fmt_i(ip, 10) + "     " + fmt_f(dmax, 12, 6));
      if (dmax < peps) {
        for (int32_t i = 1; i <= n; ++i) VPQ.V[i] = std::hypot(VPQ.E[i], VPQ.F[i]);
        allbpq(3, n, VPQ.E, VPQ.F, w.IR, w.II, w.PC, w.QC);
        power_mismatch(w);
        return;
      }
      save_buses(w, before);
      for (int32_t i = 1; i <= n; ++i) {
        VPQ.E[i] = e0[i];
        VPQ.F[i] = f0[i];
        w.X1[i] = xn1[i];
        w.X2[i] = xn2[i];
      }
      correct(w, 1);
      allbpq(3, n, w.X1, w.X2, w.IR, w.II, c1, c2);
      ++t;
      if (t > LFINF.iteration) break;
    }
    peps = pbest + kWidenBy;
    status = 0;
  }
}

}  // namespace lf

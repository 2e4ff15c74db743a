// The Newton methods that test the size of the correction: the plain method,
// the one that scales its correction by the optimum factor, and the one on
// current equations.  All three start flat, factorise the Jacobian anew in
// each iteration on the pattern found at the start of the pass, and stop when
// the largest correction of a voltage component is at most the tolerance; the
// correction of that last solution is not applied.
#include "methods/newton.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "control/dcline.hpp"
#include "methods/newton_frame.hpp"
#include "store/lfudot.hpp"

namespace lf {

namespace {

enum class Form { Power, Optimum, Current };

// Single-precision 0.1, 1e-4: the widening of the tolerance for the second
// pass and the step size at which the factor's iteration stops.
constexpr double kWiden = 0.10000000149011612;
constexpr double kFactorStep = 9.999999747378752e-05;

// The factor mu that minimises the sum of squared mismatches along the
// correction.  The power equations are quadratic in E and F, so the mismatch
// after a step -mu X is D - mu J X + mu^2 C with C the power of X alone; the
// sum of its squares has a cubic derivative, whose root near 1 is found by
// Newton steps.  Without convergence in 30 steps the factor is 1.
double optimum_factor(NewtonWork& w) {
  const Arr<double>& c1 = w.C1;
  const Arr<double>& c2 = w.C2;
  allbpq(3, w.n, w.X1, w.X2, w.IR, w.II, w.C1, w.C2);
  double g0 = 0, g1 = 0, g2 = 0, g3 = 0;
  for (int32_t i = 1; i <= w.n; ++i) {
    const double d1 = w.D1[i], d2 = w.D2[i];
    g0 -= d1 * d1 + d2 * d2;
    g1 += d1 * d1 + d2 * d2 - 2 * d1 * c1[i] - 2 * d2 * c2[i];
    g2 += 3 * d1 * c1[i] + 3 * d2 * c2[i];
    g3 += 2 * c1[i] * c1[i] + 2 * c2[i] * c2[i];
  }
  double mu = 1;
  for (int step = 0; step < 30; ++step) {
    const double s =
        (g3 * mu * mu * mu + g2 * mu * mu + g1 * mu + g0) / (3 * g3 * mu * mu + 2 * g2 * mu + g1);
    mu -= s;
    if (std::fabs(s) < kFactorStep) return mu;
  }
  return 1;
}

void heading(Form form) {
  constexpr std::string_view columns = "      T         BUS.         MAX(DVR,DVI)";
  switch (form) {
    case Form::Power:
      print_heading("Newton Method (Power Equation) Iterative Process", 48, columns, false);
      break;
    case Form::Optimum:
      print_heading("Optimum Factor Iterative Process", 32, columns, true);
      break;
    case Form::Current:
      print_heading("Newton Method (Current Equation) Iterated Process", 50, columns, false);
      break;
  }
}

// The equations and the Jacobian at the present voltages, the Jacobian for
// factorise_solve with the same `first`.
void form_system(Form form, NewtonWork& w, bool first) {
  allbpq(3, w.n, VPQ.E, VPQ.F, w.IR, w.II, w.PC, w.QC);
  if (form != Form::Current) {
    power_mismatch(w);
    formj(w.nent, w.IR, w.II, w.IA, w.JA, jacobian_sink(w, first));
    return;
  }
  // The current form keeps only PG, QG, PL, QL of the power mismatch rules;
  // its own mismatches come out of iformj.  X1, X2 are free until the solution.
  mismatch_p(w.n, w.PC, w.X1);
  mismatch_q(w.n, w.QC, w.X2, FixedV::Squared);
  for (int32_t i = 1; i <= w.n; ++i) {
    w.D1[i] = w.PC[i];
    w.D2[i] = w.QC[i];
  }
  iformj(w.nent, w.IR, w.II, w.D1, w.D2, w.IA, w.JA, jacobian_sink(w, first));
}

void correction_test(Form form, int32_t& status) {
  glpos();
  status = 1;
  double peps = LFINF.tolerance;
  double pbest = 100000000;
  NewtonWork& w = newton_work();
  const AnglesOnReturn settle{w};
  BusState before;  // the buses before the last correction
  int32_t ip = 0;
  for (;;) {  // one pass from the flat start
    heading(form);
    int32_t t = 0;
    double mu = 1;
    inivpq();
    start_models();
    w.angles_due = false;
    save_buses(w, before);
    for (;;) {
      run_models(t);
      if (LFINF.ndcline != 0) dctran();
      form_system(form, w, t == 0);
      if (const int32_t at = nonfinite_at(w.n, w.D1, w.D2))
        return diverge(w, before, "mismatch", at, status);
      factorise_solve(w, t == 0, w.D1, w.D2, w.X1, w.X2);
      if (const int32_t at = nonfinite_at(w.n, w.X1, w.X2))
        return diverge(w, before, "correction", at, status);
      const double dmax = largest(w.X1, w.X2, w.n, ip);
      print_row(w, t, ip, dmax, form == Form::Optimum ? std::optional<double>(mu) : std::nullopt);
      if (dmax <= peps) {
        if (limits_hold(w)) return;
        continue;
      }
      ++t;
      UDWORK = dmax;
      pbest = std::min(pbest, dmax);
      if (t > LFINF.iteration) break;
      if (form == Form::Optimum) mu = optimum_factor(w);
      save_buses(w, before);
      correct(w, mu);
      if (interrupted()) {
        status = 0;
        return;
      }
    }
    // Iterations used up: one more pass from the flat start, with the
    // tolerance opened to 1.1 times the best that the first pass reached.
    if (status == 0) return;
    peps = pbest + pbest * kWiden;
    status = 0;
  }
}

}  // namespace

void newton(int32_t& status) {
  correction_test(Form::Power, status);
}
void optimu(int32_t& status) {
  correction_test(Form::Optimum, status);
}
void inewton(int32_t& status) {
  correction_test(Form::Current, status);
}

}  // namespace lf

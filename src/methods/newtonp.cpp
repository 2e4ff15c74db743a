// The Newton method that starts from a rough decoupled solution and tests the
// power mismatches themselves.  Its status is the decoupled start's: only an
// interruption changes it, so a run to the limit of iterations after a start
// that reached 0.5 still counts as converged.
#include "control/dcline.hpp"
#include "io/channels.hpp"
#include "methods/newton.hpp"
#include "methods/newton_frame.hpp"
#include "methods/pqdecp.hpp"
#include "store/lfudot.hpp"

namespace lf {

namespace {
constexpr double kRoughTolerance = 0.5;  // tolerance of the decoupled start
}  // namespace

void newtonp(int32_t& status) {
  const double peps = LFINF.tolerance;
  bool firstdone = false;  // the pattern is found once per call, across both passes
  NewtonWork& w = newton_work();
  const AnglesOnReturn settle{w};
  BusState before;  // the buses before the last correction
  int32_t ip = 0;
  for (int32_t pass = 1; pass <= 2; ++pass) {
    LFINF.tolerance = kRoughTolerance;
    bool finite = true;
    pqdecp(status, finite);
    w.angles_due = false;
    LFINF.tolerance = peps;
    if (!finite) return;  // the decoupled start has said so
    save_buses(w, before);
    wstring(" ");
    print_heading("Newton Method Iterative Process", 31, "      T         BUS.          MAX(DP,DQ)",
                  false);
    int32_t t = 0;
    start_models();
    for (;;) {
      run_models(t);
      if (LFINF.ndcline != 0) dctran();
      allbpq(3, w.n, VPQ.E, VPQ.F, w.IR, w.II, w.PC, w.QC);
      power_mismatch(w);
      if (const int32_t at = nonfinite_at(w.n, w.D1, w.D2))
        return diverge(w, before, "mismatch", at, status);
      const double dmax = largest(w.D1, w.D2, w.n, ip);
      print_row(w, t, ip, dmax);
      if (dmax <= peps) {
        if (limits_hold(w)) return;
        continue;
      }
      ++t;
      UDWORK = dmax;
      if (t > LFINF.iteration) break;
      formj(w.nent, w.IR, w.II, w.IA, w.JA, jacobian_sink(w, !firstdone));
      factorise_solve(w, !firstdone, w.D1, w.D2, w.X1, w.X2);
      firstdone = true;
      if (const int32_t at = nonfinite_at(w.n, w.X1, w.X2))
        return diverge(w, before, "correction", at, status);
      save_buses(w, before);
      correct(w, 1);
      if (interrupted()) {
        status = 0;
        return;
      }
    }
  }
}

}  // namespace lf

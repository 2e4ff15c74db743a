#include "methods/newton_frame.hpp"

#include <cmath>
#include <string>

#include "io/channels.hpp"
#include "methods/limit.hpp"
#include "sparse/ymatrix.hpp"
#include "support/fmt.hpp"
#include "support/tolerances.hpp"

namespace lf {

NewtonWork NWORK;

NewtonWork& newton_work() {
  NewtonWork& w = NWORK;
  const int32_t n = NO.nnode;
  w.n = n;
  w.nent = 2 * NO.NYENT;
  for (Arr<double>* a : {&w.IR, &w.II, &w.PC, &w.QC, &w.D1, &w.D2, &w.X1, &w.X2, &w.C1, &w.C2})
    a->grow(n);
  w.IA.grow(n + 1);
  w.JA.grow(w.nent);
  // The table names a bus by the first case bus whose reduced number has its
  // internal number; one that has none is shown by the bus after the last.
  const int32_t nbus = LFINF.nbus;
  w.FIRST.grow(n);
  w.FIRST[0] = nbus + 1;
  w.FIRST.fill(nbus + 1);
  for (int32_t s = nbus; s >= 1; --s) {
    const int32_t i = NEW[s];
    if (i >= 0 && i <= n) w.FIRST[i] = s;
  }
  return w;
}

void release_factors() {
  NWORK.factors = BlockStore{};
}

namespace {

// The Jacobian's blocks by position, as jacobian_sink with `first` wrote them.
BlockValues values_of(const NewtonWork& w) {
  return {w.factors.low.data()};
}

}  // namespace

BlockSink jacobian_sink(NewtonWork& w, bool first) {
  return first ? position_sink(w.factors, w.nent) : load_sink(w.factors);
}

void factorise_solve(NewtonWork& w, bool first, const Arr<double>& r1, const Arr<double>& r2,
                     Arr<double>& x1, Arr<double>& x2) {
  const BlockPattern a{w.n, w.IA.data(), w.JA.data(), &w.chains};
  const BlockRhs rhs{r1.data(), r2.data()};
  if (first) {
    adlink7l(w.IA, w.JA, w.n, w.chains);
    nonsym74(a, values_of(w), w.factors, &rhs);
  } else {
    nonsym74o(a, w.factors, &rhs);
  }
  solvxn_back(w.factors, x1, x2);
  if (w.factors.overflow_at != 0) x1[w.factors.overflow_at] = std::nan("");
}

void factorise_whole(NewtonWork& w) {
  nonsym(w.IA, w.JA, w.n, values_of(w), w.factors);
}

void solve(NewtonWork& w, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
           Arr<double>& x2) {
  solvxn(w.factors, r1, r2, x1, x2);
  if (w.factors.overflow_at != 0) x1[w.factors.overflow_at] = std::nan("");
}

void power_mismatch(NewtonWork& w) {
  mismatch_p(w.n, w.PC, w.D1);
  mismatch_q(w.n, w.QC, w.D2, FixedV::Squared);
}

void correct(NewtonWork& w, double mu) {
  Arr<double>& E = VPQ.E;
  Arr<double>& F = VPQ.F;
  for (int32_t i = 1; i <= w.n; ++i) {
    E[i] -= mu * w.X1[i];
    F[i] -= mu * w.X2[i];
    VPQ.V[i] = std::sqrt(E[i] * E[i] + F[i] * F[i]);
  }
  w.angles_due = true;
  // The models may read the angles in the next iteration.
  if (NU.nud != 0) settle_angles(w);
}

void settle_angles(NewtonWork& w) {
  if (!w.angles_due) return;
  w.angles_due = false;
  const Arr<double>& E = VPQ.E;
  const Arr<double>& F = VPQ.F;
  for (int32_t i = 1; i <= w.n; ++i)
    VPQ.TH[i] = (std::fabs(E[i]) > kTinyDivisor || std::fabs(F[i]) > kTinyDivisor)
                    ? std::atan2(F[i], E[i])
                    : 0;
}

void save_buses(NewtonWork& w, BusState& before) {
  before.save(w.n);
  w.saved_angles_due = w.angles_due;
}

void diverge(NewtonWork& w, const BusState& before, std::string_view what, int32_t at,
             int32_t& status) {
  status = 0;
  say_nonfinite(what, at);
  before.restore(w.n);
  w.angles_due = w.saved_angles_due;
  allbpq(3, w.n, VPQ.E, VPQ.F, w.IR, w.II, w.PC, w.QC);
  power_mismatch(w);
}

bool limits_hold(NewtonWork& w) {
  int32_t changed = 0;
  limit(w.QC, changed);
  return changed == 0;
}

bool interrupted() {
  int32_t stop = 0;
  itrupt(stop);
  return stop != 0;
}

void print_heading(std::string_view title, int32_t rule, std::string_view columns, bool factor) {
  std::string line = "  ";
  line += title;
  wstring(line);
  line.assign(2, ' ').append(static_cast<std::size_t>(rule), '-');
  wstring(line);
  line = columns;
  if (factor) line += " FACTOR";
  wstring(line);
  line = "    --- -------------------- ------------";
  if (factor) line += " ------";
  wstring(line);
}

void print_row(const NewtonWork& w, int32_t t, int32_t ip, double value,
               std::optional<double> factor) {
  const BusName name = reduced_label(w.FIRST[ip]);
  std::string line(4, ' ');
  line.append(fmt_i(t, 3)).append(1, ' ').append(name.view()).append(1, ' ');
  line.append(fmt_f(value, 12, 6));
  if (factor) line.append(1, ' ').append(fmt_f(*factor, 6, 4));
  wstring(line);
}

}  // namespace lf

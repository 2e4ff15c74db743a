// The decoupled iteration on small networks whose solution the test finds on
// its own, by a dense Newton iteration in polar form.
#include "methods/pqdecp.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <string>
#include <vector>

#include "engine/channels.hpp"
#include "methods/iteration.hpp"
#include "methods/net.hpp"
#include "methods/vpq.hpp"
#include "sparse/ordering.hpp"
#include "support/fmt.hpp"

namespace lf {
namespace {
using namespace test;
using cd = std::complex<double>;

std::vector<std::string> lines;
int keep_line(const char* line) {
  lines.emplace_back(line);
  return 0;
}

struct Branch {
  int i, j;
  double r, x, b, t;
};

// Three buses: 1 slack, 2 a generator, 3 a load; two lines with charging and
// a transformer with its ratio at bus 3.
const std::vector<Branch> kBranches = {
    {1, 2, 0.02, 0.06, 0.03, 0}, {2, 3, 0.01, 0.08, 0.02, 0}, {1, 3, 0.0, 0.1, 0.0, 1.05}};

void three_bus(int gen2_type) {
  LFINF = LFINFRec{};
  LFINF.nbus = 3;
  LFINF.nacline = 2;
  LFINF.ntrans = 1;
  LFINF.tolerance = 1e-10;
  LFINF.iteration = 30;
  NO.nbranch = 3;
  for (int k = 1; k <= 3; ++k) {
    const Branch& br = kBranches[k - 1];
    IJB.I[k] = br.i;
    IJB.J[k] = br.j;
    RXB.R[k] = br.r;
    RXB.X[k] = br.x;
    RXB.B[k] = br.b;
    RXB.T[k] = br.t;
  }
  const char* names[] = {"", "SLACK", "GEN2", "LOAD3"};
  for (int s = 1; s <= 3; ++s) {
    L1.busname[s] = names[s];
    NNTOON[s] = s;
    LL1.busvmin[s] = 0.9;
    LL1.busvmax[s] = 1.1;
  }
  LFINF.ngenerat = 2;
  LFINF.nload = 2;
  gen(1, 1, 0, 0, 0, 1.03, 0);
  gen(2, 2, gen2_type, 0.6, 0, 1.02);
  L5P.Qmin[2] = -1;
  L5P.Qmax[2] = 1;
  load(1, 2, 1, 0.2, 0.1);
  load(2, 3, 1, 0.9, 0.4);
  fomy11();
  fomy12();
  lines.clear();
  prnon = 1;
  prnfunc = reinterpret_cast<intptr_t>(&keep_line);
}

// The expected solution: bus types by case bus (0 slack, -1 voltage given,
// 1 P and Q given), net injections p, q and the voltage of fixed buses.
struct Expect {
  std::vector<int> type;
  std::vector<double> p, q, v, th;
};

// The full admittance matrix by case bus; the ratio stands at the J end.
std::vector<std::vector<cd>> dense_y() {
  std::vector<std::vector<cd>> y(4, std::vector<cd>(4));
  for (const Branch& br : kBranches) {
    const cd ys = 1.0 / cd(br.r, br.x);
    const double t = br.t > 0 ? br.t : 1;
    y[br.i][br.i] += ys + cd(0, br.b);
    y[br.j][br.j] += ys / (t * t) + cd(0, br.b);
    y[br.i][br.j] -= ys / t;
    y[br.j][br.i] -= ys / t;
  }
  return y;
}

// Dense Newton on the power equations with a difference Jacobian.
void solve_dense(Expect& x) {
  const int n = 3;
  const std::vector<std::vector<cd>> y = dense_y();
  auto residual = [&](const std::vector<double>& v, const std::vector<double>& th) {
    std::vector<double> r;
    for (int i = 1; i <= n; ++i) {
      cd s = 0;
      for (int j = 1; j <= n; ++j)
        s += std::polar(v[i], th[i]) * std::conj(y[i][j] * std::polar(v[j], th[j]));
      if (x.type[i] != 0) r.push_back(s.real() - x.p[i]);
      if (x.type[i] == 1) r.push_back(s.imag() - x.q[i]);
    }
    return r;
  };
  // Unknowns: the angle of each non-slack bus, the magnitude of each P-Q bus.
  auto apply = [&](std::vector<double>& v, std::vector<double>& th, const std::vector<double>& d) {
    std::size_t k = 0;
    for (int i = 1; i <= n; ++i)
      if (x.type[i] != 0) th[i] += d[k++];
    for (int i = 1; i <= n; ++i)
      if (x.type[i] == 1) v[i] += d[k++];
  };
  for (int it = 0; it < 30; ++it) {
    std::vector<double> r = residual(x.v, x.th);
    const std::size_t m = r.size();
    std::vector<std::vector<double>> a(m, std::vector<double>(m + 1));
    for (std::size_t c = 0; c < m; ++c) {
      std::vector<double> d(m), v = x.v, th = x.th;
      d[c] = 1e-7;
      apply(v, th, d);
      std::vector<double> r2 = residual(v, th);
      for (std::size_t k = 0; k < m; ++k) a[k][c] = (r2[k] - r[k]) / 1e-7;
    }
    for (std::size_t k = 0; k < m; ++k) a[k][m] = -r[k];
    for (std::size_t c = 0; c < m; ++c)
      for (std::size_t k = c + 1; k < m; ++k) {
        const double f = a[k][c] / a[c][c];
        for (std::size_t l = c; l <= m; ++l) a[k][l] -= f * a[c][l];
      }
    std::vector<double> d(m);
    for (std::size_t c = m; c-- > 0;) {
      double s = a[c][m];
      for (std::size_t l = c + 1; l < m; ++l) s -= a[c][l] * d[l];
      d[c] = s / a[c][c];
    }
    apply(x.v, x.th, d);
  }
}

Expect three_bus_expected() {
  Expect x;
  x.type = {0, 0, -1, 1};
  x.p = {0, 0, 0.6 - 0.2, -0.9};
  x.q = {0, 0, 0, -0.4};
  x.v = {0, 1.03, 1.02, 1};
  x.th = {0, 0, 0, 0};
  return x;
}

void expect_solution(const Expect& x) {
  for (int s = 1; s <= 3; ++s) {
    const int i = NEW[s];
    EXPECT_NEAR(VPQ.V[i], x.v[s], 1e-9) << "bus " << s;
    EXPECT_NEAR(VPQ.TH[i], x.th[s], 1e-9) << "bus " << s;
  }
}

int count(const std::string& text) {
  int c = 0;
  for (const std::string& l : lines) c += l == text;
  return c;
}

const char* const kTitle = "  P Q Decoupled Iterative Process";

TEST(Pqdecp, ThreeBusMatchesTheDenseSolutionAndKeepsThePowers) {
  three_bus(-1);
  int32_t status = 9;
  pqdecp(status);
  EXPECT_EQ(status, 1);
  Expect x = three_bus_expected();
  solve_dense(x);
  expect_solution(x);
  // Computed powers of the fixed-voltage buses go to their generator rows.
  const int g = NEW[2];
  Arr<double> ir(3), ii(3), pc(3), qc(3);
  allbpq(3, 3, VPQ.E, VPQ.F, ir, ii, pc, qc);
  EXPECT_NEAR(VPQ.QG[g], 0.1 + qc[g], 1e-12);
  EXPECT_NEAR(VPQ.PG[NEW[1]], pc[NEW[1]], 1e-12);
  EXPECT_EQ(VPQ.PL[NEW[3]], 0.9);

  ASSERT_GE(lines.size(), 5u);
  EXPECT_EQ(lines[0], kTitle);
  EXPECT_EQ(lines[1], "  -------------------------------");
  EXPECT_EQ(lines[2], "      T         BUS.           MAX(DP)         BUS.           MAX(DQ)");
  EXPECT_EQ(lines[3],
            "    --- -------------------- ------------ -------------------- ------------");
  // At the flat start the largest active mismatch is the load bus's.
  const std::vector<std::vector<cd>> y = dense_y();
  const cd i3 = y[3][1] * 1.03 + y[3][2] * 1.02 + y[3][3];
  EXPECT_EQ(lines[4].substr(0, 41), "      0                LOAD3 " +
                                        fmt_f(std::fabs(-0.9 - std::real(std::conj(i3))), 12, 6));
  EXPECT_EQ(lines[4].size(), 75u);
  EXPECT_EQ(count(kTitle), 1);
}

TEST(Pqdecp, ZeroMismatchShowsNoBus) {
  // All buses at 1 per unit, nothing given and lossless branches of exact
  // admittances: all mismatches are exactly 0 from the start.
  three_bus(-1);
  L5.V[1] = 1;
  L5.V[2] = 1;
  L5.P[2] = 0;
  L6.P[1] = L6.Q[1] = 0;
  L6.mode_ctrl[2] = -1;
  L6.V[2] = 1;
  L6.P[2] = L6.Q[2] = 0;
  for (int k = 1; k <= 3; ++k) {
    RXB.R[k] = RXB.B[k] = RXB.T[k] = 0;
    RXB.X[k] = 1.0 / (1 << k);
  }
  fomy12();
  int32_t status = 0;
  pqdecp(status);
  EXPECT_EQ(status, 1);
  ASSERT_EQ(lines.size(), 5u);
  const std::string blank(20, ' ');
  EXPECT_EQ(lines[4], "      0 " + blank + "     0.000000 " + blank + "     0.000000");
}

TEST(Pqdecp, GeneratorAtItsReactiveLimitBecomesPQWithItsLoadRow) {
  three_bus(-2);
  L5P.Qmin[2] = -0.1;  // it would absorb about 0.21
  int32_t status = 0;
  pqdecp(status);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(L5.mode_ctrl[2], 1);
  EXPECT_EQ(L5.Q[2], -0.1);
  EXPECT_EQ(L6.mode_ctrl[1], 1);
  Expect x = three_bus_expected();
  x.type[2] = 1;
  x.q[2] = -0.1 - 0.1;
  solve_dense(x);
  expect_solution(x);
  EXPECT_GT(x.v[2], 1.02);
  // The switch repeats the iteration count in the table.
  ASSERT_GE(lines.size(), 6u);
  bool repeated = false;
  for (std::size_t k = 5; k < lines.size(); ++k)
    repeated |= lines[k].substr(0, 7) == lines[k - 1].substr(0, 7);
  EXPECT_TRUE(repeated);
  EXPECT_EQ(count(kTitle), 1);
}

TEST(Pqdecp, VoltageLimitedLoadHoldsItsBound) {
  three_bus(-1);
  L6.mode_ctrl[2] = -3;
  LL1.busvmax[3] = 1.01;  // it would reach about 1.025
  int32_t status = 0;
  pqdecp(status);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(L6.mode_ctrl[2], -1);
  EXPECT_EQ(L6.V[2], 1.01);
  Expect x = three_bus_expected();
  x.type[3] = -1;
  x.v[3] = 1.01;
  solve_dense(x);
  expect_solution(x);
}

TEST(Pqdecp, SecondPassOpensTheToleranceAndReportsNoConvergence) {
  // One iteration per pass: the first pass fails, the second starts again
  // from the flat start and meets 1.1 times the first pass's best at once.
  three_bus(-1);
  LFINF.iteration = 0;
  int32_t status = 1;
  pqdecp(status);
  EXPECT_EQ(status, 0);
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(count(kTitle), 2);
  // The same active mismatch; now below the tolerance, so the angles are not
  // corrected before the reactive half, which therefore sees another value.
  EXPECT_EQ(lines[9].substr(0, 41), lines[4].substr(0, 41));
  EXPECT_NE(lines[9], lines[4]);

  // Too few iterations for either pass.
  three_bus(-1);
  LFINF.iteration = 2;
  LFINF.tolerance = 1e-14;
  pqdecp(status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(count(kTitle), 2);
  EXPECT_LE(lines.size(), 4u + 3u + 4u + 3u);
}

}  // namespace
}  // namespace lf

// The Newton-type methods on a four-bus network whose solution is known:
// slack bus, a voltage-controlled generator, a constant-power load with a
// shunt capacitor and a voltage-dependent load, five lines.
#include "methods/newton.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "common/golden.hpp"
#include "methods/net.hpp"
#include "methods/pqdecp.hpp"
#include "sparse/ordering.hpp"
#include "sparse/ymatrix.hpp"
#include "store/vpq.hpp"
#include "toolkit/headless.hpp"
#include "toolkit/toolkit.hpp"

namespace lf {
namespace {
using test::printed;

// The solution of the network (per unit, degrees, generator outputs),
// solved independently in polar coordinates to a mismatch of 1e-15: with the
// voltage-dependent load, and with that load at its nominal value.
struct Solution {
  double v[5], deg[5], slack_p, slack_q, gen_q;
};
constexpr Solution kSolved = {{0, 1.0, 1.02, 0.9823791216739178, 0.9789890821331709},
                              {0, 0.0, -0.9935214078569115, -4.722278171469363, -5.298401255578748},
                              0.7015159158088504,
                              -0.14071220668344964,
                              0.5324375736439481};
constexpr Solution kNominal = {{0, 1.0, 1.02, 0.9821202867813592, 0.9784051209091481},
                               {0, 0.0, -1.0157909336426714, -4.75516423746912, -5.362978582451982},
                               0.7091693921800724,
                               -0.1392538084612065,
                               0.5365419673251315};

// The lines of the network, by its bus numbers 1 to 4; the shunt capacitor of
// bus 3 is given as an impedance.
struct Branch {
  int i, j;
  double r, x, b;
};
constexpr Branch kLines[] = {{1, 2, 0.01, 0.1, 0.01},
                             {2, 3, 0.02, 0.2, 0},
                             {1, 3, 0.01, 0.15, 0.02},
                             {3, 4, 0.015, 0.12, 0.005},
                             {2, 4, 0.02, 0.25, 0}};
constexpr Branch kShunt = {3, 3, 0, -10, 0};

// Stores `copies` copies of the network, orders them and builds the
// admittance matrix.  Copy c has the buses 4c+1 to 4c+4.  The copies are
// joined by tie lines, bus 4 of each copy to bus 4 of the next and bus 3 to
// bus 3 of the one after, and each keeps its slack bus: every copy has the
// solution of one copy and the ties carry nothing, in every iteration.
void load_case(double tolerance, int32_t iteration, int32_t gen2_type = kTypePV, int copies = 1,
               int32_t load4_type = kTypeFirstLoadSet) {
  const int nbus = 4 * copies;
  const int nties = std::max(0, copies - 1) + std::max(0, copies - 2);
  const int nbranch = 6 * copies + nties;
  grow_buses(nbus);
  grow_branches(nbranch);
  grow_generators(2 * copies);
  grow_loads(2 * copies);
  LFINF = LFINFRec{};
  LFINF.nbus = nbus;
  LFINF.nacline = nbranch;
  LFINF.ngenerat = 2 * copies;
  LFINF.nload = 2 * copies;
  LFINF.base_mva = 100;
  LFINF.tolerance = tolerance;
  LFINF.iteration = iteration;
  NO = NORec{};
  NO.nbranch = nbranch;
  NU = NURec{};
  UPCLF = 0;
  const char* names[] = {"SLACK", "GEN2", "LOAD3", "LOAD4"};
  for (int b = 1; b <= nbus; ++b) {
    L1.busname[b] =
        copies == 1 ? std::string(names[b - 1]) : names[(b - 1) % 4] + std::to_string((b - 1) / 4);
    NNTOON[b] = b, LL1.busvmax[b] = 1.1, LL1.busvmin[b] = 0.9;
  }
  int k = 0;
  auto branch = [&k](int i, int j, double r, double x, double b) {
    ++k;
    IJB.I[k] = i, IJB.J[k] = j;
    RXB.R[k] = r, RXB.X[k] = x, RXB.B[k] = b, RXB.T[k] = 1;
  };
  for (int c = 0; c < copies; ++c) {
    for (const Branch& l : kLines) branch(4 * c + l.i, 4 * c + l.j, l.r, l.x, l.b);
    if (c + 1 < copies) branch(4 * c + 4, 4 * c + 8, 0.01, 0.1, 0);
    if (c + 2 < copies) branch(4 * c + 3, 4 * c + 11, 0.02, 0.2, 0);
  }
  for (int c = 0; c < copies; ++c) branch(4 * c + 3, 4 * c + 3, kShunt.r, kShunt.x, 0);
  for (int c = 0; c < copies; ++c) {
    test::gen(2 * c + 1, 4 * c + 1, kTypeSlack, 0, 0, 1.0);
    test::gen(2 * c + 2, 4 * c + 2, gen2_type, 0.5, 0, 1.02);
    test::load(2 * c + 1, 4 * c + 3, kTypePQ, 0.8, 0.3);
    test::load(2 * c + 2, 4 * c + 4, load4_type, 0.4, 0.15);
    for (int g = 2 * c + 1; g <= 2 * c + 2; ++g) L5P.Qmax[g] = 0.4, L5P.Qmin[g] = -0.4;
  }
  ABCLC.ap[2] = 0.3, ABCLC.bp[2] = 0.3, ABCLC.cp[2] = 0.4;
  ABCLC.aq[2] = 0.5, ABCLC.bq[2] = 0.2, ABCLC.cq[2] = 0.3;
  NEW.grow(nbus);
  NEW.clear(NEW.size());
  fomy11();
  fomy12();
}

class NewtonTest : public ::testing::Test {
 protected:
  void SetUp() override { test::capture_printed(); }
  void TearDown() override { test::stop_capture(); }

  static void expect_solution(const Solution& s, double tol) {
    for (int b = 1; b <= 4; ++b) {
      const int i = NEW[b];
      EXPECT_NEAR(VPQ.V[i], s.v[b], tol) << "bus " << b;
      EXPECT_NEAR(VPQ.TH[i] * 57.29577951308232, s.deg[b], tol * 60) << "bus " << b;
    }
    EXPECT_NEAR(VPQ.PG[NEW[1]], s.slack_p, tol);
    EXPECT_NEAR(VPQ.QG[NEW[1]], s.slack_q, tol);
    EXPECT_NEAR(VPQ.QG[NEW[2]], s.gen_q, tol);
  }
};

// Rows of the table that start with a row number, as (T, rest of the row).
std::vector<std::pair<int, std::string>> rows_of(const std::vector<std::string>& text) {
  std::vector<std::pair<int, std::string>> rows;
  for (const auto& l : text)
    if (test::table_row(l)) rows.emplace_back(std::stoi(l.substr(4, 3)), l.substr(7));
  return rows;
}

// The tables of the methods stand in methods/newton_tables.txt, each under a
// heading with the status the method ended with:
// - every method on the case: the current equations hold a voltage-dependent
//   load at its nominal value, the correction test shows last the correction
//   that is not applied, the optimum factor shows 1 on the first row and
//   near the solution;
// - the optimum factor with four times the load at bus 3: the factors stand
//   well away from 1 (0.9188, 1.1617), each the root of its cubic;
// - Newton with the decoupled start, one iteration: the decoupled start
//   reached 0.5, and that is the status; both passes run;
// - Newton with six times the load at bus 3, which has no solution: the
//   first pass wanders to its limit of twelve, best at T = 6; the second
//   repeats it from the flat start and stops at T = 4, the first correction
//   within a tenth above that best;
// - every method with generator 2 limited to 0.4 of the 0.53 it needs: at
//   convergence it turns into a P-Q row at its limit and the iteration goes
//   on with the same T.
TEST_F(NewtonTest, EachMethodSolvesTheCaseWithItsTable) {
  std::string tables;
  const auto run = [&tables](const std::string& what, void (*method)(int32_t&)) {
    printed.clear();
    int32_t status = -1;
    method(status);
    tables += "== " + what + ": status " + std::to_string(status) + "\n";
    for (const auto& l : printed) tables += l + "\n";
  };
  const std::pair<const char*, void (*)(int32_t&)> methods[] = {
      {"newton", newton}, {"optimu", optimu}, {"inewton", inewton}, {"newtonp", newtonp}};
  for (const auto& [name, method] : methods) {
    load_case(1e-9, 20);
    run(name, method);
    expect_solution(method == inewton ? kNominal : kSolved, 1e-8);
    // The load's reported power follows its voltage in every form.
    const double v = VPQ.V[NEW[4]];
    EXPECT_NEAR(VPQ.PL[NEW[4]], 0.4 * ((0.3 * v) * v + 0.3 * v + 0.4), 1e-12);
  }
  load_case(1e-9, 20);
  L6.P[1] *= 4, L6.Q[1] *= 4;
  run("optimu, four times the load at bus 3", optimu);
  load_case(1e-12, 1);
  run("newtonp, one iteration", newtonp);
  load_case(1e-9, 12);
  L6.P[1] *= 6, L6.Q[1] *= 6;
  run("newton, six times the load at bus 3", newton);
  const auto rows = rows_of(printed);
  ASSERT_EQ(rows.size(), 13u + 5u);
  for (std::size_t r = 0; r < 5; ++r) EXPECT_EQ(rows[13 + r], rows[r]);
  for (const auto& [name, method] : methods) {
    load_case(1e-9, 20, kTypePVQlim);
    run(std::string(name) + ", generator 2 reactive limit 0.4", method);
    EXPECT_EQ(L5.mode_ctrl[2], kTypePQ);
    EXPECT_DOUBLE_EQ(VPQ.QG[NEW[2]], 0.4);
  }
  test::expect_golden(tables, "methods/newton_tables.txt");
}

TEST_F(NewtonTest, EscapeStopsTheIterationWithStatusZero) {
  HeadlessScreen screen;
  set_toolkit_backend(&screen);
  // Another message in front of the Escape key is dropped by the first poll,
  // so the key counts at the end of the second iteration.
  for (bool behind : {false, true}) {
    for (void (*method)(int32_t&) : {newton, optimu, inewton, newtonp}) {
      load_case(1e-9, 20);
      printed.clear();
      screen.script.clear();
      if (behind) screen.post(kMsgKey, 0, 'a');
      screen.post(kMsgKey, 0, kEscapeKey);
      int32_t status = -1;
      method(status);
      EXPECT_EQ(status, 0);
      ASSERT_FALSE(printed.empty());
      EXPECT_EQ(printed.back(), "Calculation Termination!......");
      const auto rows = rows_of(printed);
      ASSERT_FALSE(rows.empty());
      EXPECT_EQ(rows.back().first, behind ? 1 : 0);
    }
  }
  set_toolkit_backend(nullptr);
}

// The nonlinear method prints its table on standard output, in
// methods/nlfast_table.txt.
TEST_F(NewtonTest, NonlinearMethodSolvesWithItsTableOnStandardOutput) {
  load_case(1e-10, 30, kTypePV, 1, kTypePQ);
  ::testing::internal::CaptureStdout();
  int32_t status = -1;
  nlfast(status);
  test::expect_golden(::testing::internal::GetCapturedStdout(), "methods/nlfast_table.txt");
  EXPECT_EQ(status, 1);
  expect_solution(kNominal, 1e-8);
  EXPECT_TRUE(printed.empty());
}

TEST_F(NewtonTest, LargeJoinedCaseSolvesWithEveryMethod) {
  // 5200 copies: 20800 buses and 41598 branch rows, beyond the starting
  // capacities of the store, the admittance matrix and the factors.
  prnon = 0;
  for (void (*method)(int32_t&) : {newton, optimu, inewton, newtonp}) {
    load_case(1e-8, 20, kTypePV, 5200);
    ASSERT_GT(NO.nnode, 20000);
    ASSERT_GT(NO.nbranch, 30000);
    const Solution& solution = method == inewton ? kNominal : kSolved;
    int32_t status = -1;
    method(status);
    EXPECT_EQ(status, 1);
    double worst = 0;
    for (int b = 1; b <= LFINF.nbus; ++b)
      worst = std::max(worst, std::fabs(VPQ.V[NEW[b]] - solution.v[(b - 1) % 4 + 1]));
    EXPECT_LT(worst, 1e-8);
  }
}

// A value that is not finite ends every method as a divergence, with one line
// that names the bus, and the buses keep the last state whose mismatches were
// finite: a load that is not a number, from the flat start, and in the power
// forms of Newton's method a load so large that the corrections overflow.
TEST_F(NewtonTest, NonFiniteValuesEndEveryMethodAsDivergence) {
  struct Method {
    void (*run)(int32_t&);
    const char* name;
    bool overflows;
  };
  const Method methods[] = {{pqdecp, "decoupled", false}, {newton, "newton", true},
                            {optimu, "optimum", true},    {inewton, "current", false},
                            {newtonp, "newtonp", true},   {nlfast, "nonlinear", true}};
  const auto said = [](const std::string& l) { return l.rfind("Divergence: non-finite ", 0) == 0; };
  for (const Method& m : methods) {
    for (const double p : {std::nan(""), 1e300}) {
      if (!std::isnan(p) && !m.overflows) continue;
      SCOPED_TRACE(std::string(m.name) + (std::isnan(p) ? " with NaN" : " with 1e300"));
      load_case(1e-9, 200);
      L6.P[2] = p;
      printed.clear();
      int32_t status = -1;
      m.run(status);
      EXPECT_EQ(status, 0);
      const auto line = std::find_if(printed.begin(), printed.end(), said);
      EXPECT_EQ(std::count_if(printed.begin(), printed.end(), said), 1);
      if (std::isnan(p) && line != printed.end()) {
        EXPECT_EQ(*line, "Divergence: non-finite mismatch at bus LOAD4");
      }
      for (int i = 1; i <= 4; ++i) {
        EXPECT_TRUE(std::isfinite(VPQ.V[i]) && std::isfinite(VPQ.TH[i])) << "bus " << i;
        if (!std::isnan(p)) {
          EXPECT_TRUE(std::isfinite(VPQ.PG[i]) && std::isfinite(VPQ.QG[i])) << "bus " << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace lf

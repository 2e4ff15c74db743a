// The decoupled iteration on a small network whose solutions were found
// independently.
#include "methods/pqdecp.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/golden.hpp"
#include "io/channels.hpp"
#include "methods/iteration.hpp"
#include "methods/net.hpp"
#include "sparse/ordering.hpp"
#include "store/vpq.hpp"

namespace lf {
namespace {
using namespace test;

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
  grow_buses(3);
  for (int s = 1; s <= 3; ++s) {
    L1.busname[s] = names[s];
    NNTOON[s] = s;
    LL1.busvmin[s] = 0.9;
    LL1.busvmax[s] = 1.1;
  }
  LFINF.ngenerat = 2;
  LFINF.nload = 2;
  gen(1, 1, kTypeSlack, 0, 0, 1.03, 0);
  gen(2, 2, gen2_type, 0.6, 0, 1.02);
  L5P.Qmin[2] = -1;
  L5P.Qmax[2] = 1;
  load(1, 2, kTypePQ, 0.2, 0.1);
  load(2, 3, kTypePQ, 0.9, 0.4);
  fomy11();
  fomy12();
  capture_printed();
}

// Solutions of the three-bus network, solved independently by a dense Newton
// iteration in polar form (voltage per unit, angle in radians, by case bus).
struct Solution {
  double v[4], th[4];
};
// Generator 2 held at a reactive output of -0.1.
constexpr Solution kGenAtQmin = {{0, 1.03, 1.0250509301896582, 1.0281749781604879},
                                 {0, 0, -0.003749475941557241, -0.04141681165309969}};
// Load bus 3 held at 1.01.
constexpr Solution kLoadAtVmax = {{0, 1.03, 1.02, 1.01},
                                  {0, 0, -0.0029551721718953042, -0.040877437160221776}};

void expect_solution(const Solution& x) {
  for (int s = 1; s <= 3; ++s) {
    EXPECT_NEAR(VPQ.V[NEW[s]], x.v[s], 1e-9) << "bus " << s;
    EXPECT_NEAR(VPQ.TH[NEW[s]], x.th[s], 1e-9) << "bus " << s;
  }
}

// The table of each case stands in tests/data/golden/methods/pqdecp_tables.txt
// under a heading with the status the iteration ended with:
// - all buses at 1 per unit, nothing given and lossless branches of exact
//   admittances: all mismatches are exactly 0 from the start and the table
//   names no bus;
// - generator 2 at its reactive limit (it would absorb about 0.21): it turns
//   P-Q with its load row, and the switch repeats the iteration count;
// - load bus 3 held at its upper limit 1.01 (it would reach about 1.025);
// - one iteration per pass: the first pass fails, the second starts again
//   from the flat start and meets 1.1 times the first pass's best at once,
//   with the same active mismatch; now below the tolerance, the angles are
//   not corrected before the reactive half, which therefore sees another
//   value.
TEST(Pqdecp, TablesAndLimits) {
  std::string tables;
  const auto run = [&tables](const std::string& what) {
    int32_t status = -1;
    pqdecp(status);
    tables += "== " + what + ": status " + std::to_string(status) + "\n";
    for (const auto& l : printed) tables += l + "\n";
  };
  three_bus(kTypePV);
  L5.V[1] = L5.V[2] = 1;
  L5.P[2] = 0;
  L6.P[1] = L6.Q[1] = 0;
  L6.mode_ctrl[2] = kTypePV;
  L6.V[2] = 1;
  L6.P[2] = L6.Q[2] = 0;
  for (int k = 1; k <= 3; ++k) {
    RXB.R[k] = RXB.B[k] = RXB.T[k] = 0;
    RXB.X[k] = 1.0 / (1 << k);
  }
  fomy12();
  run("zero mismatch");

  three_bus(kTypePVQlim);
  L5P.Qmin[2] = -0.1;
  run("generator 2 at its reactive limit");
  EXPECT_EQ(L5.mode_ctrl[2], kTypePQ);
  EXPECT_EQ(L5.Q[2], -0.1);
  EXPECT_EQ(L6.mode_ctrl[1], kTypePQ);
  expect_solution(kGenAtQmin);

  three_bus(kTypePV);
  L6.mode_ctrl[2] = kTypePQVlim;
  LL1.busvmax[3] = 1.01;
  run("load bus 3 at its upper voltage limit");
  EXPECT_EQ(L6.mode_ctrl[2], kTypePV);
  EXPECT_EQ(L6.V[2], 1.01);
  expect_solution(kLoadAtVmax);

  three_bus(kTypePV);
  LFINF.iteration = 0;
  run("one iteration a pass");
  test::expect_golden(tables, "methods/pqdecp_tables.txt");
}

TEST(Pqdecp, VoltageDependentLoadAddsItsReactiveSlopeToTheB2Diagonal) {
  // Load 2 at bus 3 on load set 2: Q = Q0 (0.5 V^2 + 0.3 V + 0.2), whose
  // slope at the rated voltage is 1.3 Q0 = 0.52.
  three_bus(kTypePV);
  glpos();
  Arr<double> plain, sloped;
  formb2(plain);
  ABCLC.aq.grow(3), ABCLC.bq.grow(3), ABCLC.cq.grow(3);
  ABCLC.aq[2] = 0.5, ABCLC.bq[2] = 0.3, ABCLC.cq[2] = 0.2;
  L6.mode_ctrl[2] = kTypeFirstLoadSet;
  formb2(sloped);
  const int32_t d = Y.IY[NEW[3]];
  EXPECT_NEAR(sloped[d] - plain[d], 0.52, 1e-12);
}

}  // namespace
}  // namespace lf

// The two matrices of the decoupled method, entry by entry on Y's structure.
#include <gtest/gtest.h>

#include <vector>

#include "methods/iteration.hpp"
#include "methods/net.hpp"
#include "methods/pqdecp.hpp"
#include "sparse/ordering.hpp"

namespace lf {
namespace {
using namespace test;

struct Series {
  int i, j;
  double r, x;
};
// Branches in an order that gives rows their slots out of column order; the
// two parallel branches stand in adjacent rows; the last row is a shunt.
const std::vector<Series> kNet = {{1, 4, 0.01, 0.1}, {2, 5, 0, 0.5},     {1, 2, 0.02, 0.2},
                                  {2, 1, 0.03, 0.3}, {1, 3, 0.01, 0.05}, {3, 4, 0, 0.25},
                                  {4, 5, 0.05, 0.1}, {2, 2, 0, -5}};

void build() {
  LFINF = LFINFRec{};
  LFINF.nbus = 5;
  LFINF.nacline = static_cast<int32_t>(kNet.size());
  NO.nbranch = LFINF.nacline;
  for (std::size_t k = 1; k <= kNet.size(); ++k) {
    IJB.I[k] = kNet[k - 1].i;
    IJB.J[k] = kNet[k - 1].j;
    RXB.R[k] = kNet[k - 1].r;
    RXB.X[k] = kNet[k - 1].x;
    RXB.B[k] = 0.01;
    RXB.T[k] = 0;
  }
  fomy11();
  fomy12();
}

// The value expected at the position of internal buses a, b (a <= b).
double series_b(int a, int b) {
  double s = 0;
  for (const Series& br : kNet) {
    const int ni = NEW[br.i], nj = NEW[br.j];
    if (ni == nj) continue;
    const double v = br.x / (br.r * br.r + br.x * br.x);
    if (a == b && (ni == a || nj == a)) s -= v;
    if (a != b && std::min(ni, nj) == a && std::max(ni, nj) == b) s += v;
  }
  return s;
}

TEST(Formb1, SeriesSusceptancesWithTheSlackCutWhereverItStands) {
  build();
  for (int slack = 1; slack <= 5; ++slack) {
    LFINF.ngenerat = 1;
    LFINF.nload = 0;
    gen(1, slack, 0, 0, 0, 1);
    glpos();
    Arr<double> b;
    formb1(b);
    const int s = NEW[slack];
    for (int i = 1; i <= NO.nnode; ++i) {
      for (int p = Y.IY[i]; p < Y.IY[i + 1]; ++p) {
        const int j = Y.JY[p];
        double want = series_b(i, j);
        if (i == s || j == s) want = i == j ? 1 : 0;
        EXPECT_DOUBLE_EQ(b[p], want) << "slack " << slack << " at " << i << "," << j;
      }
    }
  }
}

TEST(Formb2, SusceptancesWithFixedBusesCutAndLoadSlopes) {
  build();
  LFINF.ngenerat = 2;
  LFINF.nload = 3;
  gen(1, 1, 0, 0, 0, 1);
  gen(2, 2, 1, 0.2, 0.1, 1);
  load(1, 5, -1, 0.1, 0.1, 1.02);  // fixed voltage through the load row
  load(2, 3, 4, 0.5, 0.3, 1.1);    // voltage-dependent
  load(3, 4, -3, 0.5, 0.3, 1.1);   // read as P and Q given
  ABCLC.aq[4] = 0.6;
  ABCLC.bq[4] = 0.3;
  glpos();
  Arr<double> b;
  formb2(b);
  auto fixed = [](int i) { return i == NEW[1] || i == NEW[5]; };
  for (int i = 1; i <= NO.nnode; ++i) {
    for (int p = Y.IY[i]; p < Y.IY[i + 1]; ++p) {
      const int j = Y.JY[p];
      double want = Y.YB[p];
      if (i == j && i == NEW[3]) want += (2 * 0.6 + 0.3) * 0.3 / 1.1 / 1.1;
      if (fixed(i) || fixed(j)) want = i == j ? 1 : 0;
      EXPECT_DOUBLE_EQ(b[p], want) << i << "," << j;
    }
  }
}

}  // namespace
}  // namespace lf

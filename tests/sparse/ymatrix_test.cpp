#include "sparse/ymatrix.hpp"

#include <gtest/gtest.h>

#include <complex>
#include <random>
#include <vector>

#include "sparse/ordering.hpp"
#include "store/store.hpp"

namespace lf {
namespace {

using cd = std::complex<double>;

struct Row {
  int32_t i, j;
  double r, x, b, t;
};

void load_case(const std::vector<Row>& rows) {
  grow_branches(rows.size());
  NEW.clear(NEW.size());
  NO.nbranch = static_cast<int32_t>(rows.size());
  for (int32_t k = 1; k <= NO.nbranch; ++k) {
    const Row& w = rows[k - 1];
    IJB.I[k] = w.i, IJB.J[k] = w.j;
    RXB.R[k] = w.r, RXB.X[k] = w.x, RXB.B[k] = w.b, RXB.T[k] = w.t;
  }
  fomy11();
  fomy12();
}

// The entry of Y at internal row a, column c (a <= c), or the place it lacks.
cd entry(int32_t a, int32_t c) {
  for (int32_t p = Y.IY[a]; p < Y.IY[a + 1]; ++p)
    if (Y.JY[p] == c) return {Y.YG[p], Y.YB[p]};
  ADD_FAILURE() << "no entry " << a << "," << c;
  return {};
}

TEST(Admittance, ShuntsTinyImpedanceAndRebuild) {
  load_case({{1, 2, 0.0, 1e-12, 0.0, 1.0},  // near-zero impedance, taken at 1e-20
             {2, 2, 0.0, -5.0, 7.0, 0.0},   // shunt: its impedance counts, B does not
             {3, 3, 0.0, 1.0, 0.0, 0.0}});  // shunt at a bus without a branch
  EXPECT_EQ(NEW[3], 0);
  EXPECT_DOUBLE_EQ(entry(1, 2).imag(), 1e8);
  EXPECT_DOUBLE_EQ(entry(NEW[2], NEW[2]).imag(), -1e8 + 0.2);
  EXPECT_DOUBLE_EQ(entry(NEW[1], NEW[1]).imag(), -1e8);

  // New branch values on the same ordering keep every position.
  std::vector<int32_t> jy(Y.JY.data() + 1, Y.JY.data() + 1 + NO.NYENT);
  RXB.X[1] = 0.5;
  fomy12();
  EXPECT_EQ(std::vector<int32_t>(Y.JY.data() + 1, Y.JY.data() + 1 + NO.NYENT), jy);
  EXPECT_DOUBLE_EQ(entry(1, 2).imag(), 2.0);
}

TEST(Admittance, RandomNetworkMatchesDenseAssemblyAndChains) {
  std::mt19937 rng(11);
  const int nbus = 40;
  std::uniform_int_distribution<int> bus(1, nbus);
  std::uniform_real_distribution<double> u(0.01, 0.3);
  std::vector<Row> rows;
  for (int k = 1; k < nbus; ++k) rows.push_back({k, k + 1, u(rng), u(rng), u(rng), 1.0});
  rows.push_back({2, 1, 0.02, 0.2, 0.1, 1.05});  // a tapped pair given the other way round
  for (int k = 0; k < 30; ++k) {
    int a = bus(rng), b = bus(rng);
    rows.push_back({a, b, u(rng), u(rng), u(rng), k % 3 == 0 ? 0.9 + u(rng) : 0.0});
  }
  load_case(rows);
  const int32_t n = NO.nnode;
  std::vector<std::vector<cd>> dense(n + 1, std::vector<cd>(n + 1));
  for (const Row& w : rows) {
    const cd y = 1.0 / cd(w.r, w.x);
    const double kk = w.t > 1e-6 ? w.t : 1.0;
    const auto a = NEW[w.i], c = NEW[w.j];
    if (a == c) {
      dense[a][a] += y;
      continue;
    }
    dense[a][c] -= y / kk;
    dense[c][a] -= y / kk;
    dense[a][a] += y + cd(0, w.b);
    dense[c][c] += y / (kk * kk) + cd(0, w.b);
  }
  int32_t held = 0;
  for (int32_t r = 1; r <= n; ++r) {
    ASSERT_EQ(Y.JY[Y.IY[r]], r);
    for (int32_t p = Y.IY[r]; p < Y.IY[r + 1]; ++p) {
      if (p > Y.IY[r]) {
        ASSERT_GT(Y.JY[p], Y.JY[p - 1]);
      }
      const cd want = dense[r][Y.JY[p]];
      EXPECT_NEAR(Y.YG[p], want.real(), 1e-9);
      EXPECT_NEAR(Y.YB[p], want.imag(), 1e-9);
    }
    for (int32_t c = r + 1; c <= n; ++c)
      if (std::abs(dense[r][c]) > 0) ++held;
  }
  EXPECT_EQ(NO.NYENT, n + held);
  EXPECT_EQ(Y.IY[n + 1], NO.NYENT + 1);

  // Each column chain meets the entries of its column in ascending row and
  // ends on 0 or back at the diagonal.
  for (int32_t c = 1; c <= n; ++c) {
    std::vector<int32_t> want;
    for (int32_t r = 1; r < c; ++r)
      for (int32_t p = Y.IY[r]; p < Y.IY[r + 1]; ++p)
        if (Y.JY[p] == c) want.push_back(r);
    std::vector<int32_t> got;
    const int32_t d = Y.IY[c];
    int32_t p = d;
    while (Y.LKNEXT[p] != 0 && Y.LKNEXT[p] != d) {
      got.push_back(Y.LKROW[p]);
      p = Y.LKNEXT[p];
      ASSERT_EQ(Y.JY[p], c);
    }
    if (!want.empty()) {
      EXPECT_EQ(Y.LKNEXT[p], d);
      EXPECT_EQ(Y.LKROW[p], c);
    }
    EXPECT_EQ(got, want) << "column " << c;
  }
}

}  // namespace
}  // namespace lf

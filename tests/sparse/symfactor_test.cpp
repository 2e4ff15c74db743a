#include "sparse/symfactor.hpp"

#include <gtest/gtest.h>

#include <complex>
#include <random>

#include "randsys.hpp"

namespace lf {
namespace {

// A symmetric matrix held as its upper triangle, rows diagonal first.
struct Upper {
  int32_t n = 0;
  Arr<int32_t> ia, ja;
  Arr<double> a;
};

Upper upper_of(const std::vector<std::set<int>>& adj, std::mt19937& rng,
               std::vector<std::vector<double>>& dense) {
  Upper m;
  m.n = static_cast<int32_t>(adj.size()) - 1;
  const auto n = m.n;
  dense.assign(n, std::vector<double>(n, 0.0));
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  m.ia.grow(n + 1);
  int32_t q = 1;
  for (int32_t i = 1; i <= m.n; ++i) {
    m.ia[i] = q;
    std::vector<int> cols{i};
    for (int c : adj[i])
      if (c > i) cols.push_back(c);
    for (int c : cols) {
      m.ja.grow(q);
      m.a.grow(q);
      m.ja[q] = c;
      m.a[q] = c == i ? 2.0 + u(rng) : u(rng);  // indefinite on purpose now and then
      dense[i - 1][c - 1] = m.a[q];
      dense[c - 1][i - 1] = m.a[q];
      ++q;
    }
  }
  m.ia[m.n + 1] = q;
  return m;
}

struct Factor : SymFactors {
  Arr<double> lv, lvi;
};

Factor factorise(const Upper& m, int32_t capacity) {
  Factor f;
  symtri71({m.n, m.ia.data(), m.ja.data(), m.a.data()}, capacity, f, f.lv);
  return f;
}

TEST(SymmetricFactors, RandomSystemsMatchDenseSolve) {
  std::mt19937 rng(3);
  for (int trial = 0; trial < 20; ++trial) {
    const int n = 3 + trial * 4;
    auto adj = test::random_network(n, n, rng);
    std::vector<std::vector<double>> dense;
    Upper m = upper_of(adj, rng, dense);
    // A small capacity makes the factor stores grow on the way.
    Factor f = factorise(m, trial % 2 == 0 ? 1 : 5 * (m.ia[m.n + 1] - 1));
    Arr<double> b(n), x(n);
    std::vector<double> bv(n);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int i = 1; i <= n; ++i) b[i] = bv[i - 1] = u(rng);
    solvxs(f, f.lv, b, x);
    std::vector<double> want = test::dense_solve(dense, bv);
    for (int i = 1; i <= n; ++i) ASSERT_NEAR(x[i], want[i - 1], 1e-8) << "trial " << trial;
  }
}

TEST(SymmetricFactors, VanishingPivotsKeepTheirSign) {
  // diag(0, -1e-30, 4) with a coupling that leaves the third pivot intact.
  Upper m;
  m.n = 3;
  m.ia.grow(4);
  m.ja.grow(4);
  m.a.grow(4);
  m.ia[1] = 1, m.ia[2] = 2, m.ia[3] = 4, m.ia[4] = 5;
  m.ja[1] = 1, m.ja[2] = 2, m.ja[3] = 3, m.ja[4] = 3;
  m.a[1] = 0.0, m.a[2] = -1e-30, m.a[3] = 0.0, m.a[4] = 4.0;
  Factor f = factorise(m, 20);
  EXPECT_EQ(f.lv[f.il[1]], 1e-20);
  EXPECT_EQ(f.lv[f.il[2]], -1e-20);
  EXPECT_EQ(f.lv[f.il[3]], 4.0);
  Arr<double> b(3), x(3);
  b[1] = 1.0, b[2] = 1.0, b[3] = 2.0;
  solvxs(f, f.lv, b, x);
  EXPECT_EQ(x[1], 1e20);
  EXPECT_EQ(x[2], -1e20);
  EXPECT_EQ(x[3], 0.5);
  // A pivot spoilt after the factorisation is replaced by the solution itself.
  f.lv[f.il[3]] = -0.0;
  solvxs(f, f.lv, b, x);
  EXPECT_EQ(f.lv[f.il[3]], 1e-20);
}

TEST(SymmetricFactors, ComplexSolutionOnComplexFactors) {
  // Take the pattern of a real factor, give it complex values, and check that
  // U' D U times the solution gives back the right-hand side.
  std::mt19937 rng(5);
  std::vector<std::vector<double>> dense;
  Factor f = factorise(upper_of(test::random_network(12, 10, rng), rng, dense), 100);
  const int n = 12;
  using cd = std::complex<double>;
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  const int32_t used = f.il[n + 1] - 1;
  f.lvi.grow(used);
  for (int32_t s = 1; s <= used; ++s) f.lv[s] = u(rng), f.lvi[s] = u(rng);
  Arr<double> b(n), bi(n), x(n), xi(n);
  for (int i = 1; i <= n; ++i) b[i] = u(rng), bi[i] = u(rng);
  solvxs(f, {f.lv, f.lvi}, {b, bi}, {x, xi});
  auto at = [&f](int32_t s) { return cd(f.lv[s], f.lvi[s]); };
  std::vector<cd> ux(n + 1), back(n + 1);
  for (int32_t i = 1; i <= n; ++i) {
    ux[i] = cd(x[i], xi[i]);
    for (int32_t s = f.il[i] + 1; s < f.il[i + 1]; ++s)
      ux[i] += at(s) * cd(x[f.jl[s]], xi[f.jl[s]]);
  }
  for (int32_t i = 1; i <= n; ++i) {
    const cd d = at(f.il[i]) * ux[i];
    back[i] += d;
    for (int32_t s = f.il[i] + 1; s < f.il[i + 1]; ++s) back[f.jl[s]] += at(s) * d;
  }
  for (int32_t i = 1; i <= n; ++i) {
    EXPECT_NEAR(back[i].real(), b[i], 1e-9);
    EXPECT_NEAR(back[i].imag(), bi[i], 1e-9);
  }
}

}  // namespace
}  // namespace lf

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
  const auto n = static_cast<std::size_t>(m.n);
  dense.assign(n, std::vector<double>(n, 0.0));
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  m.ia.grow(n + 1);
  int32_t q = 1;
  for (int32_t i = 1; i <= m.n; ++i) {
    m.ia[i] = q;
    std::vector<int> cols{i};
    for (int c : adj[static_cast<std::size_t>(i)])
      if (c > i) cols.push_back(c);
    for (int c : cols) {
      m.ja.grow(static_cast<std::size_t>(q));
      m.a.grow(static_cast<std::size_t>(q));
      m.ja[q] = c;
      m.a[q] = c == i ? 2.0 + u(rng) : u(rng);  // indefinite on purpose now and then
      dense[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(c - 1)] = m.a[q];
      dense[static_cast<std::size_t>(c - 1)][static_cast<std::size_t>(i - 1)] = m.a[q];
      ++q;
    }
  }
  m.ia[m.n + 1] = q;
  return m;
}

struct Factor {
  Arr<int32_t> il, jl, lnrow, lnpos;
  Arr<double> lv, lvi;
};

Factor factorise(const Upper& m, int32_t capacity) {
  Factor f;
  symtri71(m.n, m.ia[m.n + 1] - 1, capacity, m.ia, m.ia, m.ja, m.a, f.il, f.jl, f.lnrow, f.lnpos,
           f.lv);
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
    Arr<double> b(static_cast<std::size_t>(n)), x(static_cast<std::size_t>(n)), none;
    std::vector<double> bv(static_cast<std::size_t>(n));
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int i = 1; i <= n; ++i) b[i] = bv[static_cast<std::size_t>(i - 1)] = u(rng);
    solvxs(1, n, 1, 0, 1, f.il, f.jl, f.lnrow, f.lnpos, f.lv, none, b, none, x, none);
    std::vector<double> want = test::dense_solve(dense, bv);
    for (int i = 1; i <= n; ++i)
      ASSERT_NEAR(x[i], want[static_cast<std::size_t>(i - 1)], 1e-8) << "trial " << trial;
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
  Arr<double> b(3), x(3), none;
  b[1] = 1.0, b[2] = 1.0, b[3] = 2.0;
  solvxs(1, 3, 1, 20, 1, f.il, f.jl, f.lnrow, f.lnpos, f.lv, none, b, none, x, none);
  EXPECT_EQ(x[1], 1e20);
  EXPECT_EQ(x[2], -1e20);
  EXPECT_EQ(x[3], 0.5);
  // A pivot spoilt after the factorisation is replaced by the solution itself.
  f.lv[f.il[3]] = -0.0;
  solvxs(1, 3, 1, 20, 1, f.il, f.jl, f.lnrow, f.lnpos, f.lv, none, b, none, x, none);
  EXPECT_EQ(f.lv[f.il[3]], 1e-20);
}

TEST(SymmetricFactors, ComplexSolutionOnComplexFactors) {
  // Take the pattern of a real factor, give it complex values, and check the
  // solution against the complex product U' D U rebuilt densely.
  std::mt19937 rng(5);
  auto adj = test::random_network(12, 10, rng);
  std::vector<std::vector<double>> dense;
  Upper m = upper_of(adj, rng, dense);
  Factor f = factorise(m, 100);
  const int n = m.n;
  using cd = std::complex<double>;
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  const int32_t used = f.il[n + 1] - 1;
  f.lvi.grow(static_cast<std::size_t>(used));
  for (int32_t s = 1; s <= used; ++s) f.lv[s] = u(rng), f.lvi[s] = u(rng);
  std::vector<std::vector<cd>> U(static_cast<std::size_t>(n),
                                 std::vector<cd>(static_cast<std::size_t>(n)));
  std::vector<cd> D(static_cast<std::size_t>(n));
  for (int32_t i = 1; i <= n; ++i) {
    auto si = static_cast<std::size_t>(i - 1);
    D[si] = cd(f.lv[f.il[i]], f.lvi[f.il[i]]);
    U[si][si] = 1.0;
    for (int32_t s = f.il[i] + 1; s < f.il[i + 1]; ++s)
      U[si][static_cast<std::size_t>(f.jl[s] - 1)] = cd(f.lv[s], f.lvi[s]);
  }
  Arr<double> b(static_cast<std::size_t>(n)), bi(static_cast<std::size_t>(n)),
      x(static_cast<std::size_t>(n)), xi(static_cast<std::size_t>(n));
  for (int i = 1; i <= n; ++i) b[i] = u(rng), bi[i] = u(rng);
  solvxs(2, n, 1, 0, 1, f.il, f.jl, f.lnrow, f.lnpos, f.lv, f.lvi, b, bi, x, xi);
  for (int r = 0; r < n; ++r) {
    cd s = 0.0;
    for (int c = 0; c < n; ++c) {
      cd a = 0.0;  // (U' D U)[r][c]
      for (int k = 0; k < n; ++k)
        a += U[static_cast<std::size_t>(k)][static_cast<std::size_t>(r)] *
             D[static_cast<std::size_t>(k)] *
             U[static_cast<std::size_t>(k)][static_cast<std::size_t>(c)];
      s += a * cd(x[c + 1], xi[c + 1]);
    }
    EXPECT_NEAR(s.real(), b[r + 1], 1e-9);
    EXPECT_NEAR(s.imag(), bi[r + 1], 1e-9);
  }
}

}  // namespace
}  // namespace lf

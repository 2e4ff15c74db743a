#include "sparse/blockfactor.hpp"

#include <gtest/gtest.h>

#include <random>

#include "randsys.hpp"

namespace lf {
namespace {

// A matrix of 2 x 2 blocks on the pattern of a network: full rows, the
// diagonal among the columns.  The slack bus has the identity as its only
// entry and no other row has an entry in its column.
struct BlockMatrix {
  int32_t n = 0, nent = 0;
  Arr<int32_t> ia, ja;
  Arr<MatrixBlock> a;
};

BlockMatrix block_matrix(const std::vector<std::set<int>>& adj, int slack, std::mt19937& rng) {
  BlockMatrix m;
  m.n = static_cast<int32_t>(adj.size()) - 1;
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  m.ia.grow(m.n + 1);
  int32_t q = 1;
  for (int32_t i = 1; i <= m.n; ++i) {
    m.ia[i] = q;
    std::set<int> cols{i};
    if (i != slack)
      for (int c : adj[i])
        if (c != slack) cols.insert(c);
    for (int c : cols) {
      m.a.grow(q);
      m.ja.grow(q);
      m.ja[q] = c;
      const bool diag = c == i;
      if (i == slack) {
        m.a[q] = {{1.0, 0.0, 0.0, 1.0}};
      } else {
        double* b = m.a[q].v;
        b[0] = u(rng) + (diag ? 6.0 : 0.0);
        b[1] = u(rng);
        b[2] = u(rng);
        b[3] = u(rng) + (diag ? -6.0 : 0.0);
      }
      ++q;
    }
  }
  m.ia[m.n + 1] = q;
  m.nent = q - 1;
  return m;
}

BlockValues values(const BlockMatrix& m) {
  return {m.a.data()};
}

void first_factors(const BlockMatrix& m, BlockChains& ch, BlockStore& f) {
  adlink7l(m.ia, m.ja, m.n, ch);
  nonsym74({m.n, m.ia.data(), m.ja.data(), &ch}, values(m), f, nullptr);
}

void again(const BlockMatrix& m, const BlockChains& ch, BlockStore& f,
           const BlockRhs* rhs = nullptr) {
  const BlockPattern a{m.n, m.ia.data(), m.ja.data(), &ch};
  place_values(a, values(m), f);
  nonsym74o(a, f, rhs);
}

// Solves with the factors and checks against the dense solution.
void expect_solves(const BlockMatrix& m, BlockStore& f, std::mt19937& rng, int slack) {
  const int n = m.n;
  std::vector<std::vector<double>> dense(2 * n, std::vector<double>(2 * n, 0.0));
  for (int32_t i = 1; i <= n; ++i)
    for (int32_t p = m.ia[i]; p < m.ia[i + 1]; ++p) {
      const int r = 2 * i - 2, c = 2 * m.ja[p] - 2;
      const double* b = m.a[p].v;
      dense[r][c] = b[0], dense[r][c + 1] = b[1];
      dense[r + 1][c] = b[2], dense[r + 1][c + 1] = b[3];
    }
  Arr<double> r1(n), r2(n), x1(n), x2(n);
  std::vector<double> rhs(2 * n);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  for (int32_t i = 1; i <= m.n; ++i) {
    r1[i] = rhs[2 * i - 2] = u(rng);
    r2[i] = rhs[2 * i - 1] = u(rng);
  }
  solvxn(f, r1, r2, x1, x2);
  std::vector<double> want = test::dense_solve(dense, rhs);
  for (int32_t i = 1; i <= m.n; ++i) {
    ASSERT_NEAR(x1[i], want[2 * i - 2], 1e-9) << "bus " << i;
    ASSERT_NEAR(x2[i], want[2 * i - 1], 1e-9) << "bus " << i;
  }
  EXPECT_EQ(x1[slack], r1[slack]);
  EXPECT_EQ(x2[slack], r2[slack]);
}

TEST(BlockFactors, RandomSystemsMatchDenseSolveAndRefactorisation) {
  std::mt19937 rng(17);
  for (int trial = 0; trial < 25; ++trial) {
    const int n = 2 + trial * 3;
    auto adj = test::random_network(n, n / 2 + 1, rng);
    const int slack = 1 + trial % n;
    BlockMatrix m = block_matrix(adj, slack, rng);
    BlockChains ch;
    BlockStore f;
    first_factors(m, ch, f);
    expect_solves(m, f, rng, slack);

    // The same values again on the pattern found: the same factors, bit for bit.
    BlockStore g = f;
    again(m, ch, g);
    const std::size_t used = static_cast<std::size_t>(f.iu[static_cast<std::size_t>(m.n) + 1]);
    ASSERT_EQ(f.uval.size(), used - static_cast<std::size_t>(m.n));  // no U at the pivots
    for (std::size_t p = 1; p < used; ++p)
      for (int k = 0; k < 4; ++k) ASSERT_TRUE(g.lval[p].v[k] == f.lval[p].v[k]);
    for (std::size_t p = 1; p < f.uval.size(); ++p)
      for (int k = 0; k < 4; ++k) ASSERT_TRUE(g.uval[p].v[k] == f.uval[p].v[k]);
    // New values on the same pattern.
    std::uniform_real_distribution<double> u(0.5, 1.5);
    for (int32_t i = 1; i <= m.n; ++i) {
      if (i == slack) continue;
      for (int32_t p = m.ia[i]; p < m.ia[i + 1]; ++p) {
        m.a[p].v[1] *= u(rng);
        m.a[p].v[2] *= u(rng);
      }
    }
    Arr<double> r1(m.n), r2(m.n), x1(m.n), x2(m.n), y1(m.n), y2(m.n);
    for (int32_t i = 1; i <= m.n; ++i) r1[i] = u(rng), r2[i] = -u(rng);
    const BlockRhs rhs{r1.data(), r2.data()};
    again(m, ch, f, &rhs);
    // The solution that goes along with the factorisation is solvxn's, bit for bit.
    solvxn_back(f, x1, x2);
    solvxn(f, r1, r2, y1, y2);
    for (int32_t i = 1; i <= m.n; ++i) ASSERT_TRUE(x1[i] == y1[i] && x2[i] == y2[i]) << i;
    expect_solves(m, f, rng, slack);

    // The one-call form gives the factors that solvxn takes.
    BlockStore h;
    nonsym(m.ia, m.ja, m.n, values(m), h);
    expect_solves(m, h, rng, slack);
  }
}

TEST(BlockFactors, SingularPivotBlockTakesTheSmallestDeterminant) {
  // Bus 1's block is singular; bus 2 couples to it.
  std::vector<std::set<int>> adj{{}, {2}, {1}};
  std::mt19937 rng(1);
  BlockMatrix m = block_matrix(adj, 0, rng);
  // Row 1: diag [1 2; 2 4], off [1 0; 0 1]; row 2: off [0 0; 0 0], diag [3 0; 0 3].
  const double v[4][4] = {{1, 2, 2, 4}, {1, 0, 0, 1}, {0, 0, 0, 0}, {3, 0, 0, 3}};
  for (int32_t p = 1; p <= 4; ++p) m.a[p] = {{v[p - 1][0], v[p - 1][1], v[p - 1][2], v[p - 1][3]}};
  BlockChains ch;
  BlockStore f;
  first_factors(m, ch, f);
  // U of row 1 = inverse of the pivot, with determinant 1e-20, times the
  // identity; the U blocks leave out the pivots of the rows before.
  const double* u = f.uval[static_cast<std::size_t>(f.iu[1]) + 1 - 1].v;
  EXPECT_DOUBLE_EQ(u[0], 4 / 1e-20);
  EXPECT_DOUBLE_EQ(u[1], -2 / 1e-20);
  EXPECT_DOUBLE_EQ(u[2], -2 / 1e-20);
  EXPECT_DOUBLE_EQ(u[3], 1 / 1e-20);
  // The solution replaces the determinant in the same way.
  Arr<double> r1(2), r2(2), x1(2), x2(2);
  r1[1] = 1.0, r2[1] = 0.0, r1[2] = 0.0, r2[2] = 0.0;
  solvxn(f, r1, r2, x1, x2);
  EXPECT_DOUBLE_EQ(x2[2], 0.0);
  EXPECT_DOUBLE_EQ(x1[1], 4.0 * (1 / 1e-20));
  EXPECT_DOUBLE_EQ(x2[1], -2.0 * (1 / 1e-20));
}

}  // namespace
}  // namespace lf

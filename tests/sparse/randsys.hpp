// Random sparse systems with the structure of a bus admittance matrix, and a
// dense solver to check the sparse solutions against.
#pragma once

#include <cmath>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace lf::test {

// Neighbour sets of a connected random network of n buses: a ring with
// random chords.
inline std::vector<std::set<int>> random_network(int n, int chords, std::mt19937& rng) {
  std::vector<std::set<int>> adj(n + 1);
  std::uniform_int_distribution<int> bus(1, n);
  auto join = [&](int a, int b) {
    if (a == b) return;
    adj[a].insert(b);
    adj[b].insert(a);
  };
  for (int k = 1; k < n; ++k) join(k, k + 1);
  if (n > 2) join(n, 1);
  for (int k = 0; k < chords; ++k) join(bus(rng), bus(rng));
  return adj;
}

// Solves the dense system a x = b (row-major, size m) by elimination with
// partial pivoting.
inline std::vector<double> dense_solve(std::vector<std::vector<double>> a, std::vector<double> b) {
  const std::size_t m = b.size();
  for (std::size_t k = 0; k < m; ++k) {
    std::size_t piv = k;
    for (std::size_t r = k + 1; r < m; ++r)
      if (std::fabs(a[r][k]) > std::fabs(a[piv][k])) piv = r;
    std::swap(a[k], a[piv]);
    std::swap(b[k], b[piv]);
    for (std::size_t r = k + 1; r < m; ++r) {
      const double f = a[r][k] / a[k][k];
      if (f == 0.0) continue;
      for (std::size_t c = k; c < m; ++c) a[r][c] -= f * a[k][c];
      b[r] -= f * b[k];
    }
  }
  std::vector<double> x(m);
  for (std::size_t k = m; k-- > 0;) {
    double s = b[k];
    for (std::size_t c = k + 1; c < m; ++c) s -= a[k][c] * x[c];
    x[k] = s / a[k][k];
  }
  return x;
}

}  // namespace lf::test

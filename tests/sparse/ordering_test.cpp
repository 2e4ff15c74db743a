#include "sparse/ordering.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include "sparse/ymatrix.hpp"
#include "store/store.hpp"

namespace lf {
namespace {

using Edges = std::vector<std::pair<int, int>>;

// Internal numbers of buses 1..maxbus; n counts the numbered ones.
std::vector<int32_t> order(const Edges& e, int32_t& n) {
  const auto nb = static_cast<int32_t>(e.size());
  Arr<int32_t> bi(nb), bj(nb);
  for (int32_t k = 1; k <= nb; ++k) bi[k] = e[k - 1].first, bj[k] = e[k - 1].second;
  int32_t maxbus = 0, cells = 0;
  maxnob(nb, bi, bj, maxbus);
  Arr<int32_t> num(maxbus);
  optnob_mdml(nb, bi, bj, maxbus, n, num, cells);
  return {num.data() + 1, num.data() + 1 + maxbus};
}

TEST(Ordering, LowestDegreeThenLowerLevelThenLowerNumber) {
  // Star: the hub and leaf 4 end at degree 1, the leaf's level is lower.
  // Path 1-2-3-4: after 1, bus 2 has degree 1 at level 2, bus 4 at level 1.
  // Ring: eliminating 1 joins 2 and 4 and raises their level.
  const std::pair<Edges, std::vector<int32_t>> cases[] = {
      {{{1, 2}, {3, 1}, {1, 4}}, {4, 1, 2, 3}},
      {{{1, 2}, {2, 3}, {3, 4}}, {1, 3, 4, 2}},
      {{{1, 2}, {2, 3}, {3, 4}, {4, 1}}, {1, 3, 2, 4}}};
  for (const auto& [edges, want] : cases) {
    int32_t n = 0;
    EXPECT_EQ(order(edges, n), want);
    EXPECT_EQ(n, 4);
  }
}

TEST(Ordering, ShuntOnlyBusAndParallelBranches) {
  NO.nbranch = 0;
  IJB.I.grow(10);
  IJB.J.grow(10);
  auto put = [](int32_t a, int32_t b) {
    ++NO.nbranch;
    IJB.I[NO.nbranch] = a;
    IJB.J[NO.nbranch] = b;
  };
  put(1, 2);
  put(2, 1);  // the reverse direction
  put(1, 2);  // a parallel branch
  put(2, 3);
  put(5, 5);  // bus 5 appears in a shunt row only
  put(3, 3);
  fomy11();
  EXPECT_EQ(NO.MAXBUS, 5);
  EXPECT_EQ(NO.nnode, 3);
  EXPECT_EQ((std::vector<int32_t>{NEW[1], NEW[2], NEW[3], NEW[4], NEW[5]}),
            (std::vector<int32_t>{1, 3, 2, 0, 0}));
  EXPECT_EQ((std::vector<int32_t>{IOU[1], IOU[2], IOU[3]}), (std::vector<int32_t>{1, 1, 0}));
  EXPECT_EQ(NO.NYENT, 5);
}

// The ordering as its rules read: every candidate scanned in ascending number,
// neighbour sets for the simulated elimination.
std::vector<int32_t> reference_order(int32_t maxbus, const Edges& e) {
  std::vector<std::set<int>> adj(maxbus + 1);
  for (auto [a, b] : e) {
    if (a == b) continue;
    adj[a].insert(b);
    adj[b].insert(a);
  }
  std::vector<int32_t> num(maxbus + 1, 0), level(maxbus + 1, 1);
  std::vector<bool> live(maxbus + 1);
  for (int v = 1; v <= maxbus; ++v) live[v] = !adj[v].empty();
  for (int32_t k = 1;; ++k) {
    int best = 0;
    for (int v = 1; v <= maxbus; ++v) {
      if (live[v] && (best == 0 || adj[v].size() < adj[best].size() ||
                      (adj[v].size() == adj[best].size() && level[v] < level[best])))
        best = v;
    }
    if (best == 0) break;
    num[best] = k;
    live[best] = false;
    const std::set<int> nb = adj[best];
    for (int a : nb) {
      adj[a].erase(best);
      level[a] = std::max(level[a], level[best] + 1);
      for (int b : nb)
        if (b != a) adj[a].insert(b);
    }
  }
  return {num.begin() + 1, num.end()};
}

TEST(Ordering, AgreesWithTheRulesOnRandomNetworks) {
  std::mt19937 rng(7);
  for (int trial = 0; trial < 40; ++trial) {
    const int nbus = 5 + trial * 3;
    std::uniform_int_distribution<int> bus(1, nbus);
    Edges e;
    for (int k = 0; k < nbus + nbus / 2; ++k) e.emplace_back(bus(rng), bus(rng));
    int32_t n = 0;
    std::vector<int32_t> got = order(e, n);
    std::vector<int32_t> want = reference_order(static_cast<int32_t>(got.size()), e);
    ASSERT_EQ(got, want) << "trial " << trial;
    EXPECT_EQ(n, static_cast<int32_t>(
                     std::count_if(want.begin(), want.end(), [](int v) { return v > 0; })));
  }
}

}  // namespace
}  // namespace lf

#include "sparse/ordering.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include "engine/store.hpp"
#include "sparse/ymatrix.hpp"

namespace lf {
namespace {

struct Branches {
  Arr<int32_t> i, j;
  int32_t nb = 0;
  void add(int32_t a, int32_t b) {
    ++nb;
    i.grow(static_cast<std::size_t>(nb));
    j.grow(static_cast<std::size_t>(nb));
    i[nb] = a;
    j[nb] = b;
  }
};

// Internal numbers of buses 1..maxbus.
std::vector<int32_t> order(const Branches& br, int32_t& n) {
  int32_t maxbus = 0, cells = 0;
  maxnob(br.nb, br.i, br.j, maxbus);
  Arr<int32_t> num(static_cast<std::size_t>(maxbus));
  optnob_mdml(br.nb, br.i, br.j, maxbus, n, num, cells);
  std::vector<int32_t> out;
  for (int32_t b = 1; b <= maxbus; ++b) out.push_back(num[b]);
  return out;
}

TEST(Ordering, StarLeavesFirstHubLast) {
  Branches br;
  br.add(1, 2);
  br.add(3, 1);
  br.add(1, 4);
  int32_t n = 0;
  // When the hub and leaf 4 remain, both have degree 1; the leaf's level is lower.
  EXPECT_EQ(order(br, n), (std::vector<int32_t>{4, 1, 2, 3}));
  EXPECT_EQ(n, 4);
}

TEST(Ordering, EqualDegreeGoesToLowerLevelThenLowerNumber) {
  Branches path;  // 1-2-3-4: after 1, bus 2 has degree 1 at level 2, bus 4 at level 1
  path.add(1, 2);
  path.add(2, 3);
  path.add(3, 4);
  int32_t n = 0;
  EXPECT_EQ(order(path, n), (std::vector<int32_t>{1, 3, 4, 2}));

  Branches ring;  // 1-2-3-4-1: eliminating 1 joins 2 and 4 and raises their level
  ring.add(1, 2);
  ring.add(2, 3);
  ring.add(3, 4);
  ring.add(4, 1);
  EXPECT_EQ(order(ring, n), (std::vector<int32_t>{1, 3, 2, 4}));
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
  EXPECT_EQ(NEW[4], 0);
  EXPECT_EQ(NEW[5], 0);
  EXPECT_EQ(NEW[1], 1);
  EXPECT_EQ(NEW[3], 2);
  EXPECT_EQ(NEW[2], 3);
  EXPECT_EQ(IOU[1], 1);
  EXPECT_EQ(IOU[2], 1);
  EXPECT_EQ(IOU[3], 0);
  EXPECT_EQ(NO.NYENT, 5);
}

// The ordering as its rules read: every candidate scanned in ascending number,
// neighbour sets for the simulated elimination.
std::vector<int32_t> reference_order(int32_t maxbus, const std::vector<std::pair<int, int>>& e) {
  std::vector<std::set<int>> adj(static_cast<std::size_t>(maxbus) + 1);
  for (auto [a, b] : e) {
    if (a == b) continue;
    adj[static_cast<std::size_t>(a)].insert(b);
    adj[static_cast<std::size_t>(b)].insert(a);
  }
  std::vector<int32_t> num(static_cast<std::size_t>(maxbus) + 1, 0),
      level(static_cast<std::size_t>(maxbus) + 1, 1);
  std::vector<bool> live(static_cast<std::size_t>(maxbus) + 1);
  for (int v = 1; v <= maxbus; ++v)
    live[static_cast<std::size_t>(v)] = !adj[static_cast<std::size_t>(v)].empty();
  for (int32_t k = 1;; ++k) {
    int best = 0;
    for (int v = 1; v <= maxbus; ++v) {
      auto sv = static_cast<std::size_t>(v), sb = static_cast<std::size_t>(best);
      if (!live[sv]) continue;
      if (best == 0 || adj[sv].size() < adj[sb].size() ||
          (adj[sv].size() == adj[sb].size() && level[sv] < level[sb]))
        best = v;
    }
    if (best == 0) break;
    auto sb = static_cast<std::size_t>(best);
    num[sb] = k;
    live[sb] = false;
    std::set<int> nb = adj[sb];
    for (int a : nb) {
      auto sa = static_cast<std::size_t>(a);
      adj[sa].erase(best);
      level[sa] = std::max(level[sa], level[sb] + 1);
      for (int b : nb)
        if (b != a) adj[sa].insert(b);
    }
  }
  return {num.begin() + 1, num.end()};
}

TEST(Ordering, AgreesWithTheRulesOnRandomNetworks) {
  std::mt19937 rng(7);
  for (int trial = 0; trial < 40; ++trial) {
    const int nbus = 5 + trial * 3;
    std::uniform_int_distribution<int> bus(1, nbus);
    Branches br;
    std::vector<std::pair<int, int>> e;
    for (int k = 0; k < nbus + nbus / 2; ++k) {
      int a = bus(rng), b = bus(rng);
      br.add(a, b);
      e.emplace_back(a, b);
    }
    int32_t n = 0;
    std::vector<int32_t> got = order(br, n);
    std::vector<int32_t> want = reference_order(static_cast<int32_t>(got.size()), e);
    ASSERT_EQ(got, want) << "trial " << trial;
    EXPECT_EQ(n, static_cast<int32_t>(
                     std::count_if(want.begin(), want.end(), [](int v) { return v > 0; })));
  }
}

}  // namespace
}  // namespace lf

#include "support/sortsearch.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace lf {
namespace {

TEST(Quicksort, SortsWithCompanionPermutation) {
  std::vector<int32_t> a = {5, 3, 9, 3, 1, 7, 5, 0, 2};
  const std::vector<int32_t> orig = a;
  std::vector<int32_t> p(a.size(), -1);
  quicksortip(static_cast<int32_t>(a.size()), a.data(), p.data());
  EXPECT_TRUE(std::is_sorted(a.begin(), a.end()));
  for (size_t i = 0; i < a.size(); ++i) EXPECT_EQ(a[i], orig[static_cast<size_t>(p[i] - 1)]);

  std::vector<int32_t> b = {4, -2, 8, 4, 4, -9};
  quicksorti(static_cast<int32_t>(b.size()), b.data());
  EXPECT_EQ(b, (std::vector<int32_t>{-9, -2, 4, 4, 4, 8}));
}

TEST(Quicksort, PartitionsAroundTheFirstElement) {
  std::vector<int32_t> a = {4, 6, 1, 4, 2};
  int32_t m = quicksorticut(a.data(), 1, 5);
  // 1 and 2 move left of the pivot in the order met; equal elements stay right.
  EXPECT_EQ(m, 3);
  EXPECT_EQ(a, (std::vector<int32_t>{2, 1, 4, 4, 6}));
}

TEST(Quicksort, EmptyOrEqualInputsLeaveThings) {
  std::vector<int32_t> a = {3}, p = {42};
  quicksorti(0, a.data());
  quicksorti(1, a.data());
  EXPECT_EQ(a[0], 3);
  quicksortip(0, a.data(), p.data());
  EXPECT_EQ(p[0], 42);
  std::vector<int32_t> e = {2, 2, 2, 2}, q(4);
  quicksortip(4, e.data(), q.data());
  EXPECT_EQ(q, (std::vector<int32_t>{1, 2, 3, 4}));
}

TEST(Q2search, FindsOrGivesTheInsertionPoint) {
  std::vector<int32_t> a = {2, 4, 6, 8};
  int32_t pos = -1, found = -1;
  q2searchi(a.data(), 4, 6, pos, found);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(pos, 3);
  q2searchi(a.data(), 4, 5, pos, found);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(pos, 2);
  q2searchi(a.data(), 4, 9, pos, found);
  EXPECT_EQ(pos, 4);
  q2searchi(a.data(), 4, 1, pos, found);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(pos, 0);
  q2searchi(a.data(), 0, 1, pos, found);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(pos, 0);
  // A run inside a larger array, addressed by its first element.
  q2searchi(&a[2], 2, 8, pos, found);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(pos, 2);
}

TEST(Bytecopy, CopiesForwardAndSmearsAnOverlap) {
  unsigned char buf[8] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};
  bytecopy(buf, buf + 2, 5);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buf), 8), "abababah");
  bytecopy(buf + 7, buf, 0);
  EXPECT_EQ(buf[0], 'a');
}

}  // namespace
}  // namespace lf

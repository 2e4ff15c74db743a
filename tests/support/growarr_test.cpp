#include "support/growarr.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace lf {
namespace {

TEST(Redim, GrowsInWholeStepsFromThePresentSize) {
  Arr<int32_t> a;
  redim(a, 0);
  redim(a, -5);
  EXPECT_EQ(a.size(), 0u);  // stays unallocated
  redim(a, 1);
  ASSERT_EQ(a.size(), 100u);
  for (int i = 1; i <= 100; ++i) EXPECT_EQ(a[i], 0);
  a[100] = 7;
  redim(a, 100);  // equal to the present size: no change
  EXPECT_EQ(a.size(), 100u);
  redim(a, 101);
  EXPECT_EQ(a.size(), 200u);
  redim(a, 450);  // 200 + 3 steps
  EXPECT_EQ(a.size(), 500u);
  EXPECT_EQ(a[100], 7);
  EXPECT_EQ(a[101], 0);
}

TEST(Redim, StepFollowsSetdaddAndIgnoresZero) {
  int32_t step = 0;
  setdadd(0);
  setdadd(-3);
  getdadd(step);
  EXPECT_EQ(step, 100);
  setdadd(7);
  Arr<double> a;
  redim(a, 10);
  EXPECT_EQ(a.size(), 14u);
  setdadd(100);
}

TEST(Redim, TwoDimensionalGrowsRowsOnlyAndTakesColsAsGiven) {
  Arr2<int32_t> a;
  redim2(a, 3, 2);
  ASSERT_EQ(a.rows(), 100u);
  ASSERT_EQ(a.cols(), 2u);
  a(3, 2) = 5;
  a(100, 1) = 6;
  redim2(a, 100, 9);  // rows not above the present: nothing, not even the columns
  EXPECT_EQ(a.cols(), 2u);
  redim2(a, 101, 4);
  EXPECT_EQ(a.rows(), 200u);
  EXPECT_EQ(a.cols(), 4u);
  EXPECT_EQ(a(3, 2), 5);
  EXPECT_EQ(a(100, 1), 6);
  EXPECT_EQ(a(101, 1), 0);
  EXPECT_EQ(a(3, 4), 0);
}

TEST(Reallocate, ShrinksAndFillsAndTrustsOldsize) {
  Arr<double> a;
  reallocate(a, 0, 10);
  for (int i = 1; i <= 10; ++i) a[i] = i;
  reallocate(a, 10, 4);
  ASSERT_EQ(a.size(), 4u);
  EXPECT_EQ(a[4], 4.0);
  // Only the first two are declared valid: elements 3..6 come out filled.
  reallocate(a, 2, 6);
  EXPECT_EQ(a[2], 2.0);
  EXPECT_EQ(a[3], 0.0);
  EXPECT_EQ(a[6], 0.0);
  reallocate(a, 6, -1);
  EXPECT_EQ(a.size(), 0u);
}

TEST(Reallocate, TextFillsWithBlanksAndZeroBasedKeepsIndexZero) {
  Arr<Text<10>> t;
  reallocate(t, 0, 3);
  t[3] = "KEEP";
  reallocate(t, 3, 5);
  EXPECT_EQ(t[3].trimmed(), "KEEP");
  EXPECT_EQ(t[4].str(), std::string(10, ' '));
  EXPECT_EQ(t[5].str(), std::string(10, ' '));

  std::vector<int32_t> z;
  reallocate0(z, 0, 3);
  z[0] = 1;
  z[2] = 3;
  reallocate0(z, 3, 5);
  ASSERT_EQ(z.size(), 5u);
  EXPECT_EQ(z[0], 1);
  EXPECT_EQ(z[2], 3);
  EXPECT_EQ(z[4], 0);
}

TEST(ReallocateDeathTest, FailedAllocationStopsWithItsText) {
  Arr<double> a;
  EXPECT_EXIT(reallocate(a, 0, std::numeric_limits<long long>::max() / 4),
              testing::ExitedWithCode(1), "Fail to allocate memory!");
}

// Blocks of many sizes taken and given back in random order, some written
// whole, some in their first byte, some not at all: every block comes
// zeroed, and no two live blocks share a byte (each keeps its mark).
// Phases that give most blocks back reuse written room.
TEST(ZeroedBlocks, ComeZeroedAndNeverOverlapWhateverTheOrder) {
  struct Block {
    unsigned char* p;
    std::size_t bytes, written;
    unsigned char mark;
  };
  constexpr std::size_t kWhole = 1 << 20;  // "whole" writes stop here
  std::mt19937 random(7);
  std::vector<Block> live;
  for (int step = 0; step < 4000; ++step) {
    const bool freeing = step % 600 >= 400;  // phases that give most blocks back
    if (!live.empty() && random() % 5 < (freeing ? 4u : 1u)) {
      const std::size_t k = random() % live.size();
      const Block b = live[k];
      for (std::size_t i = 0; i < b.written; i += 997) ASSERT_EQ(b.p[i], b.mark);
      detail::free_block(b.p, b.bytes);
      live.erase(live.begin() + static_cast<std::ptrdiff_t>(k));
      continue;
    }
    // Some small blocks, some alone in their mapping, most in between.
    const std::size_t bytes = random() % 4 == 0 ? 1000 + random() % 9000
                              : random() % 100 == 0
                                  ? std::size_t{17} << 20
                                  : detail::kMapFrom + random() % (1 << (12 + random() % 9));
    auto* p = static_cast<unsigned char*>(detail::zeroed_block(bytes));
    for (std::size_t i = 0; i < bytes; i += 509) ASSERT_EQ(p[i], 0) << "block of " << bytes;
    ASSERT_EQ(p[bytes - 1], 0);
    const std::size_t written = random() % 3 == 0 ? 0 : random() % 2 ? std::min(bytes, kWhole) : 1;
    const auto mark = static_cast<unsigned char>(1 + step % 255);
    std::memset(p, mark, written);
    live.push_back({p, bytes, written, mark});
  }
  for (const Block& b : live) detail::free_block(b.p, b.bytes);
}

}  // namespace
}  // namespace lf

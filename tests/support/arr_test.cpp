#include "support/arr.hpp"

#include <gtest/gtest.h>

#include "store/store.hpp"

namespace lf {
namespace {

TEST(Arr, CountsFromOneAndGrowsWithZeroFill) {
  Arr<int> a(3);
  a[1] = 7;
  a[3] = 9;
  a.grow(6);
  EXPECT_EQ(a.size(), 6u);
  EXPECT_EQ(a[1], 7);
  EXPECT_EQ(a[3], 9);
  EXPECT_EQ(a[6], 0);
  a.grow(2);  // never shrinks
  EXPECT_EQ(a.size(), 6u);
}

TEST(Text, IsBlankPaddedAndCutToItsWidth) {
  Text<5> t("ab");
  EXPECT_EQ(t.str(), "ab   ");
  EXPECT_EQ(t.trimmed(), "ab");
  t = "abcdefg";
  EXPECT_EQ(t.str(), "abcde");
  EXPECT_TRUE(Text<3>().blank());
}

TEST(Store, StartsAtTheCapacitiesAndGrowsWholeFamilies) {
  EXPECT_GE(L1.busname.size(), kCapBus);
  EXPECT_GE(IJB.LOSSAREA.size(), kCapBranch);
  EXPECT_GE(L13.load2.size(), kCapSwitch);
  grow_loads(kCapLoad + 10);
  EXPECT_GE(L6PP.Q.size(), kCapLoad + 10);
  EXPECT_GE(L6P.line_ctrl.size(), kCapLoad + 10);
}

}  // namespace
}  // namespace lf

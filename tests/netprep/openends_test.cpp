#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "netprep/fixture.hpp"
#include "netprep/netprep.hpp"

namespace lf {
namespace {

using namespace testnet;

using Row = std::tuple<int32_t, int32_t, int32_t, double, double, double, double>;

std::vector<Row> branches() {
  std::vector<Row> v;
  for (int32_t k = 1; k <= NO.nbranch; ++k)
    v.emplace_back(IJB.I[k], IJB.J[k], IJB.No[k], RXB.R[k], RXB.X[k], RXB.B[k], RXB.T[k]);
  return v;
}

void change(int32_t i, int32_t j, int32_t no, double x, double b = 0.0) {
  int32_t c = ++NO.nchange;
  IJC.I[c] = i;
  IJC.J[c] = j;
  IJC.No[c] = no;
  RXC.R[c] = 0.0;
  RXC.X[c] = x;
  RXC.B[c] = b;
  RXC.T[c] = 1.0;
}

void nodes_as_buses() {
  for (int32_t i = 1; i <= LFINF.nbus; ++i) NNTOON[i] = i;
  NNTOON.nnode = NNTOON.nbase = LFINF.nbus;
}

TEST(Eijop, OpenEndBecomesNewNodeBehindWeakLink) {
  for (int32_t mark : {2, 3}) {
    reset(3);
    nodes_as_buses();
    branch(1, 2, 4, 0.1, 0.05, 1.0, mark);
    branch(2, 3, 1, 0.2);
    branch(2, 1, 9, 0.3, 0.0, 1.0, 2);  // as read 2-1 No 9: no branch matches
    IJOPEN.No[3] = 8;
    eijop();
    ASSERT_EQ(NNTOON.nnode, 4) << mark;
    EXPECT_EQ(NNTOON.maxno, 10);
    int32_t bus = mark == 2 ? 1 : 2;
    EXPECT_EQ(NNTOON[4], bus);
    EXPECT_EQ(L1.busname[4].trimmed(), bus == 1 ? "B1      _1" : "B2      _1");
    std::vector<Row> want = {
        {2, 3, 1, 0.01, 0.2, 0.0, 1.0},
        {2, 1, 9, 0.01, 0.3, 0.0, 1.0},
        mark == 2 ? Row{4, 2, 4, 0.01, 0.1, 0.05, 1.0} : Row{1, 4, 4, 0.01, 0.1, 0.05, 1.0},
        mark == 2 ? Row{1, 4, 10, 0.0, kWeakLinkX, 0.0, 1.0}
                  : Row{4, 2, 10, 0.0, kWeakLinkX, 0.0, 1.0},
    };
    EXPECT_EQ(branches(), want) << mark;
    EXPECT_EQ(NO.nchange, 3);
  }
}

TEST(Insulat, WeakShuntOnlyForAnUngroundedIsland) {
  reset(9);
  nodes_as_buses();
  branch(2, 3, 1, 0.1);  // plain lines: island 2-3-1
  branch(3, 1, 1, 0.1);
  branch(4, 5, 1, 0.1, 0.0, 1.05);  // a transformer grounds 4-5
  branch(6, 7, 1, 0.1, 0.02);       // charging grounds 6-7
  branch(8, 9, 1, 0.1);             // 8-9 has a shunt at 9
  branch(9, 9, 0, 5.0);
  auto before = branches();
  insulat();
  auto after = branches();
  ASSERT_EQ(after.size(), before.size() + 1);
  EXPECT_EQ(after.back(), (Row{1, 1, 0, 0.0, kWeakShuntX, 0.0, 1.0}));
  // The undo list removes the shunt again.
  ASSERT_EQ(NO.nchange, 1);
  chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
  EXPECT_EQ(branches(), before);
}

TEST(Chrx, UndoListGivesTheBranchListBack) {
  reset(6);
  branch(1, 2, 1, 0.1);
  branch(2, 1, 2, 0.2);  // parallel, reversed ends
  branch(2, 3, 1, 0.3);
  branch(3, 4, 1, 0.4);
  branch(4, 5, 1, 0.5);
  auto before = branches();

  // Overwrites only: the list comes back in place.
  change(2, 1, 2, 0.9, 0.1);
  change(4, 3, 1, 0.8);
  chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
  EXPECT_EQ(RXB.X[2], 0.9);
  EXPECT_EQ(RXB.B[2], 0.1);
  EXPECT_EQ(IJB.I[2], 2);
  EXPECT_EQ(IJC.I[1], 2);  // the undo entry takes the change's ends
  chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
  EXPECT_EQ(branches(), before);

  // Deletions, an insertion behind a run, an append for a new pair, and a
  // deletion that empties a run so that the next change is appended.
  NO.nchange = 0;
  change(1, 2, 1, kDeleteMark);
  change(1, 2, 7, 0.7);
  change(5, 6, 1, 0.6);
  change(3, 2, 1, kDeleteMark);
  change(2, 3, 1, 0.35);
  change(4, 5, 3, kDeleteMark);  // no such branch: nothing
  chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
  std::vector<Row> want = {
      {2, 1, 2, 0.01, 0.2, 0.0, 1.0}, {1, 2, 7, 0.0, 0.7, 0.0, 1.0}, {3, 4, 1, 0.01, 0.4, 0.0, 1.0},
      {4, 5, 1, 0.01, 0.5, 0.0, 1.0}, {5, 6, 1, 0.0, 0.6, 0.0, 1.0}, {2, 3, 1, 0.0, 0.35, 0.0, 1.0},
  };
  EXPECT_EQ(branches(), want);
  EXPECT_EQ(NO.nchange, 5);
  chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
  const auto after = branches();
  EXPECT_TRUE(std::is_permutation(after.begin(), after.end(), before.begin(), before.end()));
}

}  // namespace
}  // namespace lf

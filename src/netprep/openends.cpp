// Opened line ends and islands.  A line open at one end keeps its charging on
// a node of its own behind a very weak link, and an island without any path
// to earth gets a very weak shunt, so that the admittance matrix stays
// regular.  Both are written as a change list that chrx applies to the
// branch list, leaving behind the list that undoes it.
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "netprep/netprep.hpp"
#include "support/growarr.hpp"

namespace lf {

namespace {

// A branch with charging, or with a ratio off 1, by more than this ties its
// ends to ground, so that the island holding them has a reference.
constexpr double kGroundingTolerance = 1e-9;

struct Branch {
  int32_t I, J, No;
  double R, X, B, T;
};

Branch entry(const IJRec& ij, const RXRec& rx, int32_t k) {
  return {ij.I[k], ij.J[k], ij.No[k], rx.R[k], rx.X[k], rx.B[k], rx.T[k]};
}

// Appends to the change list; a field given as nullptr keeps what its slot holds.
void append_change(int32_t I, int32_t J, int32_t No, double R, double X, const double* B,
                   const double* T) {
  int32_t c = ++NO.nchange;
  IJC.grow(static_cast<std::size_t>(c));
  RXC.grow(static_cast<std::size_t>(c));
  IJC.I[c] = I;
  IJC.J[c] = J;
  IJC.No[c] = No;
  RXC.R[c] = R;
  RXC.X[c] = X;
  if (B) RXC.B[c] = *B;
  if (T) RXC.T[c] = *T;
}

bool is_deletion(double X) {
  return std::trunc(X - 0.5) == kDeleteMark;
}

bool same_pair(int32_t a, int32_t b, int32_t c, int32_t d) {
  return (a == c && b == d) || (a == d && b == c);
}

// The case bus of a node; 0 for a number that is no node.
int32_t bus_of(int32_t node) {
  return node >= 1 && node <= NNTOON.nnode ? NNTOON[node] : 0;
}

}  // namespace

void eijop() {
  if (NO.nbranch == 0) return;
  NNTOON.maxno = 0;
  for (int32_t k = 1; k <= NO.nbranch; ++k) NNTOON.maxno = std::max(NNTOON.maxno, IJB.No[k]);
  NO.nchange = 0;
  const double zero = 0.0, one = 1.0;
  int32_t rows = LFINF.nacline + LFINF.ntrans;
  for (int32_t r = 1; r <= rows; ++r) {
    int32_t mark = IJOPEN.mark[r];
    if (mark == kInService || IJOPEN.I[r] < 1 || IJOPEN.J[r] < 1) continue;
    int32_t k = 1;
    for (; k <= NO.nbranch; ++k) {
      if (IJB.No[k] == IJOPEN.No[r] &&
          same_pair(bus_of(IJB.I[k]), bus_of(IJB.J[k]), IJOPEN.I[r], IJOPEN.J[r]))
        break;
    }
    if (k > NO.nbranch) continue;
    Branch b = entry(IJB, RXB, k);
    if (mark == kOpenAtI) {
      int32_t n = addnode(b.I);
      ++NNTOON.maxno;
      append_change(n, b.J, b.No, b.R, b.X, &b.B, &b.T);
      append_change(b.I, n, NNTOON.maxno, 0.0, kWeakLinkX, &zero, &one);
      append_change(b.I, b.J, b.No, 0.0, kDeleteMark, nullptr, nullptr);
    } else if (mark == kOpenAtJ) {
      int32_t n = addnode(b.J);
      ++NNTOON.maxno;
      append_change(b.I, n, b.No, b.R, b.X, &b.B, &b.T);
      append_change(n, b.J, NNTOON.maxno, 0.0, kWeakLinkX, &zero, &one);
      append_change(b.I, b.J, b.No, 0.0, kDeleteMark, nullptr, nullptr);
    }
  }
  if (NO.nchange != 0) chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
}

void insulat() {
  int32_t nodes = NNTOON.nnode;
  for (int32_t k = 1; k <= NO.nbranch; ++k) nodes = std::max({nodes, IJB.I[k], IJB.J[k]});
  std::vector<char> mark(static_cast<std::size_t>(nodes) + 1, 0);
  std::vector<char> grounded(static_cast<std::size_t>(nodes) + 1, 0);
  Arr<int32_t> EI, EJ, state, ends, start, list, reached;
  int32_t m = 0;
  for (int32_t k = 1; k <= NO.nbranch; ++k) {
    int32_t i = IJB.I[k], j = IJB.J[k];
    if (i < 1 || j < 1) continue;
    mark[static_cast<std::size_t>(i)] = mark[static_cast<std::size_t>(j)] = 1;
    if (i == j || std::fabs(RXB.B[k]) > kGroundingTolerance ||
        std::fabs(RXB.T[k] - 1.0) > kGroundingTolerance)
      grounded[static_cast<std::size_t>(i)] = grounded[static_cast<std::size_t>(j)] = 1;
    if (i == j) continue;
    ++m;
    // The edge arrays double when full, so that filling them takes time in
    // proportion to the edges rather than to their square.
    if (static_cast<std::size_t>(m) > EI.size()) {
      const long long room = std::max<long long>(m, 2 * static_cast<long long>(EI.size()));
      redim(EI, room);
      redim(EJ, room);
      redim(state, room);
    }
    EI[m] = i;
    EJ[m] = j;
    state[m] = 1;
  }
  if (m == 0) return;
  eqno12(m, nodes, EI, EJ, ends, start, list);
  NO.nchange = 0;
  const double one = 1.0;
  // Marks are only ever cleared, so both searches move forward.
  int32_t next_grounded = 1, lowest = 1;
  while (true) {
    while (next_grounded <= nodes && !(mark[static_cast<std::size_t>(next_grounded)] &&
                                       grounded[static_cast<std::size_t>(next_grounded)]))
      ++next_grounded;
    int32_t a = next_grounded;
    if (a > nodes) {
      while (lowest <= nodes && !mark[static_cast<std::size_t>(lowest)]) ++lowest;
      if (lowest > nodes) break;
      a = lowest;
      append_change(a, a, 0, 0.0, kWeakShuntX, nullptr, &one);
    }
    int32_t count = 0;
    eqno4(nodes, m, ends, state, start, list, a, reached, count);
    for (int32_t c = 1; c <= count; ++c) mark[static_cast<std::size_t>(reached[c])] = 0;
  }
  if (NO.nchange != 0) chrx(NO.nbranch, NO.nchange, IJB, RXB, IJC, RXC);
}

void chrx(int32_t& nbranch, int32_t& nchange, IJRec& ijb, RXRec& rxb, IJRec& ijc, RXRec& rxc) {
  std::vector<Branch> work;
  for (int32_t c = 1; c <= nchange; ++c) work.push_back(entry(ijc, rxc, c));

  // Groups of changes with the same unordered end pair, in the order of
  // their first change.
  std::map<std::pair<int32_t, int32_t>, std::size_t> group_of;
  std::vector<std::vector<std::size_t>> groups;
  for (std::size_t c = 0; c < work.size(); ++c) {
    auto key = std::minmax(work[c].I, work[c].J);
    auto [it, fresh] = group_of.try_emplace({key.first, key.second}, groups.size());
    if (fresh) groups.emplace_back();
    groups[it->second].push_back(c);
  }

  int32_t undo = 0;
  auto push_undo = [&](const Branch& b) {
    ++undo;
    ijc.I[undo] = b.I;
    ijc.J[undo] = b.J;
    ijc.No[undo] = b.No;
    rxc.R[undo] = b.R;
    rxc.X[undo] = b.X;
    rxc.B[undo] = b.B;
    rxc.T[undo] = b.T;
  };
  auto push_deletion = [&](const Branch& c) {
    push_undo({c.I, c.J, c.No, 0.0, kDeleteMark, 0.0, 1.0});
  };
  auto put = [&](int32_t k, const Branch& c) {
    ijb.I[k] = c.I;
    ijb.J[k] = c.J;
    ijb.No[k] = c.No;
    ijb.LOSSAREA[k] = 0;
    rxb.R[k] = c.R;
    rxb.X[k] = c.X;
    rxb.B[k] = c.B;
    rxb.T[k] = c.T;
  };
  auto shift = [&](int32_t from, int32_t to) {
    ijb.I[to] = ijb.I[from];
    ijb.J[to] = ijb.J[from];
    ijb.No[to] = ijb.No[from];
    ijb.LOSSAREA[to] = ijb.LOSSAREA[from];
    rxb.R[to] = rxb.R[from];
    rxb.X[to] = rxb.X[from];
    rxb.B[to] = rxb.B[from];
    rxb.T[to] = rxb.T[from];
  };

  std::vector<char> used;
  for (const auto& group : groups) {
    const Branch& first = work[group.front()];
    // The run: parallel branches of the pair stand together.
    int32_t rs = 1;
    while (rs <= nbranch && !same_pair(ijb.I[rs], ijb.J[rs], first.I, first.J)) ++rs;
    int32_t rl = 0;
    while (rs + rl <= nbranch && same_pair(ijb.I[rs + rl], ijb.J[rs + rl], first.I, first.J)) ++rl;
    used.assign(static_cast<std::size_t>(rl + group.size()) + 1, 0);

    for (std::size_t c : group) {
      const Branch& ch = work[c];
      bool del = is_deletion(ch.X);
      if (rl == 0) {
        if (del) continue;
        ++nbranch;
        ijb.grow(static_cast<std::size_t>(nbranch));
        rxb.grow(static_cast<std::size_t>(nbranch));
        put(nbranch, ch);
        push_deletion(ch);
        continue;
      }
      int32_t f = 0;
      for (int32_t q = 0; q < rl; ++q) {
        if (!used[static_cast<std::size_t>(q)] && ijb.No[rs + q] == ch.No) {
          f = rs + q;
          break;
        }
      }
      if (f != 0 && del) {
        push_undo(entry(ijb, rxb, f));
        for (int32_t k = f; k < nbranch; ++k) shift(k + 1, k);
        used.erase(used.begin() + (f - rs));
        --nbranch;
        --rl;
      } else if (f != 0) {
        Branch old = entry(ijb, rxb, f);
        old.I = first.I;
        old.J = first.J;
        push_undo(old);
        rxb.R[f] = ch.R;
        rxb.X[f] = ch.X;
        rxb.B[f] = ch.B;
        rxb.T[f] = ch.T;
        used[static_cast<std::size_t>(f - rs)] = 1;
      } else if (!del) {
        ++nbranch;
        ijb.grow(static_cast<std::size_t>(nbranch));
        rxb.grow(static_cast<std::size_t>(nbranch));
        int32_t at = rs + rl;
        for (int32_t k = nbranch; k > at; --k) shift(k - 1, k);
        put(at, ch);
        push_deletion(ch);
        used[static_cast<std::size_t>(rl)] = 1;
        ++rl;
      }
    }
  }
  nchange = undo;
}

}  // namespace lf

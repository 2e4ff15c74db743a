// Substation splitting: the switch positions of L13 divide a substation bus
// into as many nodes as its switching leaves apart, and the branches and
// loads at the switches follow the node that now holds them.
#include <algorithm>
#include <string>
#include <vector>

#include "io/errlist.hpp"
#include "netprep/netprep.hpp"
#include "support/fmt.hpp"
#include "support/growarr.hpp"

namespace lf {

namespace {

// A switch record that takes part: valid, with both ends numbered as nodes
// (within the store's range of node numbers) and a group that is a bus of
// the case.
bool usable(int32_t k) {
  const int32_t top = std::max(NNTOON.nnode, static_cast<int32_t>(kCapBus));
  return L13.valid[k] >= 1 && L13.I[k] >= 1 && L13.J[k] >= 1 && L13.I[k] <= top &&
         L13.J[k] <= top && L13.group[k] >= 1 && L13.group[k] <= LFINF.nbus;
}

// Moves branch `line` and load `load` (0: none) from bus `from` to `to`.
// Only the first branch and the first load with the number are moved.
void move(int32_t line, int32_t load, int32_t from, int32_t to) {
  if (line != 0) {
    int32_t k = 1;
    while (k <= NO.nbranch && IJB.No[k] != line) ++k;
    if (k <= NO.nbranch) {
      if (IJB.I[k] == from) IJB.I[k] = to;
      if (IJB.J[k] == from) IJB.J[k] = to;
    } else {
      errlist_write("line No." + fmt_i(line, 6) + " that the substation indicated but it" +
                    " is not in AC line & Trans.");
    }
  }
  if (load != 0 && LFINF.nload > 0) {
    int32_t k = 1;
    while (k <= LFINF.nload && L6.No[k] != load) ++k;
    if (k <= LFINF.nload) {
      if (L6.ibs[k] == from) L6.ibs[k] = to;
    } else {
      errlist_write("load No." + fmt_i(load, 4) + " that the substation indicated but it " +
                    " is not in Load Data.");
    }
  }
}

}  // namespace

void addname(const BusName& name, int32_t n, BusName& result) {
  result = name;
  int32_t d = 2;
  for (int32_t q = n / 20; q != 0; q /= 20) ++d;
  for (int32_t s = 0; s < d; ++s) {
    if (result[0] != ' ') break;
    std::copy(result.c + 1, result.c + 10, result.c);
    result[9] = ' ';
  }
  result[static_cast<std::size_t>(10 - d)] = '_';
  if (d < 5) {
    std::string num = fmt_i(n, d - 1);
    std::copy(num.begin(), num.end(), result.c + 11 - d);
  }
}

int32_t addnode(int32_t bus) {
  int32_t n = ++NNTOON.nnode;
  grow_buses(static_cast<std::size_t>(n));
  NNTOON[n] = bus;
  addname(L1.busname[bus], n - NNTOON.nbase, L1.busname[n]);
  return n;
}

void dwsubij() {
  NO.nnode = LFINF.nbus;
  grow_buses(static_cast<std::size_t>(std::max(LFINF.nbus, 0)));
  for (int32_t i = 1; i <= LFINF.nbus; ++i) NNTOON[i] = i;
  NNTOON.nnode = LFINF.nbus;
  NNTOON.nbase = LFINF.nbus;
  if (LF93.ctrl_sub != 0 && LF93.nswitch != 0) {
    dwbus();
    chl23();
  }
  dwload();
  dwgen();
  eijop();
  insulat();
  NO.nnode = NNTOON.nnode;
}

void dwbus() {
  Arr<int32_t> EI, EJ, state, ends, start, list, reached;
  std::vector<int32_t> recs;
  std::vector<char> mark;
  int32_t k = 1;
  while (k <= LF93.nswitch) {
    if (!usable(k)) {
      ++k;
      continue;
    }
    // The group: the usable records from k on with the same group number.
    int32_t g = L13.group[k];
    recs.clear();
    for (; k <= LF93.nswitch; ++k) {
      if (!usable(k)) continue;
      if (L13.group[k] != g) break;
      recs.push_back(k);
    }
    int32_t m = static_cast<int32_t>(recs.size());
    redim(EI, m);
    redim(EJ, m);
    redim(state, m);
    int32_t maxnode = 0;
    for (int32_t e = 1; e <= m; ++e) {
      int32_t r = recs[static_cast<std::size_t>(e - 1)];
      EI[e] = L13.I[r];
      EJ[e] = L13.J[r];
      // A string of three switches joins its ends only when all three are closed.
      state[e] =
          L13.type[r] == 3 ? (L13.sw1[r] + L13.sw2[r] + L13.sw3[r] == 3 ? 1 : 0) : L13.sw1[r];
      maxnode = std::max({maxnode, EI[e], EJ[e]});
    }
    eqno12(m, maxnode, EI, EJ, ends, start, list);
    mark.assign(static_cast<std::size_t>(maxnode) + 1, 0);
    for (int32_t e = 1; e <= m; ++e) mark[static_cast<std::size_t>(EI[e])] = 1;
    for (int32_t e = 1; e <= m; ++e) mark[static_cast<std::size_t>(EJ[e])] = 1;

    // Each component in turn, from its lowest node: the first takes the
    // group's bus, every further one the node added behind the previous.
    int32_t target = g;
    int32_t lowest = 1;
    while (true) {
      while (lowest <= maxnode && !mark[static_cast<std::size_t>(lowest)]) ++lowest;
      if (lowest > maxnode) break;
      int32_t count = 0, flag = 0;
      eqno4(maxnode, m, ends, state, start, list, lowest, reached, count);
      for (int32_t r : recs) {
        for (Arr<int32_t>* end : {&L13.I, &L13.J}) {
          int32_t& v = (*end)[r];
          inout(v, count, reached, flag);
          if (flag != 0) continue;
          if (v <= maxnode) mark[static_cast<std::size_t>(v)] = 0;
          v = target;
        }
      }
      target = addnode(g);
    }
    --NNTOON.nnode;  // the node added last found no component
  }
}

void chl23() {
  for (int32_t k = 1; k <= LF93.nswitch; ++k) {
    if (!usable(k)) continue;
    int32_t I = L13.I[k], J = L13.J[k];
    int32_t line1 = L13.line1[k], load1 = L13.load1[k];
    int32_t line2 = L13.line2[k], load2 = L13.load2[k];
    bool used1 = line1 + load1 != 0, used2 = line2 + load2 != 0;
    int32_t from = NNTOON[I];
    auto tap1_to = [&](int32_t end) {
      if (end > NNTOON.nbase) move(line1, load1, NNTOON[end], end);
    };
    auto tap2_to = [&](int32_t end) {
      if (end > NNTOON.nbase) move(line2, load2, NNTOON[end], end);
    };
    if (L13.type[k] != 3) {
      if (used1) tap1_to(I);
      if (used2) tap2_to(J);
      continue;
    }
    int32_t s1 = L13.sw1[k], s2 = L13.sw2[k], s3 = L13.sw3[k];
    if (s1 == 0 && s2 == 0) {
      // Tap 1 is cut off from I; tap 2 likewise unless switch 3 joins it to J.
      if (used1) move(line1, load1, from, addnode(from));
      if (s3 == 0) {
        if (used2) move(line2, load2, from, addnode(from));
      } else {
        tap2_to(J);
      }
    } else if (s1 == 1 && s2 == 0 && s3 == 0) {
      if (used2) move(line2, load2, from, addnode(from));
      tap1_to(I);
    } else if (s1 == 0 && s2 == 1 && s3 == 0) {
      if (used1 || used2) {
        int32_t n = addnode(from);
        move(line1, load1, from, n);
        move(line2, load2, from, n);
      }
    } else if (s1 == 1 && s2 == 1 && s3 == 0) {
      tap1_to(I);
      tap2_to(I);
    } else if (s1 == 0 && s2 == 1 && s3 == 1) {
      tap2_to(J);
      tap1_to(J);
    } else {
      tap1_to(I);
      tap2_to(J);
    }
  }
}

}  // namespace lf

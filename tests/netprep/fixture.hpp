// Builds small networks directly in the store for the preparation tests.
#pragma once

#include <cstdio>
#include <utility>
#include <vector>

#include "store/store.hpp"

namespace lf::testnet {

// An empty case of n buses named B1, B2, ...
inline void reset(int32_t nbus) {
  LFINF = LFINFRec{};
  LF93 = LF93Rec{};
  NO = NORec{};
  NNTOON.nnode = NNTOON.nbase = NNTOON.maxno = 0;
  LFINF.nbus = nbus;
  grow_buses(static_cast<std::size_t>(nbus));
  for (int32_t i = 1; i <= nbus; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "B%d", i);
    L1.busname[i] = name;
  }
}

// Entries 1..n of a record's column, to compare whole columns at once.
template <class T>
std::vector<T> column(const Arr<T>& a, int32_t n) {
  std::vector<T> v;
  for (int32_t k = 1; k <= n; ++k) v.push_back(a[k]);
  return v;
}

// Appends a branch as read: in IJB/RXB and, with its mark, in IJOPEN.
inline int32_t branch(int32_t i, int32_t j, int32_t no, double x, double b = 0.0, double t = 1.0,
                      int32_t mark = 1) {
  int32_t k = ++NO.nbranch;
  ++LFINF.nacline;
  IJB.I[k] = IJOPEN.I[k] = i;
  IJB.J[k] = IJOPEN.J[k] = j;
  IJB.No[k] = IJOPEN.No[k] = no;
  IJB.LOSSAREA[k] = 0;
  IJOPEN.mark[k] = mark;
  RXB.R[k] = 0.01;
  RXB.X[k] = x;
  RXB.B[k] = b;
  RXB.T[k] = t;
  return k;
}

inline void generator(int32_t bus, int32_t type, double p, double q = 0.0) {
  int32_t g = ++LFINF.ngenerat;
  L5.ibs[g] = bus;
  L5.mode_ctrl[g] = type;
  L5.P[g] = p;
  L5.Q[g] = q;
  L5.V[g] = 1.0;
  L5.merged[g] = 0;
  L5P.Qmax[g] = 10.0 * g;  // tells the rows apart after compaction
}

inline void load(int32_t bus, int32_t no, int32_t type, double p, double q) {
  int32_t l = ++LFINF.nload;
  L6.ibs[l] = bus;
  L6.No[l] = no;
  L6.mode_ctrl[l] = type;
  L6.P[l] = p;
  L6.Q[l] = q;
}

inline void switch_record(int32_t group, int32_t type, int32_t i, int32_t j, int32_t sw1,
                          int32_t sw2 = 0, int32_t sw3 = 0, int32_t line1 = 0, int32_t load1 = 0,
                          int32_t line2 = 0, int32_t load2 = 0) {
  int32_t k = ++LF93.nswitch;
  LF93.ctrl_sub = 1;
  Arr<int32_t>* const cols[] = {&L13.valid, &L13.group, &L13.type,  &L13.I,
                                &L13.J,     &L13.sw1,   &L13.sw2,   &L13.sw3,
                                &L13.line1, &L13.load1, &L13.line2, &L13.load2};
  const int32_t vals[] = {1, group, type, i, j, sw1, sw2, sw3, line1, load1, line2, load2};
  for (int n = 0; n < 12; ++n) (*cols[n])[k] = vals[n];
}

}  // namespace lf::testnet

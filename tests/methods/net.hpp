// Small networks and rows set up by hand for the tests of the methods.
#pragma once

#include <cstdint>

#include "common/lines.hpp"
#include "sparse/ymatrix.hpp"
#include "store/store.hpp"

namespace lf::test {

// Two buses joined by one branch, numbered as they come: bus 1 generator
// rows, bus 2 load rows.  Rows are given by the test.
inline void two_bus(double g, double b) {
  NO.nnode = 2;
  NEW[1] = 1, NEW[2] = 2;
  IOU[1] = 1, IOU[2] = 0;
  Y.IY[1] = 1, Y.IY[2] = 3, Y.IY[3] = 4;
  Y.JY[1] = 1, Y.JY[2] = 2, Y.JY[3] = 2;
  Y.YG[1] = g, Y.YB[1] = b;
  Y.YG[2] = -g, Y.YB[2] = -b;
  Y.YG[3] = g, Y.YB[3] = b;
}

inline void gen(int32_t row, int32_t bus, int32_t type, double p, double q, double v,
                double ang = 0) {
  L5.ibs[row] = bus;
  L5.mode_ctrl[row] = type;
  L5.P[row] = p;
  L5.Q[row] = q;
  L5.V[row] = v;
  L5.Angle[row] = ang;
}

inline void load(int32_t row, int32_t bus, int32_t type, double p, double q, double v = 1) {
  L6.ibs[row] = bus;
  L6.mode_ctrl[row] = type;
  L6.P[row] = p;
  L6.Q[row] = q;
  L6.V[row] = v;
  L6.Angle[row] = 0;
}

}  // namespace lf::test

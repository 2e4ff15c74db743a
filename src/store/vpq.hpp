// The node solution and the bus-to-row index shared by all methods, the
// reports and the database writer.  Both are indexed by internal bus number
// from 1 (NEW[reduced bus]; index 0 unused).  Powers are per unit on
// base_mva.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// inivpq writes the flat start, the methods the iterates (and the powers of
// slack and voltage buses), dctran PDC and QDC; read by the methods, the
// models, the reports and the database writer.
struct VPQRec {
  Arr<double> V;    // voltage magnitude, per unit
  Arr<double> TH;   // voltage angle, radians
  Arr<double> E;    // V cos TH
  Arr<double> F;    // V sin TH
  Arr<double> PG;   // generator active power at the bus
  Arr<double> QG;   // generator reactive power at the bus
  Arr<double> PL;   // load active power at the bus
  Arr<double> QL;   // load reactive power at the bus
  Arr<double> PDC;  // active power injected by DC lines
  Arr<double> QDC;  // reactive power injected by DC lines
  void grow(std::size_t n);
};

// Written by glpos before each method; read by the methods, limit, the
// models and the reports.
struct GLPRec {
  Arr<int32_t> IGEN;   // row of L5 at the bus, 0 for none
  Arr<int32_t> ILOAD;  // row of L6 at the bus, 0 for none
  void grow(std::size_t n);
};

extern VPQRec VPQ;
extern GLPRec GLP;

}  // namespace lf

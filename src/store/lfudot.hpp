// What the user-defined models give back to the network: extra injections
// per internal bus, added to the mismatches by the methods and taken out of
// the node results again for the reports.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

struct LFUDOTRec {
  Arr<double> UDPINJ;  // extra active injection
  Arr<double> UDQINJ;  // extra reactive injection
  Arr<double> UDGINJ;  // real part of an extra current injection
  Arr<double> UDBINJ;  // imaginary part of an extra current injection
  int32_t UDCHG = 0;   // a model changed a branch parameter in this pass
  void grow(std::size_t n);
};

extern LFUDOTRec LFUDOT;

}  // namespace lf

// What the user-defined models give back to the network: extra injections
// per internal bus, added to the mismatches by the methods and taken out of
// the node results again for the reports, and the results of one evaluation
// before they are applied.  Written by the evaluation of the models (dwout,
// fmlfot, iniout); the injections are read by the methods and the reports.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

struct LFUDOTRec {
  // By internal bus from 1, per unit on base_mva; cleared and summed by the
  // evaluation in each pass.
  Arr<double> UDPINJ;  // extra active injection
  Arr<double> UDQINJ;  // extra reactive injection
  Arr<double> UDGINJ;  // real part of an extra current injection
  Arr<double> UDBINJ;  // imaginary part of an extra current injection
  // One element a result of the pass, numbered in the order of the output
  // bindings (sized to the larger of the node and the result count).
  Arr<double> UDOVAL;             // value of the result, in the unit of its output code
  Arr<int32_t> UDOTYP;            // output code 1-200, 0 for none
  Arr<int32_t> UDOLOC1, UDOLOC2;  // location: external bus, or line number and side
  int32_t UDCHG = 0;              // 1: a model changed a branch parameter in this pass
                                  // (udbind sets it; the methods rebuild Y)
  void grow(std::size_t n);
};

// An extra injection or current whose |real| + |imaginary| parts (per unit)
// stay below this is none: the models turn no such current into power, and
// the reports take no such power out of the node results.
constexpr double kNoInjection = 1e-7;

extern LFUDOTRec LFUDOT;

// The present largest power mismatch, per unit: 100 before a method's first
// iteration, then updated by the method once an iteration.  Models read it
// with input code 23.
extern double UDWORK;

}  // namespace lf

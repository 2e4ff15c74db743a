// The bus admittance matrix and the ordering that numbers its rows.
//
// Y holds the diagonal and the upper triangle in the internal numbering: row
// i starts with its diagonal at IY[i], then the entries of higher columns in
// ascending order; IY[nnode+1] = NYENT + 1.  LKROW/LKNEXT chain the entries of
// one column from its diagonal downwards (see adlink).
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

constexpr std::size_t kCapYEntries = 25000;

struct YRec {
  Arr<double> YG, YB;              // conductance and susceptance of each entry
  Arr<int32_t> IY;                 // first entry of each row (nnode + 1 used)
  Arr<int32_t> JY, LKROW, LKNEXT;  // column of each entry, column chains
  // Makes room for n rows and ne entries.
  void grow(std::size_t n, std::size_t ne);
};

extern YRec Y;
extern Arr<int32_t> NEW;  // reduced bus number -> internal number, 0 without a branch
extern Arr<int32_t> IOU;  // by internal number: distinct higher-numbered neighbours

}  // namespace lf

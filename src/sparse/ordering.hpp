// Node ordering: renumbers the buses of the prepared network so that the
// triangular factors stay sparse.  Minimum degree by simulated elimination,
// ties broken by the smaller level (how many eliminations have touched the
// node's neighbourhood), then by the lower number.
//
// Input: NO.nbranch rows of IJB in reduced bus numbers (I equal to J is a
// shunt row and joins nothing).  Output: NEW (reduced -> internal number, 0
// for a bus without a true branch), IOU (by internal number: how many
// distinct higher-numbered buses are joined to it), NO.MAXBUS, NO.nnode,
// NO.NYENT.
#pragma once

#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// Orders the nodes of the case: maxnob, optnob_mdml, upnum.
void fomy11();

// maxbus = the largest bus number in i[1..nb], j[1..nb]; 0 when nb < 1.
void maxnob(int32_t nb, const Arr<int32_t>& i, const Arr<int32_t>& j, int32_t& maxbus);

// The minimum-degree ordering.  n receives the number of nodes that have a
// true branch, newnum[1..maxbus] the internal numbers (0 without a branch),
// cells the number of neighbour entries that the elimination made.
void optnob_mdml(int32_t nb, const Arr<int32_t>& i, const Arr<int32_t>& j, int32_t maxbus,
                 int32_t& n, Arr<int32_t>& newnum, int32_t& cells);

// Upper-row counts: iou[1..n] = distinct higher-numbered neighbours of each
// internal node, ny = n + the number of distinct bus pairs.
void upnum(int32_t nb, int32_t n, const Arr<int32_t>& newnum, Arr<int32_t>& iou, int32_t& ny,
           const Arr<int32_t>& i, const Arr<int32_t>& j);

}  // namespace lf

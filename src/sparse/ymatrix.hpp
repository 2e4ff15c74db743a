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
  // The entries above the diagonal once more, by column: column c's stand at
  // places CSTART[c] .. CSTART[c+1]-1 (c = 1..nnode) in ascending row, with
  // their row (CROW) and their conductance and susceptance (CG, CB), per
  // unit.  The entries and order of the column chains, side by side in
  // memory.  Written by fomy12, read by the Jacobians.
  Arr<int32_t> CSTART, CROW;
  Arr<double> CG, CB;
  // Makes room for n rows and ne entries.
  void grow(std::size_t n, std::size_t ne);
};

extern YRec Y;
extern Arr<int32_t> NEW;  // reduced bus number -> internal number, 0 without a branch
extern Arr<int32_t> IOU;  // by internal number: distinct higher-numbered neighbours

// Builds Y from IJB/RXB on the ordering of fomy11: formy, then adlink, then
// the layout by column.  A second call with changed branch values gives the
// same positions.
void fomy12();

// Values and structure of Y.  Series branches add -y/kk off the diagonal,
// y + jB at the I end and y/kk^2 + jB at the J end (kk the turns ratio at the
// J end as RXB.T defines it, 1 when not above 1e-6); a shunt row (I equal to J) adds its
// impedance's admittance to the diagonal and ignores B.
void formy(int32_t nb, int32_t n, int32_t ny, const Arr<int32_t>& newnum, const Arr<int32_t>& iou,
           const Arr<int32_t>& i, const Arr<int32_t>& j, const Arr<double>& r, const Arr<double>& x,
           const Arr<double>& bc, const Arr<double>& k, Arr<double>& yg, Arr<double>& yb,
           Arr<int32_t>& iy, Arr<int32_t>& jy);

// Column chains of Y: from the diagonal d = iy[c], lknext[d] is the entry of
// column c in the smallest row above the diagonal and lkrow[d] that row, and
// so on in ascending row; the last entry leads back to d with lkrow = c.  A
// column without entries above the diagonal has lknext[d] = 0.
void adlink(const Arr<int32_t>& iy, const Arr<int32_t>& jy, int32_t n, int32_t ny,
            Arr<int32_t>& lkrow, Arr<int32_t>& lknext);

}  // namespace lf

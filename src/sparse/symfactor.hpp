// Symmetric factorisation U' D U of a real symmetric sparse matrix held as
// its upper triangle on the index structure of Y, and the solution with it.
//
// Factor layout (arrays sized by the caller; they grow when the fill-in needs
// more room than given):
//   il[i]          position of row i's pivot; il[n+1] is one past the last entry
//   jl[s], lv[s]   column and value: at il[i] the pivot d[i], after it the
//                  entries u[i][j], j > i, already divided by the pivot, in
//                  ascending column
//   lnrow, lnpos   column chains: from the pivot position of column c, lnpos
//                  leads to the entries of column c in ascending row and
//                  lnrow names the row of the entry it leads to; the last one
//                  leads back to the pivot with lnrow = c.  A column with no
//                  entry above the diagonal has lnrow = lnpos = 0 at its pivot.
#pragma once

#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// Smallest pivot size kept, for the scalar pivots of the symmetric factors and
// the determinants of the pivot blocks of the block factors alike; smaller ones
// are replaced by +-kTinyPivot.
constexpr double kTinyPivot = 1e-20;

// Factorises the n x n matrix given by rows: entries ia[i] .. ib[i+1]-1 of
// ja (columns, diagonal first, then ascending) and a (values).  The fill-in is
// found row by row.  A pivot of size at most 1e-20 becomes 1e-20 (0 or above)
// or -1e-20.  capacity is the expected entry count of the factor.
void symtri71(int32_t n, int32_t nentries, int32_t capacity, const Arr<int32_t>& ia,
              const Arr<int32_t>& ib, const Arr<int32_t>& ja, const Arr<double>& a,
              Arr<int32_t>& il, Arr<int32_t>& jl, Arr<int32_t>& lnrow, Arr<int32_t>& lnpos,
              Arr<double>& lv);

// Sparse row update w += alpha * x.  Arrays are addressed by their first
// element (index 1).  w[1..nw], wj[1..nw] is a row with ascending columns,
// room for nfix entries; x[1..m], xj[1..m] another, of which only the entries
// with column at or above thr take part.  Columns present in both get alpha
// times the value added; columns only in x are inserted in order.  nw becomes
// the new count.
void daxpy(int32_t nfix, int32_t& nw, double* w, int32_t* wj, int32_t m, const double* x,
           const int32_t* xj, int32_t thr, double alpha);

// Solves with the factors of symtri71: k = 1 a real right-hand side b into x;
// k = 2 a complex one, with the imaginary parts of factor, right-hand side and
// result in lvi, bi, xi (untouched when k = 1).  In the real solution a pivot
// below 1e-20 in size is overwritten in the factor by +-1e-20.  The third and
// fifth arguments have no effect.  b and x may be the same array.
void solvxs(int32_t k, int32_t n, int32_t, int32_t capacity, int32_t, const Arr<int32_t>& il,
            const Arr<int32_t>& jl, const Arr<int32_t>& lnrow, const Arr<int32_t>& lnpos,
            Arr<double>& lv, const Arr<double>& lvi, const Arr<double>& b, const Arr<double>& bi,
            Arr<double>& x, Arr<double>& xi);

}  // namespace lf

// Symmetric factorisation U' D U of a real symmetric sparse matrix held as
// its upper triangle on the index structure of Y, and the solution with it.
//
// Factor layout (SymFactors, with the values in an array of their own):
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

// A view of the matrix: n rows, entries ia[i] .. ia[i+1]-1 of ja (columns,
// diagonal first, then ascending) and a (values), all from index 1.  On the
// index structure of Y: ia = IY, ja = JY.
struct SymMatrix {
  int32_t n = 0;
  const int32_t* ia = nullptr;
  const int32_t* ja = nullptr;
  const double* a = nullptr;
};

// The positions of the factors, laid out as above: rows (il), columns (jl)
// and column chains (lnrow, lnpos).  symtri71 writes them, solvxs reads them;
// the values stand apart (lv), so that two matrices of one pattern share one.
struct SymFactors {
  int32_t n = 0;  // rows factorised
  Arr<int32_t> il, jl, lnrow, lnpos;
};

// Factorises the matrix into f and lv, finding the fill-in row by row.  A
// pivot of size at most 1e-20 becomes 1e-20 (0 or above) or -1e-20.
// capacity is the expected entry count of the factors; they grow beyond it
// when the fill-in needs more.
void symtri71(const SymMatrix& a, int32_t capacity, SymFactors& f, Arr<double>& lv);

// Sparse row update w += alpha * x.  Arrays are addressed by their first
// element (index 1).  w[1..nw], wj[1..nw] is a row with ascending columns,
// room for nfix entries; x[1..m], xj[1..m] another, of which only the entries
// with column at or above thr take part.  Columns present in both get alpha
// times the value added; columns only in x are inserted in order.  nw becomes
// the new count.
void daxpy(int32_t nfix, int32_t& nw, double* w, int32_t* wj, int32_t m, const double* x,
           const int32_t* xj, int32_t thr, double alpha);

// Solves with the factors of symtri71 the real right-hand side b into x (b
// and x may be the same array).  A pivot below 1e-20 in size is overwritten
// in lv by +-1e-20.
void solvxs(const SymFactors& f, Arr<double>& lv, const Arr<double>& b, Arr<double>& x);

// Complex vectors by index: real and imaginary parts, read or written.
struct ComplexIn {
  const Arr<double>& re;
  const Arr<double>& im;
};
struct ComplexOut {
  Arr<double>& re;
  Arr<double>& im;
};

// The same for a complex right-hand side b on complex factor values lv,
// into x (b and x may be the same); the factor is not written.
void solvxs(const SymFactors& f, const ComplexIn& lv, const ComplexIn& b, const ComplexOut& x);

}  // namespace lf

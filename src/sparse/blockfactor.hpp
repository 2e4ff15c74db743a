// Nonsymmetric factorisation of a sparse matrix of 2 x 2 real blocks, the
// matrices of the Newton-type methods, and the solution with it.
//
// A block is four parallel values [a b; c d].  The matrix is held by rows:
// ia[1..n+1], ja (columns ascending, the diagonal among them), aa, ab, ac, ad.
// Its pattern must be structurally symmetric (a slack bus has only its
// diagonal and no other row has an entry in its column).
//
// A = L U (left-looking Crout by blocks): L lower triangular with the pivot
// blocks on its diagonal, U upper triangular with identity blocks on its
// diagonal.  Both use one set of positions: il[i] = iu[i] holds the pivot of
// column i of L (and the identity of row i of U); the positions after it up
// to il[i+1]-1 hold the L entries of column i by ascending row jl and, at the
// same places, the U entries of row i by ascending column ju = jl.  The chain
// unrow/unpos (= lnrow/lnpos) runs from the pivot position of column c
// through the U entries of column c in ascending row (which are also the L
// entries of row c in ascending column); lnrow names the row of the entry
// that lnpos leads to, the last leads back with lnrow = c, and a column
// without such entries has 0, 0 at its pivot.  The callers may pass the same
// arrays for il and iu, jl and ju, lnrow and unrow, lnpos and unpos.
//
// Output arrays grow when the fill-in needs more than the capacity given.
#pragma once

#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// Links the column chains of the matrix on and below the diagonal: for
// column c, chfirst[c] is the diagonal's position (chfirstrow[c] = c), chpos
// leads on through the entries below it in ascending row, chrow naming the
// row of the entry led to, and the last entry leads back to chfirst[c].
// upfirst[r] is the position of the first entry right of the diagonal of row r.
void adlink7l(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, int32_t nent,
              Arr<int32_t>& chrow, Arr<int32_t>& chpos, Arr<int32_t>& chfirst,
              Arr<int32_t>& chfirstrow, Arr<int32_t>& upfirst);

// Factorises the matrix, finding the fill-in: builds the pattern and values
// of the L and U stores and their chains.  A pivot block whose determinant
// is at most 1e-20 in size gets the determinant +-1e-20.
void nonsym74(int32_t n, int32_t nent, int32_t capacity, const Arr<int32_t>& chfirst,
              const Arr<int32_t>& upfirst, const Arr<int32_t>& chfirstrow,
              const Arr<int32_t>& chrow, const Arr<int32_t>& chpos, const Arr<int32_t>& ia,
              const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
              const Arr<double>& ac, const Arr<double>& ad, Arr<int32_t>& il, Arr<int32_t>& jl,
              Arr<int32_t>& lnrow, Arr<int32_t>& lnpos, Arr<double>& la, Arr<double>& lb,
              Arr<double>& lc, Arr<double>& ld, Arr<int32_t>& iu, Arr<int32_t>& ju,
              Arr<int32_t>& unrow, Arr<int32_t>& unpos, Arr<double>& ua, Arr<double>& ub,
              Arr<double>& uc, Arr<double>& ud);

// Factorises a matrix of the same pattern again on the stores and chains
// that nonsym74 built: only values change, nothing is added.
void nonsym74o(int32_t n, int32_t nent, int32_t capacity, const Arr<int32_t>& chfirst,
               const Arr<int32_t>& upfirst, const Arr<int32_t>& chfirstrow,
               const Arr<int32_t>& chrow, const Arr<int32_t>& chpos, const Arr<int32_t>& ia,
               const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
               const Arr<double>& ac, const Arr<double>& ad, const Arr<int32_t>& il,
               const Arr<int32_t>& jl, const Arr<int32_t>& lnrow, const Arr<int32_t>& lnpos,
               Arr<double>& la, Arr<double>& lb, Arr<double>& lc, Arr<double>& ld,
               const Arr<int32_t>& iu, const Arr<int32_t>& ju, const Arr<int32_t>& unrow,
               const Arr<int32_t>& unpos, Arr<double>& ua, Arr<double>& ub, Arr<double>& uc,
               Arr<double>& ud);

// The whole factorisation in one call, chains included, with the factors in
// the form that solvxn takes (the L and U stores share iu, ju, unrow, unpos).
void nonsym(int32_t n, int32_t nent, int32_t capacity, const Arr<int32_t>& ia,
            const Arr<int32_t>& ja, const Arr<double>& aa, const Arr<double>& ab,
            const Arr<double>& ac, const Arr<double>& ad, Arr<int32_t>& iu, Arr<int32_t>& ju,
            Arr<int32_t>& unrow, Arr<int32_t>& unpos, Arr<double>& ua, Arr<double>& ub,
            Arr<double>& uc, Arr<double>& ud, Arr<double>& la, Arr<double>& lb, Arr<double>& lc,
            Arr<double>& ld);

// Solves L U x = r with the factors: x1, x2 the first and second unknown of
// each block row, r1, r2 the right-hand sides (they may be x1, x2 themselves).
// Note the order of the c and b values of both stores in the call.
void solvxn(int32_t n, int32_t nent, const Arr<int32_t>& iu, const Arr<int32_t>& ju,
            const Arr<int32_t>& unrow, const Arr<int32_t>& unpos, const Arr<double>& ua,
            const Arr<double>& uc, const Arr<double>& ub, const Arr<double>& ud,
            const Arr<double>& la, const Arr<double>& lc, const Arr<double>& lb,
            const Arr<double>& ld, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
            Arr<double>& x2);

}  // namespace lf

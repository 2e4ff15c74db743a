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
// diagonal.  Both use one set of positions: the pivot of column i of L (and
// the identity of row i of U) stands first, and the positions after it hold
// the L entries of column i by ascending row and, at the same places, the U
// entries of row i by ascending column.
//
// The rows are worked out, and stored, in an order of their own: a postorder
// of the elimination tree (the parent of row i is the first column right of
// its pivot in U), so that each row follows the rows it takes from, the rows
// of one branch of the network lie together and the work of one branch stays
// in the cache instead of reaching over the whole store.  A row's place in
// that order says where it stands; each value still takes the same
// operations in the same order (the earlier rows in ascending number), so
// the factors and solutions are those of working the rows out by number.
//
// nonsym74 finds the pattern of the factors from the matrix's pattern alone
// (the fill-in), lays it out for the elimination and works out the values on
// it; nonsym74o works out the values again on the same pattern, from blocks
// that the matrix's writer put straight into the order in which the
// elimination reads them (load_sink), which spares a pass over the whole
// matrix.  Both take the same steps in the same order for each value, so
// they give the same factors to the last bit.
//
// The routines take three small views and stores: BlockPattern, the
// matrix's rows and where their upper parts begin; BlockValues, its blocks; BlockStore, the
// factors with the work memory that their calculation keeps between calls.
#pragma once

#include <cstdint>
#include <vector>

#include "sparse/blockwork.hpp"
#include "sparse/hugepages.hpp"
#include "support/arr.hpp"

namespace lf {

// What adlink7l links of the matrix: upfirst[r], the position of the first
// entry right of the diagonal of row r (1-based, by row 1..n), so that the
// layout of the factors walks each row's part on and below the diagonal and
// its part right of it apart.  Written by adlink7l, read by nonsym74.
struct BlockChains {
  Arr<int32_t> upfirst;
};

// A view of the matrix's pattern: n block rows, ia[1..n+1] the first
// position of each row, ja the column of each position (ascending, the
// diagonal among them), and where each row's part right of the diagonal
// begins.
struct BlockPattern {
  int32_t n = 0;
  const int32_t* ia = nullptr;
  const int32_t* ja = nullptr;
  const BlockChains* chains = nullptr;
};

// One 2 x 2 block [a b; c d] of a matrix, as {a, b, c, d}.
struct MatrixBlock {
  double v[4];
};

// A view of the matrix's blocks, by position.
struct BlockValues {
  const MatrixBlock* a = nullptr;
};

// How many positions ahead a writer through a BlockSink asks for the block
// it will write; value_at holds that many spare entries past its end.
constexpr int32_t kSinkAhead = 80;

// Where the writer of a matrix puts its blocks, position by position in
// ascending order: the block of position p at a[at[p]], or at a[p] when
// there is no at.  Through at the blocks land scattered; the line of the
// block some positions on is asked for early, so that the stores do not
// wait on memory one after the other.
struct BlockSink {
  MatrixBlock* a = nullptr;     // the store the blocks go to
  const int32_t* at = nullptr;  // by position 1..: the index in a (value_at), or none
  void put(int32_t p, double xa, double xb, double xc, double xd) const {
    if (!at) {
      a[p] = {{xa, xb, xc, xd}};
      return;
    }
    __builtin_prefetch(a + at[p + kSinkAhead], 1);
    a[at[p]] = {{xa, xb, xc, xd}};
  }
};

// An entry of a layout: a row or column (its number or its place, as the
// layout says) and a position in the factor store or the matrix.
struct Link {
  int32_t row, pos;
};

// The factors and the work memory of their calculation.  nonsym74 lays out
// the pattern and fills the values, nonsym74o the values again, solvxn reads
// them.  Kept by the caller between calls, so that a refactorisation
// allocates nothing.  A place is a row's rank 1..n in the working order.
struct BlockStore {
  int32_t n = 0;  // block rows factorised
  // The smallest row number whose pivot block's determinant is not finite,
  // 0 if none: written by each factorisation, read by its callers.
  int32_t overflow_at = 0;
  std::vector<int32_t> order;  // [1..n] by place: the row (bus number) worked out there
  std::vector<int32_t> iu;     // [1..n] by place: the row's pivot position; [n+1] one past the last
  std::vector<int32_t> ju;     // by position: the place of the column of U (= row of L)
  // The L blocks by position, at a pivot the pivot block; and the U blocks
  // without the pivots (whose identity is implied): the block of position s
  // of the row at place c at s - c, as the rows before it have a pivot each.
  // Two stores of their own, so that the backward solution reads U alone and
  // the pivots cost it no memory traffic.
  std::vector<FactorBlock, HugePageAlloc<FactorBlock>> lval, uval;
  // The layouts of the elimination, made by nonsym74 and read by each
  // factorisation, both by place c of a column, in the order of the work.
  // above[start[c] ..]: the entries of U in column c (the place of their row
  // and their position), the earlier rows that column c's elimination
  // takes, by ascending row number.  loads[load_start[2c-1] ..]: the
  // matrix's entries on and below the diagonal in column c, and from
  // load_start[2c] those right of the diagonal in row c, each with the place
  // of its row (below) or column (right) and its position in the matrix.
  std::vector<int32_t> start, load_start;
  std::vector<Link> above, loads;
  // By matrix position: the place 1.. of its block in the order of loads
  // (the entry loads[t] has place t+1), 0 for a position that no column
  // loads and for the kSinkAhead spare entries past the last position.
  // Made by nonsym74, read by place_values and through load_sink.
  std::vector<int32_t> value_at;
  // The matrix's blocks by place in the order of loads: copied there by
  // place_values, or written there through load_sink; read by each
  // factorisation.  Before a factorisation that finds the fill-in, the same
  // store may hold the blocks by position instead (position_sink), which
  // that factorisation reads there; the later ones then overwrite them.  It
  // only grows, and its memory comes zeroed and untouched, so that room the
  // matrix does not use costs nothing.
  std::vector<MatrixBlock, ZeroAlloc<MatrixBlock>> low;
  BlockWork work{0};  // the dense work row of the factorisations, by place
  // The two unknowns of a block row by place, 1..n: the right-hand side,
  // then the forward and then the backward solution, written and read by the
  // factorisation with right-hand sides and by solvxn.
  struct Sum {
    double s1, s2;
  };
  std::vector<Sum> sol;
};

// Finds where the part right of the diagonal of each row of the matrix
// begins (rows ia, columns ja, n rows).
void adlink7l(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, BlockChains& ch);

// The right-hand sides of a solution that goes along with a factorisation,
// by row 1..n: the factorisation then does its forward part row by row while
// the factor's rows are at hand, and solvxn_back finishes it.
struct BlockRhs {
  const double* r1;
  const double* r2;
};

// Factorises the matrix, finding the fill-in: builds the pattern of the
// factors, its layouts and the values, reading the blocks of v by position
// (they may stand in f.low, written through position_sink).  A pivot block whose determinant is at
// most 1e-20 in size gets the determinant +-1e-20.  With rhs, also the
// forward part of the solution with it.
void nonsym74(const BlockPattern& a, const BlockValues& v, BlockStore& f, const BlockRhs* rhs);

// Where a matrix of the pattern that nonsym74 laid out in f puts its blocks
// for nonsym74o: straight into f.low.
BlockSink load_sink(BlockStore& f);

// Where a matrix of up to `positions` positions puts its blocks by position
// for nonsym74 with the values {f.low.data()}: into f.low itself, so that
// the blocks by position and the blocks in the order of the factorisation
// share one store.  f.low grows to hold them; it moves only here.
BlockSink position_sink(BlockStore& f, int32_t positions);

// Copies the blocks of a matrix of the pattern laid out in f, given by
// position, into f.low for nonsym74o.
void place_values(const BlockPattern& a, const BlockValues& v, BlockStore& f);

// Factorises a matrix of the same pattern again on the factors that nonsym74
// built, its blocks in f.low (through load_sink or place_values): only values
// change, nothing is added.  rhs as for nonsym74.
void nonsym74o(const BlockPattern& a, BlockStore& f, const BlockRhs* rhs);

// The whole factorisation in one call, adlink7l included, for a matrix given
// by its rows alone.
void nonsym(const Arr<int32_t>& ia, const Arr<int32_t>& ja, int32_t n, const BlockValues& v,
            BlockStore& f);

// Solves L U x = r with the factors: x1, x2 the first and second unknown of
// each block row, r1, r2 the right-hand sides (they may be x1, x2 themselves).
void solvxn(BlockStore& f, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
            Arr<double>& x2);

// Finishes the solution whose forward part the last factorisation did with
// its right-hand sides: x1, x2 get what solvxn would give for them.
void solvxn_back(BlockStore& f, Arr<double>& x1, Arr<double>& x2);

}  // namespace lf

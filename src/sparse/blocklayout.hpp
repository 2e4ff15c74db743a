// The layout of the block factors, found from the matrix's pattern alone:
// the pattern of the factors with its fill-in, the working order of the rows
// and the lists that lead each step of a factorisation to its data.
#pragma once

#include "sparse/blockfactor.hpp"

namespace lf {

// Lays out f for the matrix's pattern: order, iu, ju (and room in lval,
// uval), start/above and load_start/loads/value_at (and room in low, which
// only grows).
void lay_out_factors(const BlockPattern& a, BlockStore& f);

}  // namespace lf

// The Newton-type load-flow methods in rectangular coordinates and their
// Jacobians.  The unknowns are E and F of each bus; the two equations of a bus
// form one 2 by 2 block, so the Jacobian is a matrix of blocks held by rows
// (IA, JA, A) in the ordering of the admittance matrix.
#pragma once

#include <cstdint>

#include "sparse/blockfactor.hpp"
#include "support/arr.hpp"

namespace lf {

// The kind of each bus as the last Jacobian saw it, by internal bus 1 to
// nnode: 0 P and Q given, 1 voltage fixed, 2 slack.  Written by formj and
// iformj at the start of each forming and read by them alone; kept between
// calls so that forming allocates nothing.
extern Arr<uint8_t> JKIND;

// Power-equation Jacobian at the present E, F: its pattern into ia, ja and
// its blocks into out.  ir, ii are the bus current sums left by allbpq; nent
// is the capacity of the matrix (2 NYENT).
void formj(int32_t nent, const Arr<double>& ir, const Arr<double>& ii, Arr<int32_t>& ia,
           Arr<int32_t>& ja, const BlockSink& out);

// Current-equation Jacobian: rows with P and Q given hold the real and
// imaginary current balance, rows with V given the power form.  d1, d2 hold PC,
// QC on entry and the mismatches on return.
void iformj(int32_t nent, const Arr<double>& ir, const Arr<double>& ii, Arr<double>& d1,
            Arr<double>& d2, Arr<int32_t>& ia, Arr<int32_t>& ja, const BlockSink& out);

// The methods; status is the calculation's convergent flag (1 converged).
void newtonp(int32_t& status);  // method 4: decoupled start, power mismatch test
void newton(int32_t& status);   // method 1: correction test
void optimu(int32_t& status);   // method 2: correction scaled by the optimum factor
void inewton(int32_t& status);  // method 3: current equations
void nlfast(int32_t& status);   // constant Jacobian with the exact second-order term

// Gives back the memory of the Jacobian's factors once the iterations are
// over: nothing reads them afterwards, the writing of the results takes the
// memory instead of fresh pages, and the next calculation lays them out anew
// in any case.
void release_factors();

}  // namespace lf

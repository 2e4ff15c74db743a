// What the Newton-type methods share beyond the common iteration machinery:
// the bus tests of the Jacobian, the work storage of one call, the block
// factors of the Jacobian, the correction step and the iteration table.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "methods/finite.hpp"
#include "methods/iteration.hpp"
#include "sparse/blockfactor.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "support/arr.hpp"

namespace lf {

// A bus with P and Q given: neither of its rows fixes the voltage.
inline bool pq_row(int32_t i) {
  const int32_t g = GLP.IGEN[i], l = GLP.ILOAD[i];
  return !(g != 0 && iter_type(L5.mode_ctrl[g]) < kTypeSlack) &&
         !(l != 0 && iter_type(L6.mode_ctrl[l]) < kTypeSlack);
}

// Everything a Newton-type method works on.  One store serves all calls: it
// is sized at the start of each call from nnode and NYENT and keeps its
// memory for later calculations, like the work arrays of the ordering, so
// that neither the iterations nor a repeated calculation allocate or clear
// memory.  Every value is written before it is read in a call.
struct NewtonWork {
  int32_t n = 0;               // buses
  int32_t nent = 0;            // capacity of the Jacobian, 2 NYENT
  Arr<double> IR, II, PC, QC;  // bus current sums and calculated injections
  Arr<double> D1, D2;          // mismatches, the right-hand sides
  Arr<double> X1, X2;          // corrections of E and F
  Arr<double> C1, C2;          // the power of the correction alone
  Arr<int32_t> IA, JA;         // the Jacobian by rows
  BlockChains chains;          // where the Jacobian's rows pass the diagonal, with each new pattern
  // Its block factors, sized by the fill-in they need; their load store
  // (factors.low) also takes the Jacobian's blocks by position when the
  // fill-in is found anew.
  BlockStore factors;
  Arr<int32_t> FIRST;  // by internal bus: the first reduced number with that internal number
  // True when correct() has moved E, F since TH was last set: the angles
  // then follow from E, F through settle_angles, which the methods call on
  // their way out.  Cleared at the start of each pass, where TH is set anew.
  bool angles_due = false;
  bool saved_angles_due = false;  // angles_due when the buses were last saved (save_buses)
};

// Brings TH in line with E, F after corrections.  Without user-defined
// models nothing reads the angles during the iterations, so they are worked
// out once at the end instead of in every iteration; the values are the same.
void settle_angles(NewtonWork& w);

// Saves the buses before a correction (BusState::save), noting whether their
// angles were due, so that diverge brings back the same angles.
void save_buses(NewtonWork& w, BusState& before);

// Settles the angles when a method returns, whichever way it returns.
struct AnglesOnReturn {
  NewtonWork& w;
  ~AnglesOnReturn() { settle_angles(w); }
};

// The one store of the Newton-type methods: written and read by them and by
// the routines of this file; sized by newton_work() at the start of a call.
extern NewtonWork NWORK;

// NWORK, sized for the present case.
NewtonWork& newton_work();

// Where the Jacobian's blocks go for factorise_solve with the same `first`:
// by position into the factors' load store when the fill-in is to be found
// anew, otherwise straight into the order in which the factorisation reads
// them.
BlockSink jacobian_sink(NewtonWork& w, bool first);

// Forms the Jacobian's factors and solves them for the right-hand sides
// r1, r2 into x1, x2: with `first` the fill-in is found anew, otherwise the
// pattern of the last such call is reused and the blocks are those written
// through jacobian_sink(w, false).  Entries so large (a load of
// 1e200, say) that a pivot block's determinant overflows would invert to
// zeros and the bus would get a correction of 0, which reads as converged;
// such a bus is noted in the factors' overflow_at and its correction is NaN,
// which ends the iteration there.
void factorise_solve(NewtonWork& w, bool first, const Arr<double>& r1, const Arr<double>& r2,
                     Arr<double>& x1, Arr<double>& x2);
// The factors alone of the Jacobian written by position (jacobian_sink with
// `first`), in one routine that keeps nothing for a later factorisation;
// overflow_at as above.
void factorise_whole(NewtonWork& w);

// Solves the factors of factorise_whole for the right-hand sides r1, r2; at
// the bus overflow_at the correction is NaN.
void solve(NewtonWork& w, const Arr<double>& r1, const Arr<double>& r2, Arr<double>& x1,
           Arr<double>& x2);

// Power mismatches D1, D2 of all buses at the present PC, QC (keeping PG, QG,
// PL, QL).
void power_mismatch(NewtonWork& w);

// E -= mu X1, F -= mu X2 for every bus, then V from them; TH is due.
void correct(NewtonWork& w, double mu);

// Ends an iteration on a value that is not finite at internal bus `at`:
// the line that says so, the buses back in the state `before` and the
// powers of that state in PC, QC and VPQ; status becomes 0.
void diverge(NewtonWork& w, const BusState& before, std::string_view what, int32_t at,
             int32_t& status);

// At convergence: limit may switch bus types.  True when it changed none,
// so that the method is done; otherwise it iterates on with the same T.
bool limits_hold(NewtonWork& w);

// Polls for the user's stop at the end of an iteration.
bool interrupted();

// Prints the heading of an iteration table, one line at a time.
void print_heading(std::string_view title, int32_t rule, std::string_view columns, bool factor);

// Prints one row of the table: T, the name of bus ip, the largest value and,
// when given, the factor.
void print_row(const NewtonWork& w, int32_t t, int32_t ip, double value,
               std::optional<double> factor = std::nullopt);

}  // namespace lf

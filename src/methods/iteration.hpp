// The machinery that every load-flow method shares: the bus-to-row index,
// the flat start, the network sum, the per-bus mismatch rules and the pieces
// of the iteration table.  All arrays are indexed by internal bus number.
#pragma once

#include <cstdint>
#include <string>

#include "sparse/ymatrix.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "support/angles.hpp"
#include "support/arr.hpp"

namespace lf {

// Below this |P| + |Q| a generator row counts as having no output (single-precision 1e-7).
constexpr double kNoOutput = 0.00000010000000116860974;

// The bus type of a row as the iteration reads it: -3 (P and Q given with
// voltage limits) is a P-Q row until the limits switch it.
inline int32_t iter_type(int32_t mode_ctrl) {
  return mode_ctrl == kTypePQVlim ? kTypePQ : mode_ctrl;
}

// Internal number of a reduced bus number, 0 when it has none.  Inline: the
// mismatch loops ask it for every generator and load in every iteration.
inline int32_t internal_bus(int32_t reduced) {
  if (reduced < 1 || static_cast<std::size_t>(reduced) > NEW.size()) return 0;
  return NEW[reduced];
}

// A slack bus: its generator row or its load row has type 0 (GLP must be set).
inline bool slack_bus(int32_t i) {
  const int32_t g = GLP.IGEN[i], l = GLP.ILOAD[i];
  return (g != 0 && L5.mode_ctrl[g] == kTypeSlack) || (l != 0 && L6.mode_ctrl[l] == kTypeSlack);
}

// The largest of |a[i]| and |b[i]| over buses 1 to n (pass one array twice
// for one); `at` becomes the first bus that reaches it and keeps its value
// when nothing is above 0.
double largest(const Arr<double>& a, const Arr<double>& b, int32_t n, int32_t& at);

// Fills GLP for buses 1..nnode and aligns the load row of a bus that also has
// a generator row with that generator row (type, voltage, angle).
void glpos();

// Flat start: V 1, angle 0, powers from the rows; fixed-voltage rows give
// their voltage, slack rows also their angle.
void inivpq();

// Network sum over Y: ir, ii get the bus current sums for the voltages e, f
// of buses 1..n; pc (k 1 or 3) and qc (k 2 or 3) the injected powers.  Any
// other k gives P.  The output not asked for is left alone.
void allbpq(int32_t k, int32_t n, const Arr<double>& e, const Arr<double>& f, Arr<double>& ir,
            Arr<double>& ii, Arr<double>& pc, Arr<double>& qc);

// The user-defined models at the start of a method's pass: UDWORK back to
// 100 and, when there are models, their initial outputs and start-up pass.
void start_models();
// The models' evaluation at the start of iteration t, with the recording of
// their requests.  True when a model changed a branch; Y has then been
// formed anew, and the caller refreshes what it built from Y.
bool run_models(int32_t t);

// Right-justifies a bus name in 20 columns.
void addspace(const BusName& in, BusName& out);

// Active and reactive power of a voltage-dependent load row (type 2 and
// above) at voltage v.
double load_p(int32_t row, double v);
double load_q(int32_t row, double v);

// Active half of the mismatch of buses 1..n: dp = PDC - pc (plus the models'
// injection UDPINJ when there are models or UPCLF is set) plus the given
// generator P and minus the given load P; slack buses get 0.  Keeps PG and PL.
void mismatch_p(int32_t n, const Arr<double>& pc, Arr<double>& dp);

// What the reactive equation of a bus with fixed voltage is.
enum class FixedV {
  Cut,     // no equation: the mismatch is 0 (decoupled method)
  Squared  // (row voltage)^2 - V^2 (Newton methods)
};

// Reactive half of the mismatch of buses 1..n: dq = QDC - qc (plus UDQINJ
// likewise) plus the given generator Q and minus the given load Q; slack
// buses get 0, fixed-voltage buses as `fixed` says (in the Cut form rows of
// types -4 and -6 also reload the bus voltage from the row).  Keeps QG and QL;
// the computed reactive power of a fixed-voltage bus goes to its generator
// row unless that row has no output.
void mismatch_q(int32_t n, const Arr<double>& qc, Arr<double>& dq, FixedV fixed);

// The right-justified case name of reduced bus s; blanks when s names no
// case bus.
BusName reduced_label(int32_t s);

// The right-justified name of internal bus `bus`: the case name of the first
// reduced number in 1..last whose internal number it is; blanks when none.
BusName bus_label(int32_t bus, int32_t last);

// Pieces of an iteration table row: "    TTT" and " name value" (F12.6).
std::string table_count(int32_t t);
std::string table_cell(const BusName& name, double value);

}  // namespace lf

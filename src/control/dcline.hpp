// Two-terminal DC lines: per-unit conversion of the line data, the converter
// equations of one pole, and the injections that the lines give the AC
// network at each iteration.
#pragma once

#include <cstddef>
#include <cstdint>

#include "store/store.hpp"

namespace lf {

// 3 sqrt 2 / pi, the ratio of a six-pulse bridge's ideal DC voltage to its AC
// line voltage, as the converter model and the converter tap both use it.
constexpr double kBridgeFactor = 1.350474473703044;
// Henry to millihenry and back: the base inductance is kept in mH and
// reported in H.  Each direction multiplies by its own exact decimal.
constexpr double kMillihenryPerHenry = 1000;
constexpr double kHenryPerMillihenry = 0.001;

// The records below count DC lines from 1 (index 0 unused), as NL4 does;
// i is the rectifier end, j the inverter end.  Per unit is on the line's own
// DC bases (DCBASE) unless said otherwise.  dcval writes DCBASE, DCLFPU and
// the start of DCLFOP; dctran updates DCLFOP in every iteration; the DC
// reports (wlp4_new, nwlp4) and the database writer read all three.

struct DCBASERec {         // base values of each line (dcval)
  Arr<double> vbi, vbj;    // AC base voltages of the two ends, kV
  Arr<double> vdb;         // DC base voltage, kV
  Arr<double> idb;         // DC base current: base_mva / vdb, kA
  Arr<double> zdb;         // DC base impedance: vdb / idb, ohm
  Arr<double> ldb;         // DC base inductance at 50 Hz, mH
  Arr<double> tkbi, tkbj;  // base turns ratios of the converter transformers, per unit
  void grow(std::size_t n);
};

struct DCLFPURec {                             // fixed per-unit values of each line (dcval)
  Arr<double> VD1PU, VD2PU;                    // DC voltage ordered for poles 1 and 2
  Arr<double> tkimax, tkimin, tkjmax, tkjmin;  // tap ranges of the two ends' transformers
  Arr<double> xci, xcj;                        // commutating reactances of the two ends
  Arr<double> qcip, qcjp;                      // filter reactive power of each end, per unit
                                               // on base_mva; read by dctran
  void grow(std::size_t n);
};

struct DCLFOPRec {                         // operating point of each line (dcval, dctran)
  Arr<double> vaci, vacj;                  // AC voltages at the ends, per unit on the AC base
  Arr<double> id10, id20;                  // currents of poles 1 and 2
  Arr<double> tk1i, tk1j, tk2i, tk2j;      // converter transformer ratios, per pole and end
  Arr<double> vd10i, vd10j, vd20i, vd20j;  // DC voltages, per pole and end
  Arr<double> pd1i, qd1i, pd1j, qd1j;      // injections of pole 1 into the AC network,
                                           // per unit on base_mva; summed into VPQ.PDC/QDC
  Arr<double> pd2i, qd2i, pd2j, qd2j;      // injections of pole 2, likewise
  Arr<double> a10r_d, a20r_d;              // firing angles in use, degrees
  void grow(std::size_t n);
};

// DC powers and end buses of the lines as the area interchange (adjare)
// sees them, by DC line.  Nothing fills it, so every DC line has both ends
// on bus 0 there and adds no power to an area.
struct LDC3Rec {
  Arr<int32_t> ibs, jbs;  // end buses, reduced; 0 (never set)
  Arr<double> pi, pj;     // power at each end, per unit on base_mva; 0 (never set)
  void grow(std::size_t n);
};

extern DCBASERec DCBASE;
extern DCLFPURec DCLFPU;
extern DCLFOPRec DCLFOP;
extern LDC3Rec LDC3;

// Turns the data of NL4 into per unit in place; once per case.
void dcval();

// Recomputes the operating points from the present AC voltages and puts the
// lines' injections into PDC and QDC of VPQ.
void dctran();

// One pole of line k: rdc, id, gamma in; vdi, alpha in and out; the taps,
// the voltage at the J end and the four injections out.
void dcsub(int32_t k, double rdc, double& vdi, double id, double& alpha, double gamma, double& tki,
           double& tkj, double& vdj, double& pi, double& qi, double& pj, double& qj);

// The poles in use on line k: 2 for a bipole, else 1.
int32_t dc_poles(int32_t k);

// Tap position of a converter transformer in percent of its nominal ratio,
// for the reports and the database: tk the per-unit ratio of an end with
// `bridges` bridges in series, vb its AC base and vdb the DC base (kV), vl
// and vh the transformer's low and high side voltages (kV).
double converter_tap_percent(double tk, int32_t bridges, double vb, double vdb, double vl,
                             double vh);

}  // namespace lf

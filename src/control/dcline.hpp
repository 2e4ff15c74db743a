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

struct DCBASERec {         // base values of each line
  Arr<double> vbi, vbj;    // AC base voltages of the two ends, kV
  Arr<double> vdb;         // DC base voltage, kV
  Arr<double> idb;         // DC base current
  Arr<double> zdb;         // DC base impedance
  Arr<double> ldb;         // DC base inductance, mH
  Arr<double> tkbi, tkbj;  // base turns ratios
  void grow(std::size_t n);
};

struct DCLFPURec {                             // fixed per-unit values of each line
  Arr<double> VD1PU, VD2PU;                    // DC voltage of the poles
  Arr<double> tkimax, tkimin, tkjmax, tkjmin;  // tap ranges
  Arr<double> xci, xcj;                        // commutating reactances
  Arr<double> qcip, qcjp;                      // filters
  void grow(std::size_t n);
};

struct DCLFOPRec {                         // operating point of each line
  Arr<double> vaci, vacj;                  // AC voltages at the ends
  Arr<double> id10, id20;                  // pole currents
  Arr<double> tk1i, tk1j, tk2i, tk2j;      // converter transformer ratios
  Arr<double> vd10i, vd10j, vd20i, vd20j;  // DC voltages at the ends
  Arr<double> pd1i, qd1i, pd1j, qd1j;      // injections of pole 1
  Arr<double> pd2i, qd2i, pd2j, qd2j;      // injections of pole 2
  Arr<double> a10r_d, a20r_d;              // firing angles in use, degrees
  void grow(std::size_t n);
};

// DC powers and end buses of the lines as the area interchange sees them.
// Nothing fills it, so every DC line has both ends on bus 0 there.
struct LDC3Rec {
  Arr<int32_t> ibs, jbs;
  Arr<double> pi, pj;
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

}  // namespace lf

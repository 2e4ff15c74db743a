// The network store: the global records through which all stages meet.
//
// Every record is a family of parallel 1-based arrays over an element's
// index.  The capacities below are starting sizes: a stage that needs more
// rows calls the record's grow() before it stores past the end, so a large
// case never overruns an array.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

constexpr std::size_t kCapBus = 10000;     // buses and nodes, new nodes included
constexpr std::size_t kCapBranch = 15000;  // lines, shunt branches, transformers, changes
constexpr std::size_t kCapGen = 3000;
constexpr std::size_t kCapLoad = 6000;
constexpr std::size_t kCapDc = 20;
constexpr std::size_t kCapArea = 200;
constexpr std::size_t kCapFactor = 3000;
constexpr std::size_t kCapLoadPar = 80;
constexpr std::size_t kCapSwitch = 10000;

// The bus type code mode_ctrl of a generator row (L5) or a load row (L6).
constexpr int32_t kTypeSlack = 0;    // slack: V and angle given, P and Q are outputs
constexpr int32_t kTypePQ = 1;       // P and Q given
constexpr int32_t kTypePV = -1;      // P and V given, Q unlimited
constexpr int32_t kTypePVQlim = -2;  // P and V given, Q held inside its limits
constexpr int32_t kTypePQVlim = -3;  // P and Q given, V held inside its limits; read as 1
                                     // by the mismatches and the matrices
// The forms of user-defined control; without models (ctrl_ud 0) the readers
// fold -4 and -6 into -1, and -5, -7, -8 into 1.
constexpr int32_t kTypeModel4 = -4;  // P and V given, V reloaded from the row in every Q
                                     // half-iteration, so that a model may move it
constexpr int32_t kTypeModel5 = -5;  // act as -1 in the iteration
constexpr int32_t kTypeModel6 = -6;  // as -4
constexpr int32_t kTypeModel7 = -7;  // as -5
constexpr int32_t kTypeModel8 = -8;  // as -5
// On a load row, a type from this on is voltage dependent: the number of its
// static load parameter set, a row of ABCLC (the .DAT library).
constexpr int32_t kTypeFirstLoadSet = 2;

using BusName = Text<20>;
using AreaName = Text<10>;
using CaseName = Text<60>;

// ---- run control ----------------------------------------------------------

struct LFINFRec {  // the case header
  int32_t nbus = 0, nacline = 0, ntrans = 0, ndcline = 0, ngenerat = 0, nload = 0, nloadpar = 0,
          narea = 0;
  double base_mva = 0, vmax = 0, vmin = 0, tolerance = 0;
  int32_t method = 0, iteration = 0, ctrl_area = 0;
};

struct LF93Rec {  // further case switches
  int32_t ctrl_ud = 0, ctrl_sub = 0, nswitch = 0, nlf93spare = 0, ctrl_fact = 0, loadshare = 0;
};

struct NORec {  // sizes of the calculation
  int32_t nbranch = 0, nnode = 0, nchange = 0;
  int32_t MAXBUS = 0, NYENT = 0;  // sizes of the admittance structure
  int32_t ndc = 0;
};

struct NURec {  // counters of the user-defined models
  int32_t nl9 = 0, nud = 0, nud1 = 0, udout = 0;
};

struct RTDBLSCMNRec {  // database session
  int32_t session = 0, rtdbmode = 0;
};

extern LFINFRec LFINF;
extern LF93Rec LF93;
extern NORec NO;
extern NURec NU;
extern RTDBLSCMNRec RTDBLSCMN;
extern int32_t RMXMVALID;  // magnetising branches of transformers count in the results
extern int32_t MARKL23;    // a model changed branch data: rewrite .L2/.L3
extern int32_t CL23;
extern int32_t UPCLF;  // extra model injections in the mismatches

// ---- network data ---------------------------------------------------------

struct L1Rec {
  Arr<BusName> busname;
  void grow(std::size_t n) { busname.grow(n); }
};

struct LL1Rec {
  Arr<double> basekv;
  Arr<int32_t> busarea;
  Arr<double> busvmax, busvmin;
  void grow(std::size_t n);
};

struct IJRec {  // IJB, IJC: branch ends
  Arr<int32_t> I, J, No, LOSSAREA;
  void grow(std::size_t n);
};

struct RXRec {  // RXB, RXC: branch parameters, per unit
  Arr<double> R, X, B, T;
  void grow(std::size_t n);
};

struct IJOPENRec {  // the branches as read
  Arr<int32_t> I, J, No, mark;
  void grow(std::size_t n);
};

struct L2PRec {  // control data of the branches
  Arr<double> value_ctrl;
  Arr<int32_t> mode_ctrl, par_group, ibs_ctrl, line_ctrl, I, J, No;
  void grow(std::size_t n);
};

struct L3PRec {  // control data of the transformers
  Arr<double> value_ctrl, ang_shift;
  Arr<int32_t> mode_ctrl, par_group, ibs_ctrl, line_ctrl, I, J, No;
  void grow(std::size_t n);
};

// A magnetising impedance below this (in both parts for the preparation, in
// the sum of their sizes for the results) is no branch: the preparation adds
// none and the results count none.
constexpr double kNegligibleMagnetising = 1e-11;

struct L3PPRec {  // magnetising branches of the transformers
  Arr<double> Rm, Xm;
  void grow(std::size_t n);
};

struct NL4Rec {  // two-terminal DC lines, physical units
  Arr<int32_t> I, J, No, LOSSAREA;
  Arr<double> rpi_ohm, lpi_mh, rpj_ohm, lpj_mh, rl_ohm, ll_mh, rei_ohm, rej_ohm, lsi_mh, lsj_mh,
      vdrate_kv, vhi_kv, vli_kv;
  Arr<int32_t> i_bridge;
  Arr<double> sti_mva, rti_ohm, xti_perc, vtimax_kv, vtimin_kv;
  Arr<int32_t> i_tap;
  Arr<double> vhj_kv, vlj_kv;
  Arr<int32_t> j_bridge;
  Arr<double> stj_mva, rtj_ohm, xtj_perc, vtjmax_kv, vtjmin_kv;
  Arr<int32_t> j_tap, op_mode;
  Arr<double> qci_mvar, qcj_mvar, pd1_mw, vd1_kv, a1min_d, a10_d, gam1min_d, gam10_d, pd2_mw,
      vd2_kv, a2min_d, a20_d, gam2min_d, gam20_d;
  void grow(std::size_t n);
};

struct L5Rec {  // generators
  Arr<double> P, Q, V, Angle;
  Arr<int32_t> ibs, mode_ctrl, merged;
  void grow(std::size_t n);
};

struct LPRec {  // L5P, L6P: limits and control data of generators and loads
  Arr<double> Qmax, Qmin, Pmax, Pmin, value_ctrl;
  Arr<int32_t> par_group, ibs_ctrl, line_ctrl;
  void grow(std::size_t n);
};

// Smallest merged output (the single-precision 1e-6) that the share of a unit
// as read is taken of; below it the units of a bus share equally.
constexpr double kShareFloor = 9.999999974752427e-07;

struct L5OLDRec {  // the generators as read, kept by the merging
  Arr<int32_t> ibs, mode_ctrl, merged, map;
  Arr<double> P, Q, share;
  int32_t ngenold = 0, genmerged = 0;
  void grow(std::size_t n);
};

struct L6Rec {  // loads
  Arr<double> P, Q, V, Angle;
  Arr<int32_t> ibs, No, mode_ctrl;
  void grow(std::size_t n);
};

struct L6PPRec {  // the loads as read, kept by the merging
  Arr<int32_t> ibs, No, mode_ctrl;
  Arr<double> P, Q;
  int32_t nloadold = 0;
  void grow(std::size_t n);
};

struct L7Rec {  // area names
  Arr<AreaName> area_name;
  void grow(std::size_t n) { area_name.grow(n); }
};

struct LL7Rec {  // area schedules
  Arr<double> p_schedule, tolerance, pmax;
  Arr<int32_t> unit, area_no;
  void grow(std::size_t n);
};

struct L10Rec {  // scaling factors
  Arr<double> PG, QG, PL, QL, kv;
  Arr<int32_t> area;
  Arr<AreaName> name1, name2;
  void grow(std::size_t n);
};

struct ABCLCRec {  // static load characteristics
  Arr<double> ap, bp, cp, aq, bq, cq;
  void grow(std::size_t n);
};

struct L13Rec {  // substation switch records
  Arr<int32_t> valid, group, type, I, J, sw1, sw2, sw3, line1, load1, line2, load2;
  void grow(std::size_t n);
};

struct NNTOONRec {   // node to case bus
  Arr<int32_t> map;  // NNTOON.map[node] = case bus number
  int32_t maxno = 0, nnode = 0, nbase = 0;
  int32_t& operator[](std::ptrdiff_t i) { return map[i]; }
  void grow(std::size_t n) { map.grow(n); }
};

extern L1Rec L1;
extern LL1Rec LL1;
extern IJRec IJB, IJC;
extern RXRec RXB, RXC;
extern IJOPENRec IJOPEN;
extern L2PRec L2P;
extern L3PRec L3P;
extern L3PPRec L3PP;
extern NL4Rec NL4;
extern L5Rec L5;
extern LPRec L5P, L6P;
extern L5OLDRec L5OLD;
extern L6Rec L6;
extern L6PPRec L6PP;
extern L7Rec L7;
extern LL7Rec LL7;
extern L10Rec L10;
extern ABCLCRec ABCLC;
extern L13Rec L13;
extern NNTOONRec NNTOON;

// The case names of the present calculation, from NAME.INC or the defaults
// "LF", "DATALIB" and "UDLIB" (written by read_names, read by every stage
// that opens a case, library or report file).
extern CaseName casename;     // stem of the case files and of the reports
extern CaseName datalibname;  // the load parameter library, for the case reader
extern CaseName udlibname;    // the library of user-defined models

// Grows every bus-indexed record (L1, LL1, NNTOON) to hold n buses.
void grow_buses(std::size_t n);
// Grows every branch-indexed record (IJB, RXB, IJOPEN, IJC, RXC, L2P, L3P, L3PP).
void grow_branches(std::size_t n);
// Grows the generator records (L5, L5P) and the load records (L6, L6P, L6PP).
void grow_generators(std::size_t n);
void grow_loads(std::size_t n);

}  // namespace lf

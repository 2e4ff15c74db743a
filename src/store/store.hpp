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

// Conventions of the fields below.  Arrays count from 1 (index 0 unused).
// "Case bus" is a row of L1; "reduced bus" the number after network
// preparation (NNTOON gives the case bus back); "internal bus" the place in
// the ordering, NEW[reduced].  All electrical quantities are per unit on
// base_mva unless the name carries a unit (_kv, _ohm, _mh, _mw, _mvar, _mva,
// _perc, _d for degrees).  "Readers" are the case file readers (casefile/)
// and the database readers (rtdb/), which fill the same fields alike.

struct LFINFRec {         // the case header; written by the readers (.L0 or case_lf)
  int32_t nbus = 0;       // buses in the case (rows of L1); read by every stage
  int32_t nacline = 0;    // AC lines and shunt branches: branch rows 1..nacline
  int32_t ntrans = 0;     // transformers: branch rows nacline+1..nacline+ntrans
  int32_t ndcline = 0;    // DC lines (rows of NL4); read by control/ and report/
  int32_t ngenerat = 0;   // generator rows of L5; the merging lowers it
  int32_t nload = 0;      // load rows of L6; the merging lowers it
  int32_t nloadpar = 0;   // static load parameter sets in ABCLC (.DAT, load_lib)
  int32_t narea = 0;      // area records of L7/LL7 (.L7; 0 in database mode); read by adjare
  double base_mva = 0;    // system base power, MVA; read by the reports and the DC model
  double vmax = 0;        // default upper bus voltage limit, per unit; read by the readers
  double vmin = 0;        // default lower bus voltage limit, per unit; read by the readers
  double tolerance = 0;   // convergence tolerance of the methods, per unit
  int32_t method = 0;     // method number 0..4 (the driver stores 0 for one above 4)
  int32_t iteration = 0;  // iteration limit of the methods
  int32_t ctrl_area = 0;  // 1: the driver runs the area interchange loop (adjare)
};

struct LF93Rec {           // further case switches; written by the readers
  int32_t ctrl_ud = 0;     // 1: user-defined models in use (driver, readers' type folding)
  int32_t ctrl_sub = 0;    // 1: substation switching in use (rl13, dwsubij)
  int32_t nswitch = 0;     // switch records in L13 (rl13; read by the substation splitting)
  int32_t nlf93spare = 0;  // read from .L0, used by nothing
  int32_t ctrl_fact = 0;   // scaling factor records in L10 (rl10, rdrtl10; read by chpq)
  int32_t loadshare = 0;   // 1 when two loads share a bus (set_loadshare; read by the
                           // merging, the load report and the database writer)
};

struct NORec {          // sizes of the calculation
  int32_t nbranch = 0;  // branch rows now in IJB/RXB: nacline + ntrans after reading,
                        // more after dwrmxm, changed by dwsubij; read by sparse/ and report/
  int32_t nnode = 0;    // nodes of the calculation: nbus plus the new nodes of dwsubij;
                        // read by every stage after preparation
  int32_t nchange = 0;  // entries in IJC/RXC, the change list of dwsubij
  int32_t MAXBUS = 0;   // highest bus number the ordering saw (fomy11)
  int32_t NYENT = 0;    // entries of Y's upper triangle with the diagonal (fomy11, fomy12);
                        // sizes the factor stores of the methods
  int32_t ndc = 0;      // DC lines, set from ndcline by the readers; read by control/
};

struct NURec {        // counters of the user-defined models (control/)
  int32_t nl9 = 0;    // rows of the .L9 file, from .L0
  int32_t nud = 0;    // model instances in use; 0 from the driver, set by rudlf, cleared
                      // by the model output when it fails; read by the methods
  int32_t nud1 = 0;   // instances counted by rudlf as it reads them
  int32_t udout = 0;  // nonzero while the model output is in use (set when the
                      // recording opens; read by forwinlf)
};

struct RTDBLSCMNRec {    // the database session; written by LFInit
  int32_t session = 0;   // handle of the host's database session
  int32_t rtdbmode = 0;  // 1: the case comes from and goes to the database (driver)
};

extern LFINFRec LFINF;
extern LF93Rec LF93;
extern NORec NO;
extern NURec NU;
extern RTDBLSCMNRec RTDBLSCMN;
// 1: the magnetising branches of transformers count (LFInit's mode 2, or the
// database's ctrl_rmxm); never cleared; read by the driver (dwrmxm) and the
// writers of the results.
extern int32_t RMXMVALID;
// 1: wrl23 rewrote .L2/.L3 in this calculation; written by the driver, read
// by the model output.
extern int32_t MARKL23;
// Nonzero when a model changed line or transformer data (set by fmlfar);
// the driver then calls wrl23.
extern int32_t CL23;
// 1: the models' extra injections enter the mismatches (the driver clears
// it; the models set it); read by the methods.
extern int32_t UPCLF;

// ---- network data ---------------------------------------------------------
// Unless told otherwise a record is written by the readers and read by the
// stages after them.  Bus numbers in branch, generator and load rows are case
// buses as read and reduced buses after dwsubij.

struct L1Rec {           // by case bus
  Arr<BusName> busname;  // bus name, 20 characters blank padded; read by the reports,
                         // the iteration tables and the substation splitting (new nodes)
  void grow(std::size_t n) { busname.grow(n); }
};

struct LL1Rec {          // by case bus
  Arr<double> basekv;    // base voltage, kV; read by chpq and the DC model
  Arr<int32_t> busarea;  // area number; read by chpq, adjare and the reports
  Arr<double> busvmax;   // upper voltage limit, per unit (the readers turn kV into per
                         // unit, vmax when none); read by limit
  Arr<double> busvmin;   // lower voltage limit, per unit, likewise
  void grow(std::size_t n);
};

struct IJRec {            // IJB: the branches solved; IJC: the change list of dwsubij
  Arr<int32_t> I;         // first end, a bus (case, then reduced); I equal to J is a shunt
  Arr<int32_t> J;         // second end, the side of the turns ratio T
  Arr<int32_t> No;        // branch number as read, 0 for a magnetising branch
  Arr<int32_t> LOSSAREA;  // the area that bears a tie line's loss: above 0 that area,
                          // otherwise the area of the I end; read by adjare
  void grow(std::size_t n);
};

// The turns ratio T sits at the J end: the series admittance y = 1/(R + jX)
// lies between bus I and an ideal transformer whose J side sees V_J / T, so
//   I_I = y (V_I - V_J/T) + jB V_I,   I_J = -(y/T) (V_I - V_J/T) + jB V_J,
//   Y_II += y + jB,   Y_JJ += y/T^2 + jB,   Y_IJ = Y_JI += -y/T.
// The admittance matrix (fomy12), the branch flows (brpq) and the database
// writer all use this one convention.
struct RXRec {    // RXB, RXC: by the row of IJB, IJC
  Arr<double> R;  // series resistance, per unit
  Arr<double> X;  // series reactance, per unit
  Arr<double> B;  // half the line charging, per unit, at each end
  Arr<double> T;  // turns ratio at the J end, per unit; 1.0 for lines and shunts
  void grow(std::size_t n);
};

struct IJOPENRec {        // the branches as read, by row of .L2/.L3 (or ln, cp, xf)
  Arr<int32_t> I, J, No;  // ends (case buses) and number as read; read by dwsubij and
                          // the reports, which find each row's branch again
  Arr<int32_t> mark;      // kInService, kOpenAtI or kOpenAtJ
  void grow(std::size_t n);
};

// The marks of a branch row as read (IJOPEN.mark, the first field of .L2).
constexpr int32_t kInService = 1;
constexpr int32_t kOpenAtI = 2;  // the I end is open
constexpr int32_t kOpenAtJ = 3;  // the J end is open

// L2P, L3P: the control data of branches for the user-defined models (and
// the database writer's transformer control); written by the readers, read
// by the models (control/), the reports and the database writer.
struct L2PRec {            // by branch row
  Arr<double> value_ctrl;  // set-point of the control
  Arr<int32_t> mode_ctrl;  // control mode kLine... of the branch (not a bus type)
  Arr<int32_t> par_group;  // parallel group
  Arr<int32_t> ibs_ctrl;   // bus whose quantity is controlled
  Arr<int32_t> line_ctrl;  // branch whose quantity is controlled
  Arr<int32_t> I, J, No;   // the branch's ends and number as read
  void grow(std::size_t n);
};

// The control modes of a line row (L2P.mode_ctrl), each made into standard
// models when ctrl_ud is on; another value controls nothing.
constexpr int32_t kLineHoldsVoltage = 1;  // the voltage of bus ibs_ctrl
constexpr int32_t kLineHoldsP = 2;        // the active flow of line line_ctrl
constexpr int32_t kLineHoldsQ = 3;        // the reactive flow of line line_ctrl
// The control modes of a transformer row (L3P.mode_ctrl).
constexpr int32_t kXfRatioKept = 1;     // the ratio handed to a model that keeps it
constexpr int32_t kXfHoldsP = 2;        // the ratio moved for the active flow of line_ctrl
constexpr int32_t kXfHoldsVoltage = 3;  // the ratio holds the voltage of bus ibs_ctrl
constexpr int32_t kXfHoldsQ = 4;        // the ratio holds the reactive flow of line_ctrl

struct L3PRec {            // by transformer, 1..ntrans
  Arr<double> value_ctrl;  // set-point of the control
  Arr<double> ang_shift;   // phase shift angle as read, degrees; not modelled
  Arr<int32_t> mode_ctrl;  // control mode kXf... (1, 2: a model controls the ratio)
  Arr<int32_t> par_group;  // parallel group
  Arr<int32_t> ibs_ctrl;   // bus whose quantity is controlled
  Arr<int32_t> line_ctrl;  // branch whose quantity is controlled
  Arr<int32_t> I, J, No;   // the transformer's ends and number as read
  void grow(std::size_t n);
};

// A magnetising impedance below this (in both parts for the preparation, in
// the sum of their sizes for the results) is no branch: the preparation adds
// none and the results count none.
constexpr double kNegligibleMagnetising = 1e-11;

struct L3PPRec {   // by transformer, 1..ntrans; read by dwrmxm, the reports, the database writer
  Arr<double> Rm;  // magnetising resistance, per unit
  Arr<double> Xm;  // magnetising reactance, per unit
  void grow(std::size_t n);
};

// Two-terminal DC lines, by line 1..ndcline, in physical units as read;
// written by the readers, turned into per unit by dcval (control/), read by
// the DC model and the DC reports.  i: rectifier end, j: inverter end.
struct NL4Rec {
  Arr<int32_t> I, J, No;  // converter buses (case, then reduced) and line number
  Arr<int32_t> LOSSAREA;  // the area that bears the line's loss
  Arr<double> rpi_ohm, lpi_mh, rpj_ohm, lpj_mh;  // smoothing reactor R (ohm), L (mH), each end
  Arr<double> rl_ohm, ll_mh;                     // line resistance (ohm), inductance (mH)
  Arr<double> rei_ohm, rej_ohm;                  // earth electrode resistance of each end, ohm
  Arr<double> lsi_mh, lsj_mh;                    // further series inductance of each end, mH
  Arr<double> vdrate_kv;                         // rated DC voltage, kV
  Arr<double> vhi_kv, vli_kv;        // rectifier transformer: high and low side voltage, kV
  Arr<int32_t> i_bridge;             // rectifier bridges in series
  Arr<double> sti_mva;               // rectifier transformer rating, MVA
  Arr<double> rti_ohm;               // its resistance, ohm
  Arr<double> xti_perc;              // its reactance, percent
  Arr<double> vtimax_kv, vtimin_kv;  // its tap range as voltages, kV
  Arr<int32_t> i_tap;                // its tap steps
  Arr<double> vhj_kv, vlj_kv;        // inverter transformer: high and low side voltage, kV
  Arr<int32_t> j_bridge;             // inverter bridges in series
  Arr<double> stj_mva;               // inverter transformer rating, MVA
  Arr<double> rtj_ohm;               // its resistance, ohm
  Arr<double> xtj_perc;              // its reactance, percent
  Arr<double> vtjmax_kv, vtjmin_kv;  // its tap range as voltages, kV
  Arr<int32_t> j_tap;                // its tap steps
  Arr<int32_t> op_mode;              // operating mode, kDc...
  Arr<double> qci_mvar, qcj_mvar;    // filter and capacitor reactive power of each end, Mvar
  Arr<double> pd1_mw, vd1_kv;        // pole 1: DC power (MW) and voltage (kV) ordered
  Arr<double> a1min_d, a10_d;        // pole 1: firing angle limit and value, degrees
  Arr<double> gam1min_d, gam10_d;    // pole 1: extinction angle limit and value, degrees
  Arr<double> pd2_mw, vd2_kv;        // pole 2: likewise
  Arr<double> a2min_d, a20_d;
  Arr<double> gam2min_d, gam20_d;
  void grow(std::size_t n);
};

// The operating modes of a DC line (NL4.op_mode).
constexpr int32_t kDcEarthReturn = 10;     // one pole, return through the earth electrodes
constexpr int32_t kDcMetallicReturn = 11;  // one pole, return on the second conductor
constexpr int32_t kDcParallel = 12;        // one pole on both conductors, earth return
constexpr int32_t kDcBipole = 20;          // two poles

struct L5Rec {             // generators, by row 1..ngenerat (merged rows after dwsubij)
  Arr<double> P;           // active power given, per unit; adjare moves it
  Arr<double> Q;           // reactive power given, per unit; limit sets it at a limit
  Arr<double> V;           // voltage given, per unit (slack and fixed-voltage types)
  Arr<double> Angle;       // angle given, degrees (slack)
  Arr<int32_t> ibs;        // bus (case, then reduced); 0 for a row merged away
  Arr<int32_t> mode_ctrl;  // bus type code kType...; limit and the models change it
  Arr<int32_t> merged;     // units merged into this row, 0 when it stands alone (merging)
  void grow(std::size_t n);
};

struct LPRec {             // L5P, L6P: limits and control data, by generator or load row
  Arr<double> Qmax, Qmin;  // reactive limits, per unit; read by limit
  Arr<double> Pmax, Pmin;  // active limits, per unit; read by the models
  Arr<double> value_ctrl;  // set-point of a model's control
  Arr<int32_t> par_group;  // parallel group
  Arr<int32_t> ibs_ctrl;   // bus whose quantity is controlled
  Arr<int32_t> line_ctrl;  // branch whose quantity is controlled
  void grow(std::size_t n);
};

// Smallest merged output (the single-precision 1e-6) that the share of a unit
// as read is taken of; below it the units of a bus share equally.
constexpr double kShareFloor = 9.999999974752427e-07;

// The generators as read, by row 1..ngenold; written by the merging of
// dwsubij, read by unit_output (the generator report and the database writer).
struct L5OLDRec {
  Arr<int32_t> ibs;        // bus as read (case bus)
  Arr<int32_t> mode_ctrl;  // bus type code as read
  Arr<int32_t> merged;     // L5.merged of the row it went into
  Arr<int32_t> map;        // the row of L5 it went into
  Arr<double> P, Q;        // output given, per unit
  Arr<double> share;       // its share of the merged output; 1 alone, 0 when the merged
                           // unit is fixed
  int32_t ngenold = 0;     // rows as read
  int32_t genmerged = 0;   // 1 when any generator was merged
  void grow(std::size_t n);
};

struct L6Rec {             // loads, by row 1..nload (merged rows after dwsubij)
  Arr<double> P, Q;        // power drawn at the rated voltage V, per unit
  Arr<double> V;           // rated (or given) voltage, per unit
  Arr<double> Angle;       // angle given, degrees (a slack load)
  Arr<int32_t> ibs;        // bus (case, then reduced)
  Arr<int32_t> No;         // load number as read; 0 for a merged row
  Arr<int32_t> mode_ctrl;  // bus type code kType..., or from kTypeFirstLoadSet a row of ABCLC
  void grow(std::size_t n);
};

// The loads as read, by row 1..nloadold; written by the merging, read by the
// load report and the database writer, which share merged results out again.
struct L6PPRec {
  Arr<int32_t> ibs;        // bus as read
  Arr<int32_t> No;         // load number
  Arr<int32_t> mode_ctrl;  // type as read
  Arr<double> P, Q;        // power as read, per unit
  int32_t nloadold = 0;    // rows as read
  void grow(std::size_t n);
};

struct L7Rec {              // by area record 1..narea
  Arr<AreaName> area_name;  // area name, 10 characters; read by adjare's table and .LP7
  void grow(std::size_t n) { area_name.grow(n); }
};

struct LL7Rec {            // area schedules, by area record 1..narea; read by adjare, .LP7
  Arr<double> p_schedule;  // scheduled export, per unit
  Arr<double> tolerance;   // allowed deviation, per unit
  Arr<double> pmax;        // upper limit of the regulating generator, per unit
  Arr<int32_t> unit;       // bus of the regulating generator (reduced)
  Arr<int32_t> area_no;    // area number of the record
  void grow(std::size_t n);
};

struct L10Rec {                // scaling factors, by record 1..ctrl_fact; read by chpq
  Arr<double> PG, QG;          // factors of generator P and Q
  Arr<double> PL, QL;          // factors of load P and Q
  Arr<double> kv;              // voltage level the record applies to, kV
  Arr<int32_t> area;           // area the record applies to (above 0)
  Arr<AreaName> name1, name2;  // bus name range the record applies to (files only)
  void grow(std::size_t n);
};

// Static load characteristics, by parameter set 1..nloadpar (set 1 is the
// constant-power default): P = P0 (ap (V/V0)^2 + bp V/V0 + cp), Q likewise
// with aq, bq, cq.  Written by isrlib and the library readers; read by the
// mismatches and the Jacobians.
struct ABCLCRec {
  Arr<double> ap, bp, cp;  // active power: constant impedance, current, power fractions
  Arr<double> aq, bq, cq;  // reactive power: likewise
  void grow(std::size_t n);
};

struct L13Rec {                // substation switch records 1..nswitch (rl13); read by dwsubij
  Arr<int32_t> valid;          // above 0: the record counts
  Arr<int32_t> group;          // the substation's bus
  Arr<int32_t> type;           // kind of switch (3: three switches in series)
  Arr<int32_t> I, J;           // the two bus sections it joins
  Arr<int32_t> sw1, sw2, sw3;  // switch positions, 1 closed
  Arr<int32_t> line1, load1, line2, load2;  // the lines and loads on its two sides
  void grow(std::size_t n);
};

struct NNTOONRec {    // written by dwsubij; read by the reports, tables and models
  Arr<int32_t> map;   // by node (reduced bus) 1..nnode: the case bus it stands for
  int32_t maxno = 0;  // the highest branch number No
  int32_t nnode = 0;  // nodes, as NO.nnode
  int32_t nbase = 0;  // nodes before the new nodes (nbus)
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

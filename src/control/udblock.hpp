// The state of the blocks of the user-defined models: signals, parameters,
// links and block-local memory.  A block is known by its index in the whole
// case (all model instances together, numbered by fmlfar in instance order);
// every array counts from 1.
//
// Who writes what: fmlfar lays out UDB, NUPA and the sizes of NU1; inilf sizes
// UDXY; fmlfy0 sets BLKHLD and the initial Y; the block routines and blsub
// write UDXY and NU1 in every pass; traud copies Y into YO and FS1N into FS1O.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/arr.hpp"

namespace lf {

// Signals, one element a block.  Every signal is a value with a derivative
// companion; X stands for X1 + X2 of a block and DX for DX1 + DX2.
struct UDXYRec {
  Arr<double> X1;   // first input sum, written by the input bindings and by blsub
  Arr<double> X2;   // second input sum, likewise
  Arr<double> YO;   // output kept from the previous pass (traud; block 49 too)
  Arr<double> Y;    // output, written by blsub (held blocks keep theirs)
  Arr<double> DX1;  // derivative companion of X1
  Arr<double> DX2;  // derivative companion of X2
  Arr<double> DYO;  // derivative output of the previous pass (time-step form; block 49 too)
  Arr<double> DY;   // derivative output, written by blsub
};

// Blocks and their links, laid out by fmlfar.
struct UDBRec {
  Arr<int32_t> BLKTYP;  // per block: block type number, 1-52 (others run as 1)
  Arr<int32_t> BLKNPA;  // per block: count of parameters it stores in NUPA
  Arr<int32_t> LNKFST;  // per block: index of its first link in LNKX1/LNKX2
  Arr<int32_t> LNKCNT;  // per block: number of its links
  Arr<int32_t> BLKHLD;  // per block: 1 when its output is held at its initial value (fmlfy0)
  // Per link: the target block for its first (LNKX1) or second (LNKX2) input;
  // negative: the index negated, the signal passed with opposite sign; 0: none.
  Arr<int32_t> LNKX1, LNKX2;
};

// Block-local memory of the blocks that keep state of their own.
struct NU1Rec {
  // Per block 51 (second-order filter), in order of evaluation: y' and y''
  // of the previous pass (O) and of this pass (N).
  Arr<double> FS1O, FS2O, FS1N, FS2N;
  // Per block 21, 27, 43 or 52 (timers and latches), in order of evaluation:
  // the time run (seconds of the time-step form) and the latch (0 or 1).
  Arr<double> TMR;
  Arr<int32_t> LATCH;
};

struct NNU1Rec {
  int32_t IPRED = 0;  // 1 in a predictor step of the time-step form; always 0 in the load flow
  int32_t nfilt = 0;  // block 51 instances in the case (fmlfar)
};

struct COMM7Rec {
  double DT = 0;  // time step of the time-step form, seconds; 0 in the load flow
};

struct NOST1Rec {
  int32_t KSTEP = 0;  // step counter of the time-step form; 0 in the load flow
};

// Working values that some routines keep from one call to the next.  They
// belong to the routine, not to a block: every block of the kind shares
// them, over all calculations of the run, so a call that sets nothing hands
// on what the last call left.  Each field is written and read by the routine
// named beside it alone; nothing clears them.
struct UDKEEPRec {
  double ramp_y = 0, ramp_dy = 0;  // RAMP (bl14): the last output and its derivative
  double line_y = 0, line_dy = 0;  // LINE (bl30): likewise
  double ml_y = 0, ml_dy = 0;      // ML (bl31): likewise
  double fex_y = 0, fex_dy = 0;    // FEX (bl33): likewise
  double dead_y = 0;               // DEAD (bl44): the last output
  double cnt_y = 0;                // CNT (bl47): the last count; a call with mode != 0 clears it
  int32_t side = 1;                // fmlfin: side (1 or 2) of the last branch current asked for
};

extern UDXYRec UDXY;
extern UDBRec UDB;
extern Arr<double> NUPA;  // parameters of all blocks, consecutive per block (fmlfar)
extern NU1Rec NU1;
extern NNU1Rec NNU1;
extern COMM7Rec COMM7;
extern NOST1Rec NOST1;
extern UDKEEPRec UDKEEP;

}  // namespace lf

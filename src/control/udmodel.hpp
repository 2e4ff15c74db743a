// The records of the user-defined models: the instances with their source
// rows, the model library as read, and the flat tables of bindings and
// recording requests that the arrangement lays out for the evaluation.
// Every array counts from 1 and grows as rows come; a later calculation
// reuses the room.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "store/store.hpp"
#include "support/arr.hpp"
#include "support/growarr.hpp"

namespace lf {

using BlockName = Text<10>;  // name under which a block's output is recorded

// One source row of a model instance, by row 1..count: a row of the .L9
// file or a row that the control fields of a generator, load, line or
// transformer made (rudlf writes; fmlfar, the evaluation and the model
// output read the values and the buses).
struct S9Rec {
  Arr<int32_t> S9NO;                    // model number in the data (the model type is 6000 + this)
  Arr<int32_t> S9GRP;                   // parameter group as given (0 means 1)
  Arr<int32_t> S9F3;                    // kept from the .L9 row, used by nothing
  Arr<int32_t> S9F4;                    // kept from the .L9 row, used by nothing
  Arr<int32_t> S9LINE;                  // line number (IJB.No) of the instance, 0 none
  Arr<int32_t> S9SIDE;                  // side of that line for location values, 1 or 2
  Arr<int32_t> S9B1, S9B2, S9B3, S9B4;  // external (case) bus numbers, 0 none
  int32_t count = 0;  // rows so far: those of the .L9 file, then those the control fields
                      // made; cleared and counted by rudlf, which stores NU.nl9 from it
};

// The set values of each source row, by the same row as S9 (rudlf writes;
// fmlfin reads them for input codes 10-12).
struct L9Rec {
  Arr<double> L9P0, L9Q0, L9V0;  // the row's P0, Q0, V0: input codes 10, 11, 12, per unit
  Arr<int32_t> L9BUS;            // = S9B1, the key by which input codes 10-12 find the row
};

// Per instance 1..nud, and per location entry from 1.  A location entry is a
// pair: LOCA > 0 an external bus number with LOCB 0, or LOCA < 0 a line
// number negated with LOCB its side.  Read by fmlfar, the evaluation
// (resolve) and the model output.
struct UDRRec {
  Arr<int32_t> LOCA, LOCB;  // per location entry (rudlf)
  Arr<int32_t> UDTYPE;      // model number, 6000 + S9NO (rudlf)
  Arr<int32_t> LOCCNT;      // location entries of the instance (rudlf)
  Arr<int32_t> LOCFST;      // its first location entry (rudlf)
  Arr<int32_t> UDGRP;       // parameter group, 1-based (rudlf)
  // Laid out by fmlfar: the instance's slices of the flat tables.
  Arr<int32_t> BLKCNT, BLKFST;  // blocks
  Arr<int32_t> IN1CNT, IN1FST;  // first-input bindings
  Arr<int32_t> OUCNT, OUFST;    // output bindings
  Arr<int32_t> PARFST;          // first parameter in NUPA
};

// Input bindings (fmlfar writes; the evaluation reads): the network
// quantity with signed code C at location L goes into input 1 or 2 of
// block B.  Bindings count from 1, in instance order; B is a block of UDB.
struct UDINRec {
  Arr<int32_t> IN1L, IN1C, IN1B;  // per first-input binding
  Arr<int32_t> IN2CNT, IN2FST;    // per instance: its second-input bindings
  Arr<int32_t> IN2L, IN2C, IN2B;  // per second-input binding
};

// Output bindings (fmlfar writes; the evaluation reads), from 1 in
// instance order: the output of block B acts with signed code C at
// location L.
struct UDOURec {
  Arr<int32_t> OUL, OUC, OUB;
};

// Recording requests (fmlfar; udlpex and the output files read them).
struct YPRec {
  Arr<int32_t> YPLOC;    // per instance: its first location entry's LOCA, 0 without requests
  Arr<int32_t> YPCNT;    // per instance: requests counted (cut to 8 by udlpex)
  Arr<int32_t> YPFST;    // per instance: its first request
  Arr<int32_t> YPBLK;    // per request: the block recorded
  Arr<BlockName> YPNAM;  // per request: the block's name
};

// The library directory: five planes of 6 families by 999 models, keyed by
// the model number (thousands digit, rest) as told by typei_key.
struct TYPEIRec {
  static constexpr std::size_t kFamilies = 6, kModels = 999;
  using Plane = std::array<int32_t, kFamilies * kModels>;
  Plane TYFBLK{};  // first block of the model in DTBAD
  Plane TYNBLK{};  // its block count
  Plane TYNPAR{};  // parameters per group
  Plane TYNGRP{};  // group count
  Plane TYFCOL{};  // row of its first group in DTDEE
};

// The library's blocks as read (rlflib), one row a block record.
struct DTBADRec {
  Arr<int32_t> BLKSEQ, NIN, NOUT, BTYPE;  // sequence, input node, output node (signed), type
  Arr<int32_t> IN1COD, IN1LOC, IN2COD, IN2LOC, OUTCOD, OUTLOC;  // bindings: code, location
  Arr<int32_t> IVCOD, IVLOC, IVPAR;  // initial value: code and location, or parameter number
  std::array<Arr<int32_t>, 7> PAR;   // slots A-G: 1-based parameter numbers within a group
  Arr<int32_t> PORT;                 // input of the targets that this block feeds, 1 or 2
  Arr<BlockName> OUTNAM;             // DTBADP: name to record the output under, blank none
};

// Interface variables written by output codes 201-210, by request from 1:
// the evaluation's pass of iteration 0 records which; the model output
// saves them to TMUD.DAT.
struct TMPUDRec {
  Arr<int32_t> TMPBUS;  // external bus number
  Arr<int32_t> TMPCOD;  // code minus 200, 1-10
  int32_t count = 0;    // requests recorded (ITMPUD)
};

extern S9Rec S9;
extern L9Rec L9;
extern UDRRec UDR;
extern UDINRec UDIN;
extern UDOURec UDOU;
extern YPRec YP;
extern TYPEIRec TYPEI;
extern DTBADRec DTBAD;
extern Arr2<double> DTDEE;  // parameter groups: row = TYFCOL + group - 1, column = value number
extern TMPUDRec TMPUD;
// Ten free interface variables per internal bus (from 1), BINTFA[0] ..
// BINTFA[9] for codes 201 .. 210, in the unit the models give them; zeroed
// by inilf, written by output codes 201-210 (fmlfot), read by input codes
// 201-210 (fmlfin) and the model output.
extern std::array<Arr<double>, 10> BINTFA;
// Names of the FL<n>.DAT table files named so far, from 1, over all
// calculations of the run; inifudlf adds names, openfl and closefl open and
// close them.
extern Arr<Text<10>> FUDLF;
extern int32_t IFUDLF;  // names in FUDLF

// Index of a model number in the planes of TYPEI, or -1 outside them.
int32_t typei_key(int32_t model);

// Makes row n valid in every array of a record family, growing by doubling.
template <typename... A>
void room(std::size_t n, A&... a) {
  (((n > a.size()) ? a.grow(std::max<std::size_t>(n, 2 * a.size() + 10)) : void()), ...);
}

}  // namespace lf

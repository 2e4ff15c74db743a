// Arrangement of the models: the library and the instances turned into one
// run of blocks, parameters, links, input and output bindings and recording
// requests for the whole case, so that the evaluation needs no lookup.
#include "control/blocks.hpp"
#include "control/models.hpp"
#include "control/udblock.hpp"
#include "control/udmodel.hpp"
#include "store/store.hpp"

namespace lf {

namespace {

// Requests recorded per instance; a ninth and later is counted but not kept.
constexpr int32_t kMaxRequests = 8;
// Room kept behind the last filter and timer.
constexpr int32_t kSpare = 10;

// The totals of the case so far.
struct Totals {
  int32_t par = 0, in1 = 0, in2 = 0, out = 0, req = 0, blk = 0, link = 1, filt = 0, timer = 0;
};

void add_binding(Arr<int32_t>& loc, Arr<int32_t>& code, Arr<int32_t>& blk, int32_t& n, int32_t l,
                 int32_t c, int32_t b) {
  ++n;
  room(static_cast<std::size_t>(n), loc, code, blk);
  loc[n] = l, code[n] = c, blk[n] = b;
}

// The links of block b (library row c, j-th of its model, whose rows start
// at first and count nblk): every block of the model whose input node is
// this block's output node is fed, on the port and with the sign of b.
void add_links(int32_t b, int32_t c, int32_t j, int32_t first, int32_t nblk, int32_t& link) {
  UDB.LNKFST[b] = link;
  for (int32_t m = 1; m <= nblk; ++m) {
    const int32_t c2 = first + m - 1;
    if (std::abs(DTBAD.NOUT[c]) != DTBAD.NIN[c2]) continue;
    const int32_t t = DTBAD.NOUT[c] < 0 ? -(b - j + m) : b - j + m;
    room(static_cast<std::size_t>(link), UDB.LNKX1, UDB.LNKX2);
    UDB.LNKX1[link] = DTBAD.PORT[c] == 2 ? 0 : t;
    UDB.LNKX2[link] = DTBAD.PORT[c] == 2 ? t : 0;
    ++link;
  }
  UDB.LNKCNT[b] = link - UDB.LNKFST[b];
}

void arrange(int32_t i, Totals& s) {
  room(static_cast<std::size_t>(i), UDR.BLKCNT, UDR.BLKFST, UDR.IN1CNT, UDR.IN1FST, UDR.OUCNT,
       UDR.OUFST, UDR.PARFST, UDIN.IN2CNT, UDIN.IN2FST, YP.YPLOC, YP.YPCNT, YP.YPFST);
  UDR.PARFST[i] = s.par + 1;
  UDR.IN1FST[i] = s.in1 + 1;
  UDIN.IN2FST[i] = s.in2 + 1;
  UDR.OUFST[i] = s.out + 1;
  YP.YPFST[i] = s.req + 1;
  const int32_t key = typei_key(UDR.UDTYPE[i]);
  const int32_t nblk = key < 0 ? 0 : TYPEI.TYNBLK[key];
  UDR.BLKCNT[i] = nblk;
  UDR.BLKFST[i] = i == 1 ? 1 : UDR.BLKFST[i - 1] + UDR.BLKCNT[i - 1];
  const int32_t first = nblk > 0 ? TYPEI.TYFBLK[key] : 0;
  const int32_t r = nblk > 0 ? UDR.UDGRP[i] + TYPEI.TYFCOL[key] - 1 : 0;
  const int32_t in1 = s.in1, in2 = s.in2, out = s.out;
  int32_t requests = 0;
  YP.YPLOC[i] = UDR.LOCCNT[i] > 0 ? UDR.LOCA[UDR.LOCFST[i]] : 0;
  for (int32_t j = 1; j <= nblk; ++j) {
    const int32_t c = first + j - 1, b = ++s.blk;
    const int32_t type = DTBAD.BTYPE[c];
    room(static_cast<std::size_t>(b), UDB.BLKTYP, UDB.BLKNPA, UDB.LNKFST, UDB.LNKCNT, UDB.BLKHLD);
    UDB.BLKTYP[b] = type;
    UDB.BLKNPA[b] = blknpa(type);
    // The parameters the block type stores, from the instance's group.  A
    // group or value outside the library's table reads 0.
    room(static_cast<std::size_t>(s.par) + 7 + 1, NUPA);
    for (char slot : blkslots(type)) {
      const int32_t v = DTBAD.PAR[slot - 'A'][c];
      const bool inside = r >= 1 && static_cast<std::size_t>(r) <= DTDEE.rows() && v >= 1 &&
                          static_cast<std::size_t>(v) <= DTDEE.cols();
      NUPA[++s.par] = inside ? DTDEE(r, v) : 0.0;
    }
    if (type == 51) ++s.filt;
    if (is_timer_block(type)) ++s.timer;
    if (DTBAD.IN1COD[c] != 0)
      add_binding(UDIN.IN1L, UDIN.IN1C, UDIN.IN1B, s.in1, DTBAD.IN1LOC[c], DTBAD.IN1COD[c], b);
    if (DTBAD.IN2COD[c] != 0)
      add_binding(UDIN.IN2L, UDIN.IN2C, UDIN.IN2B, s.in2, DTBAD.IN2LOC[c], DTBAD.IN2COD[c], b);
    if (const int32_t code = DTBAD.OUTCOD[c]; code != 0) {
      add_binding(UDOU.OUL, UDOU.OUC, UDOU.OUB, s.out, DTBAD.OUTLOC[c], code, b);
      if (code >= 16 && code <= 19) CL23 = 1;  // a model may change branch data
    }
    if (!DTBAD.OUTNAM[c].blank()) {
      if (++requests <= kMaxRequests) {
        ++s.req;
        room(static_cast<std::size_t>(s.req), YP.YPBLK, YP.YPNAM);
        YP.YPBLK[s.req] = b;
        YP.YPNAM[s.req] = DTBAD.OUTNAM[c];
      }
    }
    add_links(b, c, j, first, nblk, s.link);
  }
  YP.YPCNT[i] = requests;
  if (requests == 0) {
    YP.YPLOC[i] = 0;
  } else {
    ++NU.udout;
  }
  UDR.IN1CNT[i] = s.in1 - in1;
  UDIN.IN2CNT[i] = s.in2 - in2;
  UDR.OUCNT[i] = s.out - out;
}

}  // namespace

void fmlfar() {
  CL23 = 0;
  NU.udout = 0;
  Totals s;
  for (int32_t i = 1; i <= NU.nud; ++i) arrange(i, s);
  NNU1.nfilt = s.filt;
  // Block-local memory, zero before the first pass.
  for (Arr<double>* a : {&NU1.FS1O, &NU1.FS2O, &NU1.FS1N, &NU1.FS2N, &NU1.TMR})
    reallocate(*a, 0, s.filt + kSpare > s.timer + kSpare ? s.filt + kSpare : s.timer + kSpare);
  reallocate(NU1.LATCH, 0, s.timer + kSpare);
}

}  // namespace lf

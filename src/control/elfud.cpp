// The evaluation of the models inside the load-flow iteration: the start of
// a method (initial outputs and the start-up pass) and one evaluation per
// iteration, in which every instance reads its inputs from the network, runs
// its blocks in stored order and hands its outputs to the network.
#include <algorithm>
#include <cmath>

#include "control/blocks.hpp"
#include "control/models.hpp"
#include "control/udblock.hpp"
#include "control/udeval.hpp"
#include "control/udmodel.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"

namespace lf {

namespace {

// The start-up pass ends when no output moves by this much, or after
// kStartPasses passes without a word.
constexpr double kSettled = 0.0005;
constexpr int32_t kStartPasses = 51;
// The load flow runs the steady-state form of every block.
constexpr int32_t kSteadyState = 1;

int32_t last_block() {
  return NU.nud == 0 ? 0 : UDR.BLKFST[NU.nud] + UDR.BLKCNT[NU.nud] - 1;
}

void inilf() {
  const auto nodes = static_cast<std::size_t>(std::max(NO.nnode, 0));
  const auto results =
      static_cast<std::size_t>(std::max(UDR.OUFST[NU.nud] + UDR.OUCNT[NU.nud] - 1, 0));
  LFUDOT.grow(std::max(nodes, results));
  LFUDOT.UDCHG = 0;
  for (std::size_t i = 1; i <= nodes; ++i) {
    LFUDOT.UDGINJ[i] = LFUDOT.UDBINJ[i] = LFUDOT.UDOVAL[i] = 0;
    LFUDOT.UDOTYP[i] = LFUDOT.UDOLOC1[i] = LFUDOT.UDOLOC2[i] = 0;
  }
  const long long n = last_block() + 10;
  for (Arr<double>* a :
       {&UDXY.X1, &UDXY.X2, &UDXY.YO, &UDXY.Y, &UDXY.DX1, &UDXY.DX2, &UDXY.DYO, &UDXY.DY})
    reallocate(*a, 0, n);
  for (Arr<double>& a : BINTFA) {
    a.grow(std::max(kCapBus, nodes));
    a.fill(0);
  }
}

// Initial outputs: a block with an initial-value code starts at that network
// quantity and is free; one with only an initial-value parameter is held at
// that parameter of the instance's group.
void fmlfy0() {
  int32_t b = 0;
  for (int32_t i = 1; i <= NU.nud; ++i) {
    const int32_t key = typei_key(UDR.UDTYPE[i]);
    const int32_t first = UDR.BLKCNT[i] > 0 ? TYPEI.TYFBLK[key] : 0;
    for (int32_t j = 1; j <= UDR.BLKCNT[i]; ++j) {
      const int32_t c = first + j - 1;
      ++b;
      UDB.BLKHLD[b] = 0;
      if (const int32_t code = DTBAD.IVCOD[c]; code != 0) {
        int32_t loc1 = 0, loc2 = 0;
        double v = 0;
        resolve(i, DTBAD.IVLOC[c], loc1, loc2);
        fmlfin(code, loc1, loc2, v);
        UDXY.Y[b] = code > 0 ? v : -v;
      } else if (const int32_t v = DTBAD.IVPAR[c]; v != 0) {
        const int32_t r = UDR.UDGRP[i] + TYPEI.TYFCOL[key] - 1;
        UDB.BLKHLD[b] = 1;
        const bool inside = r >= 1 && static_cast<std::size_t>(r) <= DTDEE.rows() && v >= 1 &&
                            static_cast<std::size_t>(v) <= DTDEE.cols();
        UDXY.Y[b] = inside ? DTDEE(r, v) : 0.0;
      }
    }
  }
}

// The models run alone, the network standing, until their outputs settle.
void inilf2() {
  const int32_t nblk = last_block();
  int32_t start = 0;
  for (int32_t pass = 1; pass <= kStartPasses; ++pass) {
    traud();
    elfud(start);
    double d = 0;
    for (int32_t b = 1; b <= nblk; ++b) d = std::max(d, std::fabs(UDXY.Y[b] - UDXY.YO[b]));
    if (d < kSettled) return;
  }
}

// One kind of input binding of instance i into X1 or X2 of its blocks.
void read_inputs(int32_t i, int32_t first, int32_t count, const Arr<int32_t>& loc,
                 const Arr<int32_t>& code, const Arr<int32_t>& blk, Arr<double>& x) {
  for (int32_t k = first; k < first + count; ++k) {
    if (code[k] == 0) continue;
    int32_t loc1 = 0, loc2 = 0;
    double v = 0;
    resolve(i, loc[k], loc1, loc2);
    fmlfin(code[k], loc1, loc2, v);
    x[blk[k]] = code[k] > 0 ? v : -v;
  }
}

}  // namespace

void traud() {
  const int32_t nblk = last_block();
  for (int32_t b = 1; b <= nblk; ++b) UDXY.YO[b] = UDXY.Y[b];
  for (int32_t f = 1; f <= NNU1.nfilt; ++f) NU1.FS1O[f] = NU1.FS1N[f];
}

void initlf() {
  if (NU.nud == 0) return;
  inilf();
  fmlfy0();
  inilf2();
  fmlfy0();
}

void elfud(int32_t& iter) {
  iniout();
  int32_t n = 0, ntimer = 0, nfilt = 0, c = 0;
  NNU1.IPRED = 0;
  for (int32_t i = 1; i <= NU.nud; ++i) {
    read_inputs(i, UDR.IN1FST[i], UDR.IN1CNT[i], UDIN.IN1L, UDIN.IN1C, UDIN.IN1B, UDXY.X1);
    read_inputs(i, UDIN.IN2FST[i], UDIN.IN2CNT[i], UDIN.IN2L, UDIN.IN2C, UDIN.IN2B, UDXY.X2);
    int32_t p = UDR.PARFST[i];
    for (int32_t b = UDR.BLKFST[i]; b < UDR.BLKFST[i] + UDR.BLKCNT[i]; ++b)
      blrun(UDB.BLKTYP[b], kSteadyState, p, b, ntimer, nfilt);
    for (int32_t k = UDR.OUFST[i]; k < UDR.OUFST[i] + UDR.OUCNT[i]; ++k) {
      int32_t loc1 = 0, loc2 = 0;
      resolve(i, UDOU.OUL[k], loc1, loc2);
      const double v = UDXY.Y[UDOU.OUB[k]];
      ++n;
      const int32_t code = UDOU.OUC[k];
      if (iter == 0 && std::abs(code) > 200) {
        ++c;
        room(static_cast<std::size_t>(c), TMPUD.TMPBUS, TMPUD.TMPCOD);
        TMPUD.TMPBUS[c] = loc1;
        TMPUD.TMPCOD[c] = std::abs(code) - 200;
      }
      fmlfot(code, loc1, loc2, v, n);
    }
  }
  if (iter == 0) TMPUD.count = c;
  dwout(1, n);
}

}  // namespace lf

// Model input: the instances from the .L9 rows and from the control fields
// of the generator, load, line and transformer rows.
#include <cmath>
#include <string>

#include "control/models.hpp"
#include "control/udmodel.hpp"
#include "store/store.hpp"
#include "support/freeread.hpp"

namespace lf {

namespace {

// Model numbers of the data; the model type is 6000 + these.
constexpr int32_t kTypeBase = 6000;
// The standard models that the control fields of line and transformer rows
// make (docs/models.md), by model number.
constexpr int32_t kModelLineVoltage = 110;  // a line holds the voltage of a bus
constexpr int32_t kModelXfVoltage = 111;    // a transformer's ratio holds a bus voltage
constexpr int32_t kModelMeasureQ = 112;     // measures the reactive flow of the monitored line
constexpr int32_t kModelLineQ = 113;        // a line holds that reactive flow
constexpr int32_t kModelXfQ = 114;          // a transformer's ratio holds it
constexpr int32_t kModelMeasureP = 115;     // measures the active flow of the monitored line
constexpr int32_t kModelLineP = 116;        // a line holds that active flow
constexpr int32_t kModelXfRatioKept = 117;  // keeps a transformer's ratio as given
constexpr int32_t kModelXfP = 118;          // a transformer's ratio holds the active flow

// A row's values as given; what a derived row leaves out is 0.
struct SourceRow {
  int32_t no = 0, grp = 0, f3 = 0, f4 = 0, line = 0, side = 0, b1 = 0, b2 = 0, b3 = 0, b4 = 0;
  double p0 = 0, q0 = 0, v0 = 0;
};

int32_t next_location(int32_t a, int32_t b) {
  const int32_t k = UDR.LOCCNT[NU.nud] + UDR.LOCFST[NU.nud];
  room(static_cast<std::size_t>(k), UDR.LOCA, UDR.LOCB);
  UDR.LOCA[k] = a;
  UDR.LOCB[k] = b;
  return ++UDR.LOCCNT[NU.nud];
}

// Stores row r of S9 and L9 and makes its instance: the line first when
// there is one, then the buses given.
void add_instance(const SourceRow& s, int32_t r, bool all_buses) {
  room(static_cast<std::size_t>(r), S9.S9NO, S9.S9GRP, S9.S9F3, S9.S9F4, S9.S9LINE, S9.S9SIDE,
       S9.S9B1, S9.S9B2, S9.S9B3, S9.S9B4, L9.L9P0, L9.L9Q0, L9.L9V0, L9.L9BUS);
  S9.S9NO[r] = s.no, S9.S9GRP[r] = s.grp, S9.S9F3[r] = s.f3, S9.S9F4[r] = s.f4;
  S9.S9LINE[r] = s.line, S9.S9SIDE[r] = s.side;
  S9.S9B1[r] = s.b1, S9.S9B2[r] = s.b2, S9.S9B3[r] = s.b3, S9.S9B4[r] = s.b4;
  L9.L9P0[r] = s.p0, L9.L9Q0[r] = s.q0, L9.L9V0[r] = s.v0, L9.L9BUS[r] = s.b1;

  const int32_t i = ++NU.nud;
  ++NU.nud1;
  room(static_cast<std::size_t>(i), UDR.UDTYPE, UDR.LOCCNT, UDR.LOCFST, UDR.UDGRP);
  UDR.UDGRP[i] = s.grp == 0 ? 1 : s.grp;
  UDR.LOCFST[i] = i == 1 ? 1 : UDR.LOCFST[i - 1] + UDR.LOCCNT[i - 1];
  UDR.LOCCNT[i] = 0;
  if (s.line != 0) next_location(-s.line, s.side);
  if (all_buses) {
    for (int32_t b : {s.b1, s.b2, s.b3, s.b4})
      if (b != 0) next_location(b, 0);
  } else if (s.b1 != 0) {
    next_location(s.b1, 0);
    if (s.b2 != 0) next_location(s.b2, 0);
  }
  UDR.UDTYPE[i] = s.no + kTypeBase;
}

void add_derived(const SourceRow& s) {
  add_instance(s, ++S9.count, false);
}

// The branch that a control row names by its ends, in either direction, and
// its number; 0 when the network has none.
int32_t find_branch(int32_t i, int32_t j, int32_t no) {
  for (int32_t k = 1; k <= NO.nbranch; ++k) {
    if (IJB.No[k] != no) continue;
    if ((IJB.I[k] == i && IJB.J[k] == j) || (IJB.I[k] == j && IJB.J[k] == i)) return k;
  }
  return 0;
}

// A generator or a load under control: the model of its code, with the
// control bus or its own bus first, its own bus second.
void add_unit(bool generator, int32_t bus, int32_t& mode, const LPRec& p, int32_t row) {
  SourceRow s;
  s.grp = p.par_group[row];
  s.line = p.line_ctrl[row];
  s.b2 = bus;
  const double v = p.value_ctrl[row];
  switch (mode) {
    case -4:
      s.no = 100, s.b1 = p.ibs_ctrl[row], s.v0 = v;
      break;
    case -5:
      s.no = generator ? 101 : 105, s.b1 = p.ibs_ctrl[row], s.v0 = v, mode = 1;
      break;
    case -6:
      s.no = 102, s.b1 = bus, s.q0 = v;
      break;
    case -7:
      s.no = generator ? 103 : 106, s.b1 = bus, s.q0 = v, mode = 1;
      break;
    default:
      s.no = generator ? 104 : 107, s.b1 = bus, s.p0 = v, mode = 1;
      break;
  }
  add_derived(s);
}

// The branch of a line or transformer row under control mode 1 .. last,
// 0 for another mode or a branch missing from the network.
int32_t controlled_branch(int32_t mode, int32_t last, int32_t i, int32_t j, int32_t no) {
  return mode >= 1 && mode <= last ? find_branch(i, j, no) : 0;
}

bool generator_at(int32_t bus) {
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g)
    if (L5.ibs[g] == bus) return true;
  return false;
}

}  // namespace

void rl9(const CaseName& casename) {
  FreeReader in;
  if (!in.open(casename.trimmed() + ".L9")) return;
  for (;;) {
    int32_t mark = 0;
    SourceRow s;
    if (!in(mark, s.no, s.grp, s.b1, s.p0, s.q0, s.v0, s.f3, s.f4, s.line, s.side, s.b2, s.b3,
            s.b4))
      break;
    if (mark > 0) add_instance(s, ++S9.count, true);
  }
  NU.nl9 = S9.count;
}

void addl9() {
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g)
    if (L5.mode_ctrl[g] <= kTypeModel4) add_unit(true, L5.ibs[g], L5.mode_ctrl[g], L5P, g);
  for (int32_t d = 1; d <= LFINF.nload; ++d) {
    int32_t& mode = L6.mode_ctrl[d];
    if (mode > kTypeModel4) continue;
    if (!generator_at(L6.ibs[d])) {
      add_unit(false, L6.ibs[d], mode, L6P, d);
      continue;
    }
    // A load at a generator's bus makes no instance; its type is reset at
    // the row numbered by the count of source rows, not at its own row.
    const int32_t rows = S9.count;
    if (rows >= 1 && rows <= static_cast<int32_t>(L6.mode_ctrl.size()))
      L6.mode_ctrl[rows] = (mode == kTypeModel4 || mode == kTypeModel6) ? kTypePV : kTypePQ;
  }
  for (int32_t k = 1; k <= LFINF.nacline; ++k) {
    const int32_t mode = L2P.mode_ctrl[k];
    const int32_t b = controlled_branch(mode, kLineHoldsQ, L2P.I[k], L2P.J[k], L2P.No[k]);
    if (b == 0) continue;
    SourceRow s;
    s.line = IJB.No[b];
    const double v = L2P.value_ctrl[k];
    if (mode == kLineHoldsVoltage) {
      s.no = kModelLineVoltage, s.grp = L2P.par_group[k], s.b1 = L2P.ibs_ctrl[k], s.v0 = v;
      add_derived(s);
      continue;
    }
    SourceRow first = s;
    const bool active = mode == kLineHoldsP;
    first.no = active ? kModelMeasureP : kModelMeasureQ, first.grp = 1, first.b1 = IJB.I[b];
    first.line = L2P.line_ctrl[k];
    (active ? first.p0 : first.q0) = v;
    add_derived(first);
    s.no = active ? kModelLineP : kModelLineQ, s.grp = L2P.par_group[k], s.b1 = IJB.I[b];
    (active ? s.p0 : s.q0) = v;
    add_derived(s);
  }
  for (int32_t t = 1; t <= LFINF.ntrans; ++t) {
    const int32_t mode = L3P.mode_ctrl[t];
    const int32_t b = controlled_branch(mode, kXfHoldsQ, L3P.I[t], L3P.J[t], L3P.No[t]);
    if (b == 0) continue;
    SourceRow s{.grp = L3P.par_group[t], .line = IJB.No[b]};
    const double v = L3P.value_ctrl[t];
    SourceRow first = s;
    first.grp = 1, first.b1 = IJB.I[b];
    switch (mode) {
      case kXfRatioKept:  // the ratio handed over to a model that keeps it
        first.no = kModelXfRatioKept, first.b2 = IJB.J[b], first.p0 = v, first.q0 = RXB.T[b];
        add_derived(first);
        RXB.T[b] = 1.0;
        break;
      case kXfHoldsP:  // the ratio handed over to a model that moves it
        first.no = kModelMeasureP, first.q0 = RXB.T[b], first.v0 = v, first.line = L3P.line_ctrl[t];
        add_derived(first);
        s.no = kModelXfP, s.b1 = IJB.I[b], s.b2 = IJB.J[b], s.q0 = RXB.T[b], s.v0 = v;
        add_derived(s);
        RXB.T[b] = 1.0;
        break;
      case kXfHoldsVoltage:  // the ratio holds the voltage of the control bus
        s.no = kModelXfVoltage, s.b1 = L3P.ibs_ctrl[t], s.v0 = v;
        add_derived(s);
        break;
      default:  // the reactive flow of a line held by the ratio
        first.no = kModelMeasureQ, first.q0 = v, first.line = L3P.line_ctrl[t];
        add_derived(first);
        s.no = kModelXfQ, s.b1 = IJB.I[b], s.b2 = IJB.J[b], s.q0 = v;
        add_derived(s);
        break;
    }
  }
}

void rudlf(const CaseName& casename, const CaseName& libname) {
  NU.nud = 0;
  NU.nud1 = 0;
  NU.udout = 0;
  S9.count = 0;
  if (NU.nl9 != 0) rl9(casename);
  addl9();
  rlflib(libname);
}

}  // namespace lf

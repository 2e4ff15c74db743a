// The bindings of the models to the network: where a location points, what
// an input code reads and what an output code does.
#include <cmath>
#include <string>

#include "control/udblock.hpp"
#include "control/udeval.hpp"
#include "control/udmodel.hpp"
#include "io/errlist.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"
#include "support/angles.hpp"
#include "support/fmt.hpp"
#include "support/tolerances.hpp"

namespace lf {

namespace {

// Below this a ratio counts as 1 in the models' branch currents: their own
// floor, larger on purpose than the one the admittance matrix uses.
constexpr double kMinRatioOfModels = 0.0001;
// The bus type that output code 15 stores is pushed by this before it is
// rounded; the test of the stored type afterwards pushes by the larger
// kTypePushTest.  The two differ on purpose.
constexpr double kTypePushStore = 0.001;
constexpr double kTypePushTest = 0.01;

// Internal number of an external bus number, 0 outside the table.
int32_t internal(int32_t bus) {
  return bus >= 1 && static_cast<std::size_t>(bus) <= NEW.size() ? NEW[bus] : 0;
}

// The name of an external bus for the messages, blank when it has none.
std::string bus_name(int32_t bus) {
  if (bus < 1 || bus > NO.nnode || static_cast<std::size_t>(bus) > NNTOON.map.size())
    return BusName().str();
  const int32_t c = NNTOON[bus];
  return c >= 1 && static_cast<std::size_t>(c) <= L1.busname.size() ? L1.busname[c].str()
                                                                    : BusName().str();
}

// The current of branch k at the given side, with the voltages of its i end
// first unless `j_first`.
void branch_current(int32_t k, int32_t side, bool j_first, double& ir, double& ii) {
  const int32_t a = internal(IJB.I[k]), b = internal(IJB.J[k]);
  const int32_t p = j_first ? b : a, q = j_first ? a : b;
  double ratio = RXB.T[k];
  ir = ii = 0;
  aiap(side, RXB.R[k], RXB.X[k], ratio, RXB.B[k], VPQ.E[p], VPQ.F[p], VPQ.E[q], VPQ.F[q], ir, ii);
}

// The rows at internal bus i, 0 when none.
int32_t gen_at(int32_t i) {
  return i >= 1 && i <= NO.nnode ? GLP.IGEN[i] : 0;
}
int32_t load_at(int32_t i) {
  return i >= 1 && i <= NO.nnode ? GLP.ILOAD[i] : 0;
}

void set_ef(int32_t i) {
  VPQ.E[i] = VPQ.V[i] * std::cos(VPQ.TH[i]);
  VPQ.F[i] = VPQ.V[i] * std::sin(VPQ.TH[i]);
}

// The bus type that output code 15 gives: the value rounded toward zero
// after a small push away from it.
int32_t bus_type(double v, double push) {
  return static_cast<int32_t>(v >= 0 ? v + push : v - push);
}

}  // namespace

int32_t find_line(int32_t no) {
  for (int32_t k = 1; k <= NO.nbranch; ++k)
    if (IJB.No[k] == no) return k;
  return 0;
}

void resolve(int32_t i, int32_t n, int32_t& loc1, int32_t& loc2) {
  const int32_t o = UDR.LOCFST[i];
  int32_t k = o;
  if (n > 0) k = UDR.LOCA[o] < 0 ? o + n : o + n - 1;
  if (k < 1 || static_cast<std::size_t>(k) > UDR.LOCA.size()) {
    loc1 = loc2 = 0;
    return;
  }
  loc1 = UDR.LOCA[k];
  loc2 = UDR.LOCB[k];
}

void aiap(int32_t side, double r, double x, double& k, double b, double e1, double f1, double e2,
          double f2, double& ir, double& ii) {
  if (std::fabs(k) < kMinRatioOfModels) k = 1;
  const double a = e1 * k - e2, b2 = f1 * k - f2;
  double z = (x * x + r * r) * k;
  if (std::fabs(z) < kTinyDivisor) z = z >= 0 ? kTinyDivisor : -kTinyDivisor;
  if (side == 1) {
    ir = (x * b2 + r * a) / z - f1 * b;
    ii = b * e1 + (b2 * r - a * x) / z;
  } else if (side == 2) {
    const double d = k * z;
    ir = (-b2 * x - r * a) / d - f2 * b;
    ii = b * e2 + (-b2 * r + x * a) / d;
  }
}

void fmlfin(int32_t code, int32_t loc1, int32_t loc2, double& value) {
  int32_t& side = UDKEEP.side;
  value = 0;
  const int32_t k = std::abs(code);
  const int32_t i = internal(loc1);
  if (k <= 9) {
    switch (k) {
      case 0:
      case 1:
        value = VPQ.V[i];
        return;
      case 2:
        value = kRadToDegShort * VPQ.TH[i];
        return;
      case 3:
        value = VPQ.E[i];
        return;
      case 4:
        value = VPQ.F[i];
        return;
      case 5:
        value = VPQ.PG[i];
        return;
      case 6:
        value = VPQ.QG[i];
        return;
      case 7:
        value = VPQ.PL[i];
        return;
      case 8:
        value = VPQ.QL[i];
        return;
      default: {
        const int32_t g = gen_at(i), l = load_at(i);
        value = 1;
        if (g != 0) value = L5.mode_ctrl[g];
        if (l != 0) value = L6.mode_ctrl[l];
        return;
      }
    }
  }
  if (k <= 12) {
    for (int32_t r = 1; r <= NU.nud; ++r) {
      if (L9.L9BUS[r] != loc1) continue;
      value = k == 10 ? L9.L9P0[r] : k == 11 ? L9.L9Q0[r] : L9.L9V0[r];
      return;
    }
    errlist_write("U.D Data ERROR: No P0 In Bus  ;" + bus_name(loc1));
    return;
  }
  if (k <= 21) {
    const int32_t b = find_line(std::abs(loc1));
    if (b == 0) {
      errlist_write("U.D Data ERROR: No Line No." + fmt_i(std::abs(loc1), 6));
      return;
    }
    const int32_t p = internal(IJB.I[b]), q = internal(IJB.J[b]);
    double ir = 0, ii = 0;
    switch (k) {
      case 13:
        if (loc2 <= 1) side = 1;
        if (loc2 == 2) side = 2;
        branch_current(b, side, false, ir, ii);
        value = std::sqrt(ir * ir + ii * ii);
        return;
      case 14:
      case 15:
        branch_current(b, 1, false, ir, ii);
        value = k == 14 ? VPQ.E[p] * ir + VPQ.F[p] * ii : VPQ.F[p] * ir - VPQ.E[p] * ii;
        return;
      case 16:
      case 17:
        branch_current(b, 2, true, ir, ii);
        value = k == 16 ? VPQ.E[q] * ir + VPQ.F[q] * ii : VPQ.F[q] * ir - VPQ.E[q] * ii;
        return;
      case 18:
        value = RXB.R[b];
        return;
      case 19:
        value = RXB.X[b];
        return;
      case 20:
        value = RXB.B[b];
        return;
      default:
        value = RXB.T[b];
        return;
    }
  }
  if (k == 23) {
    value = UDWORK;
  } else if (k <= 200) {
    value = 1.0;
  } else {
    value = BINTFA[k <= 210 ? k - 201 : 0][i];
  }
}

void fmlfot(int32_t code, int32_t loc1, int32_t loc2, double value, int32_t n) {
  if (code < 0) value = -value;
  const int32_t k = std::abs(code);
  if (k <= 200) {
    LFUDOT.UDOTYP[n] = k;
    LFUDOT.UDOLOC1[n] = loc1;
    LFUDOT.UDOLOC2[n] = loc2;
    LFUDOT.UDOVAL[n] = value;
    return;
  }
  BINTFA[k <= 210 ? k - 201 : 0][internal(loc1)] = value;
}

void dwout(int32_t first, int32_t last) {
  if (first > last) return;
  LFUDOT.UDCHG = 0;
  bool typed = false;
  for (int32_t n = first; n <= last; ++n) {
    const int32_t k = LFUDOT.UDOTYP[n];
    if (k == 0) continue;
    const double v = LFUDOT.UDOVAL[n];
    const int32_t bus = LFUDOT.UDOLOC1[n], i = internal(bus);
    const int32_t g = gen_at(i), l = load_at(i);
    const auto no_row = [&](const char* which) {
      errlist_write("U.D Data ERROR: No Bus ;" + bus_name(bus) + which);
    };
    switch (k) {
      case 1:
      case 2:
      case 15:
        if (g == 0 && l == 0) {
          no_row(" In Generator And Load");
          break;
        }
        if (k == 1) {
          if (g) L5.V[g] = v;
          if (l) L6.V[l] = v;
          VPQ.V[i] = v;
        } else if (k == 2) {
          if (g) L5.Angle[g] = v;
          if (l) L6.Angle[l] = v;
          VPQ.TH[i] = kDegToRadSingle * v;
        } else {
          if (g) L5.mode_ctrl[g] = bus_type(v, kTypePushStore);
          if (l) L6.mode_ctrl[l] = bus_type(v, kTypePushStore);
          typed = true;
          break;
        }
        set_ef(i);
        break;
      case 3:
        LFUDOT.UDPINJ[i] += v;
        break;
      case 4:
        LFUDOT.UDQINJ[i] += v;
        break;
      case 9:
        LFUDOT.UDGINJ[i] += v;
        break;
      case 10:
        LFUDOT.UDBINJ[i] += v;
        break;
      case 5:
      case 6:
      case 11:
      case 12:
        if (g == 0) {
          no_row(" In Generator");
        } else if (k == 5 || k == 11) {
          L5.P[g] = (k == 5 ? L5.P[g] : 0) + v;
        } else {
          L5.Q[g] = (k == 6 ? L5.Q[g] : 0) + v;
        }
        break;
      case 7:
      case 8:
      case 13:
      case 14:
        if (l == 0) {
          no_row(" In Load");
        } else if (k == 7 || k == 13) {
          L6.P[l] = (k == 7 ? L6.P[l] : 0) + v;
        } else {
          L6.Q[l] = (k == 8 ? L6.Q[l] : 0) + v;
        }
        break;
      default: {  // 16-19 a branch parameter; 20-200 act as 16
        const int32_t b = find_line(std::abs(bus));
        if (b == 0) {
          errlist_write("U.D Data ERROR: No No. " + fmt_i(std::abs(bus), 6) +
                        " In Line or Transformer");
          break;
        }
        LFUDOT.UDCHG = 1;
        (k == 17 ? RXB.X : k == 18 ? RXB.B : k == 19 ? RXB.T : RXB.R)[b] = v;
        break;
      }
    }
  }
  // Extra currents become extra powers at the present voltages.
  for (int32_t i = 1; i <= NO.nnode; ++i) {
    const double p = LFUDOT.UDGINJ[i], q = LFUDOT.UDBINJ[i];
    if (std::fabs(q) + std::fabs(p) < kNoInjection) continue;
    LFUDOT.UDPINJ[i] += q * VPQ.F[i] + p * VPQ.E[i];
    LFUDOT.UDQINJ[i] += p * VPQ.F[i] - q * VPQ.E[i];
  }
  if (!typed) return;
  // A bus turned to a swing or voltage bus takes its row's voltage (and the
  // swing bus its angle) at once.
  for (int32_t n = first; n <= last; ++n) {
    if (LFUDOT.UDOTYP[n] != 15) continue;
    const int32_t t = bus_type(LFUDOT.UDOVAL[n], kTypePushTest);
    const int32_t i = internal(LFUDOT.UDOLOC1[n]), g = gen_at(i), l = load_at(i);
    if (t <= kTypeSlack) {
      if (g) VPQ.V[i] = L5.V[g];
      if (l) VPQ.V[i] = L6.V[l];
      if (t == kTypeSlack && g) VPQ.TH[i] = kDegToRadSingle * L5.Angle[g];
      if (t == kTypeSlack && l) VPQ.TH[i] = kDegToRadSingle * L6.Angle[l];
    }
    set_ef(i);
  }
}

void iniout() {
  if (NU.nud == 0) return;
  const int32_t results = UDR.OUFST[NU.nud] + UDR.OUCNT[NU.nud] - 1;
  for (int32_t n = 1; n <= results; ++n) {
    LFUDOT.UDOTYP[n] = LFUDOT.UDOLOC1[n] = LFUDOT.UDOLOC2[n] = 0;
    LFUDOT.UDOVAL[n] = 0;
  }
  for (int32_t i = 1; i <= NO.nnode; ++i)
    LFUDOT.UDPINJ[i] = LFUDOT.UDQINJ[i] = LFUDOT.UDGINJ[i] = LFUDOT.UDBINJ[i] = 0;
}

}  // namespace lf

// The two Jacobians of the Newton family, in rectangular coordinates: the
// unknowns of bus i are e_i, f_i (V_i = e_i + j f_i), the admittance Y_ik =
// G_ik + j B_ik, and the bus current sum I_i = sum_k Y_ik V_k = ir_i + j ii_i.
//
// Power equations (formj).  P_i = e_i ir_i + f_i ii_i, Q_i = f_i ir_i - e_i ii_i.
// For a bus with P and Q given the block of column k != i is
//   dP/de_k = e_i G + f_i B,  dP/df_k = f_i G - e_i B,
//   dQ/de_k = f_i G - e_i B,  dQ/df_k = -(e_i G + f_i B),
// and the diagonal adds the bus's own current: dP/de_i += ir_i, dP/df_i +=
// ii_i, dQ/de_i -= ii_i, dQ/df_i += ir_i.  A voltage-dependent load takes its
// derivative d(P_load)/dV, d(Q_load)/dV through V = sqrt(e^2 + f^2) off the
// diagonal.  For a bus with V given the second row is V_i^2 = e_i^2 + f_i^2:
// d/de_i = 2 e_i, d/df_i = 2 f_i.  The methods solve J dx = mismatch and
// subtract dx, so every entry here carries the sign of -dF/dx.
//
// Current equations (iformj).  A bus with P and Q given balances its current:
// the real and imaginary parts of I_i - conj(S_i / V_i); a bus with V given
// keeps the power form above; a slack bus has the identity block and the
// mismatch e - VS cos(A), f - VS sin(A) (VS, A the row's voltage and angle).
//
// Both walk the same pattern: for
// each bus its entries in ascending column, taken from the admittance matrix
// (the lower part from its layout by column, then the diagonal and the upper
// part of the row), with the columns of slack buses left out and a slack row
// reduced to the identity block.  So the pattern never changes with the bus
// types, and the factors found on the first iteration serve all later ones.
#include <cmath>

#include "methods/newton.hpp"
#include "methods/newton_frame.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf {

namespace {

// The kinds of bus that the Jacobian tells apart (the values of JKIND).
enum : uint8_t { kPQ, kFixedV, kSlack };

// Calls put(k, j, g, b, diag) for each entry of row i of the Jacobian, in
// ascending column j: k is the entry's place in JA, g and b the conductance
// and susceptance of the pair in Y.  Returns the next free place.
template <typename Put>
inline int32_t walk_row(int32_t i, int32_t k, const uint8_t* kind, Put&& put) {
  // Below the diagonal: column i of Y above its diagonal, rows ascending.
  for (int32_t t = Y.CSTART[i]; t < Y.CSTART[i + 1]; ++t) {
    const int32_t r = Y.CROW[t];
    if (kind[r] != kSlack) put(k++, r, Y.CG[t], Y.CB[t], false);
  }
  const int32_t d = Y.IY[i];
  put(k++, i, Y.YG[d], Y.YB[d], true);
  const int32_t end = Y.IY[i + 1];
  for (int32_t p = d + 1; p < end; ++p) {
    const int32_t c = Y.JY[p];
    if (kind[c] != kSlack) put(k++, c, Y.YG[p], Y.YB[p], false);
  }
  return k;
}

// The kind of each bus 1 to n: kPQ, kFixedV or kSlack, formed anew in JKIND
// for each Jacobian.
const uint8_t* bus_kinds(int32_t n) {
  JKIND.grow(static_cast<std::size_t>(n));
  for (int32_t i = 1; i <= n; ++i) JKIND[i] = slack_bus(i) ? kSlack : pq_row(i) ? kPQ : kFixedV;
  return JKIND.data();
}

// The identity block of a slack row.
inline int32_t identity_row(int32_t i, int32_t k, Arr<int32_t>& ja, const BlockSink& a) {
  ja[k] = i;
  a.put(k, 1, 0, 0, 1);
  return k + 1;
}

// Derivatives of a voltage-dependent load at the bus, subtracted from the
// diagonal of a row with P and Q given.
inline void load_terms(int32_t row, double e, double f, double& aa, double& ab, double& ac,
                       double& ad) {
  const int32_t t = L6.mode_ctrl[row];
  const double v = std::sqrt(e * e + f * f);
  const double v0 = L6.V[row];
  const double p0 = L6.P[row];
  const double q0 = L6.Q[row];
  const double ap = ABCLC.ap[t], bp = ABCLC.bp[t], aq = ABCLC.aq[t], bq = ABCLC.bq[t];
  aa -= ((e * bp / v) / v0 + (e * 2 * ap) / (v0 * v0)) * p0;
  ab -= ((f * bp / v) / v0 + (2 * ap * f) / (v0 * v0)) * p0;
  ac -= ((e * bq / v) / v0 + (e * 2 * aq) / (v0 * v0)) * q0;
  ad -= ((f * bq / v) / v0 + (2 * aq * f) / (v0 * v0)) * q0;
}

// The power form of row i from place k on: the derivatives of the power
// balance, or for a bus with V given of the voltage equation.  Returns the
// next free place.
int32_t power_row(int32_t i, int32_t k, const uint8_t* kind, const Arr<double>& ir,
                  const Arr<double>& ii, Arr<int32_t>& ja, const BlockSink& a) {
  const double e = VPQ.E[i], f = VPQ.F[i];
  const bool pq = kind[i] == kPQ;
  return walk_row(i, k, kind, [&](int32_t kk, int32_t j, double g, double b, bool diag) {
    ja[kk] = j;
    if (!diag) {
      const double xa = -(e * g) - f * b;
      const double xb = e * b - f * g;
      a.put(kk, xa, xb, pq ? xb : 0, pq ? -xa : 0);
      return;
    }
    double xa = (-ir[i] - e * g) - f * b;
    double xb = (e * b - ii[i]) - f * g;
    double xc, xd;
    if (pq) {
      xc = (e * b + ii[i]) - f * g;
      xd = b * f + (e * g - ir[i]);
      const int32_t l = GLP.ILOAD[i];
      if (l != 0 && L6.mode_ctrl[l] >= kTypeFirstLoadSet) load_terms(l, e, f, xa, xb, xc, xd);
    } else {
      xc = -2 * e;
      xd = -2 * f;
    }
    a.put(kk, xa, xb, xc, xd);
  });
}

}  // namespace

Arr<uint8_t> JKIND;

void formj(int32_t /*nent*/, const Arr<double>& ir, const Arr<double>& ii, Arr<int32_t>& ia,
           Arr<int32_t>& ja, const BlockSink& out) {
  const int32_t n = NO.nnode;
  const uint8_t* kind = bus_kinds(n);
  int32_t k = 1;
  ia[1] = 1;
  for (int32_t i = 1; i <= n; ++i) {
    k = kind[i] == kSlack ? identity_row(i, k, ja, out) : power_row(i, k, kind, ir, ii, ja, out);
    ia[i + 1] = k;
  }
}

void iformj(int32_t /*nent*/, const Arr<double>& ir, const Arr<double>& ii, Arr<double>& d1,
            Arr<double>& d2, Arr<int32_t>& ia, Arr<int32_t>& ja, const BlockSink& out) {
  const int32_t n = NO.nnode;
  const uint8_t* kind = bus_kinds(n);
  const bool inject = NU.nud != 0 || UPCLF != 0;  // the models' extra injections
  int32_t k = 1;
  ia[1] = 1;
  for (int32_t i = 1; i <= n; ++i) {
    const int32_t g5 = GLP.IGEN[i], l6 = GLP.ILOAD[i];
    const double e = VPQ.E[i], f = VPQ.F[i];
    // The voltage given at the bus: the generator row's, else the load row's.
    const double vs = g5 != 0 ? L5.V[g5] : (l6 != 0 ? L6.V[l6] : 0.0);
    if (kind[i] == kSlack) {
      const double a = (g5 != 0 ? L5.Angle[g5] : L6.Angle[l6]) * kDegToRadSingle;
      d1[i] = e - vs * std::cos(a);
      d2[i] = f - vs * std::sin(a);
      k = identity_row(i, k, ja, out);
      ia[i + 1] = k;
      continue;
    }
    // The injection given in the rows, loads at their nominal values.
    double sp = VPQ.PDC[i], sq = VPQ.QDC[i];
    if (inject) {
      sp += LFUDOT.UDPINJ[i];
      sq += LFUDOT.UDQINJ[i];
    }
    if (g5 != 0) {
      sp += L5.P[g5];
      sq += L5.Q[g5];
    }
    if (l6 != 0) {
      sp -= L6.P[l6];
      sq -= L6.Q[l6];
    }
    const double vsq = e * e + f * f;
    if (kind[i] == kPQ) {
      const double cr = (f * sq + e * sp) / vsq;
      const double ci = (sp * f - sq * e) / vsq;
      k = walk_row(i, k, kind, [&](int32_t kk, int32_t j, double g, double b, bool diag) {
        ja[kk] = j;
        if (!diag) {
          out.put(kk, g, -b, b, g);
          return;
        }
        out.put(kk, g - (sp - 2 * e * cr) / vsq, -b - (sq - 2 * f * cr) / vsq,
                (2 * e * ci + sq) / vsq + b, g - (sp - 2 * f * ci) / vsq);
      });
      d1[i] = ir[i] - cr;
      d2[i] = ii[i] - ci;
    } else {
      k = power_row(i, k, kind, ir, ii, ja, out);
      d1[i] = sp - d1[i];
      d2[i] = vs * vs - vsq;
    }
    ia[i + 1] = k;
  }
}

}  // namespace lf

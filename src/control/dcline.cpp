// The two-terminal DC lines: per-unit data (dcval) and the converter model
// evaluated in every iteration (dctran, dcsub).
//
// Per pole, with the rectifier i and the inverter j, c = 3/pi, Xc the
// commutation reactance, Id the DC current, Rdc the loop resistance, V_a the
// AC bus voltage and tk the converter transformer's tap (per unit):
//   E_i = V_ai / tk_i,                 E_j = V_aj / tk_j     (valve-side AC voltages)
//   Vd_i = E_i cos(alpha) - c Xc_i Id  (rectifier, firing angle alpha)
//   Vd_j = E_j cos(gamma) - c Xc_j Id  (inverter, extinction angle gamma)
//   Vd_j = Vd_i - Id Rdc
// With the angles fixed the taps follow from the voltages; a tap held at its
// limit fixes that end's voltage instead, and with both taps held the firing
// angle gives: cos(alpha) = (c Xc_i Id + Vd_i) / E_i.  The AC injections,
// with the converters' power factors h = Vd / E:
//   P_i = -I_i V_ai h_i,  Q_i = -I_i V_ai sqrt(1 - h_i^2)   (I = Id / tk, drawn)
//   P_j =  I_j V_aj h_j,  Q_j = -I_j V_aj sqrt(1 - h_j^2)   (delivered)
// go to PDC, QDC of the two buses, with the filters' reactive power Qc.
#include "control/dcline.hpp"

#include <cmath>

#include "sparse/ymatrix.hpp"
#include "store/vpq.hpp"
#include "support/angles.hpp"

namespace lf {

namespace {

constexpr double kInductanceAt50Hz = 0.0031830988614222804;  // 1 / (2 pi 50)
constexpr double kThreeOverPi = 3 * 0.31830988614222805;
constexpr double kVoltageLow = 0.800000011920929;  // window in which a line follows the AC voltages
constexpr double kVoltageHigh = 1.2000000476837158;
constexpr double kNoData = 0.000000001;

// The AC base voltage of the class in which a converter transformer's high
// voltage lies.
double ac_base(double kv) {
  if (kv <= 40) return 37;
  if (kv <= 150) return 115;
  if (kv <= 280) return 230;
  if (kv <= 370) return 345;
  if (kv <= 440) return 400;
  if (kv <= 550) return 525;
  if (kv <= 850) return 765;
  return 1150;
}

// The resistance that a line's current meets, by operating mode; a mode
// outside the table keeps the value of the line before.
void dc_resistance(int32_t k, double& rdc) {
  switch (NL4.op_mode[k]) {
    case kDcBipole:
      rdc = NL4.rl_ohm[k];
      break;
    case kDcEarthReturn:
      rdc = NL4.rpi_ohm[k] + NL4.rl_ohm[k] + NL4.rpj_ohm[k] + NL4.rei_ohm[k] + NL4.rej_ohm[k];
      break;
    case kDcMetallicReturn:
      rdc = 2 * NL4.rl_ohm[k];
      break;
    case kDcParallel:
      rdc = 0.5 * NL4.rl_ohm[k] + NL4.rpi_ohm[k] + NL4.rpj_ohm[k] + NL4.rei_ohm[k] + NL4.rej_ohm[k];
      break;
    default:
      break;
  }
}

// Holds a tap ratio inside its range; true when it had to be moved.
bool limit_tap(double& tk, double tkmax, double tkmin) {
  if (tk > tkmax) {
    tk = tkmax;
    return true;
  }
  if (tk < tkmin) {
    tk = tkmin;
    return true;
  }
  return false;
}
}  // namespace

void DCBASERec::grow(std::size_t n) {
  grow_all(n, vbi, vbj, vdb, idb, zdb, ldb, tkbi, tkbj);
}
void DCLFPURec::grow(std::size_t n) {
  grow_all(n, VD1PU, VD2PU, tkimax, tkimin, tkjmax, tkjmin, xci, xcj, qcip, qcjp);
}
void DCLFOPRec::grow(std::size_t n) {
  grow_all(n, vaci, vacj, id10, id20, tk1i, tk1j, tk2i, tk2j, vd10i, vd10j, vd20i, vd20j, pd1i,
           qd1i, pd1j, qd1j, pd2i, qd2i, pd2j, qd2j, a10r_d, a20r_d);
}
void LDC3Rec::grow(std::size_t n) {
  grow_all(n, ibs, jbs, pi, pj);
}

DCBASERec DCBASE = sized<DCBASERec>(kCapDc);
DCLFPURec DCLFPU = sized<DCLFPURec>(kCapDc);
DCLFOPRec DCLFOP = sized<DCLFOPRec>(kCapDc);
LDC3Rec LDC3 = sized<LDC3Rec>(kCapDc);

void dcval() {
  const int32_t n = LFINF.ndcline;
  if (n < 1) return;
  const std::size_t un = static_cast<std::size_t>(n);
  NL4.grow(un);
  DCBASE.grow(un);
  DCLFPU.grow(un);
  DCLFOP.grow(un);
  LDC3.grow(un);
  const double base = LFINF.base_mva;
  for (int32_t k = 1; k <= n; ++k) {
    const double vbi = DCBASE.vbi[k] = ac_base(NL4.vhi_kv[k]);
    const double vbj = DCBASE.vbj[k] = ac_base(NL4.vhj_kv[k]);
    const double vdb = DCBASE.vdb[k] = NL4.vdrate_kv[k];
    const double idb = DCBASE.idb[k] = base / vdb;
    const double zdb = DCBASE.zdb[k] = vdb / idb;
    const double ldb = DCBASE.ldb[k] = zdb * kInductanceAt50Hz * kMillihenryPerHenry;
    const double tkbi = DCBASE.tkbi[k] = vbi / vdb * kBridgeFactor;
    const double tkbj = DCBASE.tkbj[k] = vbj / vdb * kBridgeFactor;

    for (Arr<double>* r : {&NL4.rpi_ohm, &NL4.rpj_ohm, &NL4.rl_ohm, &NL4.rei_ohm, &NL4.rej_ohm})
      (*r)[k] /= zdb;
    for (Arr<double>* l : {&NL4.lpi_mh, &NL4.lpj_mh, &NL4.ll_mh, &NL4.lsi_mh, &NL4.lsj_mh})
      (*l)[k] /= ldb;

    const double ni = NL4.vli_kv[k] * NL4.i_bridge[k];
    const double nj = NL4.vlj_kv[k] * NL4.j_bridge[k];
    DCLFPU.xci[k] = ni * ni * NL4.xti_perc[k] / (100 * NL4.sti_mva[k] * zdb);
    DCLFPU.xcj[k] = nj * nj * NL4.xtj_perc[k] / (100 * NL4.stj_mva[k] * zdb);
    DCLFPU.qcip[k] = NL4.qci_mvar[k] / base;
    DCLFPU.qcjp[k] = NL4.qcj_mvar[k] / base;

    const double ti = 1 / (ni * tkbi);
    DCLFPU.tkimax[k] = ti * NL4.vtimax_kv[k];
    DCLFPU.tkimin[k] = ti * NL4.vtimin_kv[k];
    DCLFOP.tk1i[k] = DCLFOP.tk2i[k] = ti * NL4.vhi_kv[k];
    const double tj = 1 / (nj * tkbj);
    DCLFPU.tkjmax[k] = tj * NL4.vtjmax_kv[k];
    DCLFPU.tkjmin[k] = tj * NL4.vtjmin_kv[k];
    DCLFOP.tk1j[k] = DCLFOP.tk2j[k] = tj * NL4.vhj_kv[k];

    DCLFPU.VD1PU[k] = NL4.vd1_kv[k] / vdb;
    DCLFPU.VD2PU[k] = NL4.vd2_kv[k] / vdb;
    DCLFOP.id10[k] = (NL4.pd1_mw[k] / base) / DCLFPU.VD1PU[k];
    if (NL4.op_mode[k] == kDcBipole) DCLFOP.id20[k] = (NL4.pd2_mw[k] / base) / DCLFPU.VD2PU[k];

    for (Arr<double>* p : {&DCLFOP.pd1i, &DCLFOP.qd1i, &DCLFOP.pd1j, &DCLFOP.qd1j, &DCLFOP.pd2i,
                           &DCLFOP.qd2i, &DCLFOP.pd2j, &DCLFOP.qd2j})
      (*p)[k] = 0;
  }
}

void dcsub(int32_t k, double rdc, double& vdi, double id, double& alpha, double gamma, double& tki,
           double& tkj, double& vdj, double& pi, double& qi, double& pj, double& qj) {
  const double vai = DCLFOP.vaci[k] = VPQ.V[NEW[NL4.I[k]]];
  const double vaj = DCLFOP.vacj[k] = VPQ.V[NEW[NL4.J[k]]];
  const double xci = DCLFPU.xci[k], xcj = DCLFPU.xcj[k];
  double ca = std::cos(kDegToRadDc * alpha);
  const double cg = std::cos(kDegToRadDc * gamma);

  // Firing and extinction angles fixed: the taps follow from the voltages.
  double ei = (kThreeOverPi * xci * id + vdi) / ca;
  tki = vai / ei;
  double ii = id / tki;
  vdj = vdi - id * rdc;
  double ej = (kThreeOverPi * xcj * id + vdj) / cg;
  tkj = vaj / ej;
  double ij = id / tkj;

  bool flag1 = limit_tap(tki, DCLFPU.tkimax[k], DCLFPU.tkimin[k]);
  bool flag2 = limit_tap(tkj, DCLFPU.tkjmax[k], DCLFPU.tkjmin[k]);

  if (flag1 && !flag2) {  // rectifier on its tap limit: its DC voltage gives
    ii = id / tki;
    ei = vai / tki;
    vdi = ei * ca - kThreeOverPi * xci * id;
    vdj = vdi - id * rdc;
    ej = (kThreeOverPi * xcj * id + vdj) / cg;
    tkj = vaj / ej;
    ij = id / tkj;
    flag2 = limit_tap(tkj, DCLFPU.tkjmax[k], DCLFPU.tkjmin[k]);
  }
  if (flag2 && !flag1) {  // inverter on its tap limit
    ij = id / tkj;
    ej = vaj / tkj;
    vdj = ej * cg - kThreeOverPi * xcj * id;
    vdi = vdj + id * rdc;
    ei = (kThreeOverPi * xci * id + vdi) / ca;
    tki = vai / ei;
    ii = id / tki;
    flag1 = limit_tap(tki, DCLFPU.tkimax[k], DCLFPU.tkimin[k]);
  }
  if (flag1 && flag2) {  // both on limits: the firing angle gives
    ij = id / tkj;
    ej = vaj / tkj;
    vdj = cg * ej - kThreeOverPi * xcj * id;
    vdi = id * rdc + vdj;
    ei = vai / tki;
    ii = id / tki;
    ca = (id * kThreeOverPi * xci + vdi) / ei;
    if (std::fabs(ca) > 1) ca = ca > 0 ? 1 : -1;
    alpha = std::acos(ca) * kRadToDegDc;
  }

  const double hi = vdi / ei, hj = vdj / ej;  // power factors of the converters
  double si = 1 - hi * hi, sj = 1 - hj * hj;
  if (si < 0) si = 0;
  if (sj < 0) sj = 0;
  pi = -(ii * vai * hi);
  qi = -(ii * vai * std::sqrt(si));
  pj = (ij * vaj) * hj;
  qj = -((ij * vaj) * std::sqrt(sj));
}

void dctran() {
  const int32_t n = LFINF.ndcline;
  for (int32_t k = 1; k <= n; ++k) {
    const int32_t a = NEW[NL4.I[k]], b = NEW[NL4.J[k]];
    VPQ.PDC[a] = VPQ.QDC[a] = VPQ.PDC[b] = VPQ.QDC[b] = 0;
  }
  DCLFOPRec& op = DCLFOP;
  double rdc = 0;
  for (int32_t k = 1; k <= n; ++k) {
    const int32_t a = NEW[NL4.I[k]], b = NEW[NL4.J[k]];
    const double va = VPQ.V[a], vb = VPQ.V[b];
    // Outside the window the last operating point stands, so that a poor
    // start of the AC iteration does not drive the converters.
    if (va >= kVoltageLow && va <= kVoltageHigh && vb >= kVoltageLow && vb <= kVoltageHigh) {
      dc_resistance(k, rdc);
      op.vd10i[k] = DCLFPU.VD1PU[k];
      op.a10r_d[k] = NL4.a10_d[k];
      dcsub(k, rdc, op.vd10i[k], op.id10[k], op.a10r_d[k], NL4.gam10_d[k], op.tk1i[k], op.tk1j[k],
            op.vd10j[k], op.pd1i[k], op.qd1i[k], op.pd1j[k], op.qd1j[k]);
      if (NL4.op_mode[k] >= kDcBipole) {
        const double s1 = std::fabs(NL4.gam10_d[k]) + std::fabs(NL4.gam1min_d[k]) +
                          std::fabs(NL4.a10_d[k]) + std::fabs(NL4.a1min_d[k]) +
                          std::fabs(NL4.pd1_mw[k]) + NL4.vd1_kv[k];
        const double s2 = std::fabs(NL4.gam20_d[k]) + std::fabs(NL4.gam2min_d[k]) +
                          std::fabs(NL4.a20_d[k]) + std::fabs(NL4.a2min_d[k]) +
                          std::fabs(NL4.pd2_mw[k]) + NL4.vd2_kv[k];
        if (s2 < kNoData || std::fabs(s1 - s2) < kNoData) {
          // The second pole has no data of its own, or the same: it runs as the first.
          op.vd20i[k] = op.vd10i[k];
          op.vd20j[k] = op.vd10j[k];
          op.id20[k] = op.id10[k];
          op.a20r_d[k] = op.a10r_d[k];
          op.tk2i[k] = op.tk1i[k];
          op.tk2j[k] = op.tk1j[k];
          op.pd2i[k] = op.pd1i[k];
          op.qd2i[k] = op.qd1i[k];
          op.pd2j[k] = op.pd1j[k];
          op.qd2j[k] = op.qd1j[k];
        } else {
          op.vd20i[k] = DCLFPU.VD2PU[k];
          op.a20r_d[k] = NL4.a20_d[k];
          dcsub(k, rdc, op.vd20i[k], op.id20[k], op.a20r_d[k], NL4.gam20_d[k], op.tk2i[k],
                op.tk2j[k], op.vd20j[k], op.pd2i[k], op.qd2i[k], op.pd2j[k], op.qd2j[k]);
        }
      }
    }
    VPQ.PDC[a] += op.pd1i[k] + op.pd2i[k];
    VPQ.QDC[a] += op.qd1i[k] + op.qd2i[k] + DCLFPU.qcip[k];
    VPQ.PDC[b] += op.pd1j[k] + op.pd2j[k];
    VPQ.QDC[b] += op.qd1j[k] + op.qd2j[k] + DCLFPU.qcjp[k];
    if (NL4.op_mode[k] == kDcBipole) {  // one filter per pole at each end
      VPQ.QDC[a] += DCLFPU.qcip[k];
      VPQ.QDC[b] += DCLFPU.qcjp[k];
    }
  }
}

int32_t dc_poles(int32_t k) {
  return NL4.op_mode[k] == kDcBipole ? 2 : 1;
}

double converter_tap_percent(double tk, int32_t bridges, double vb, double vdb, double vl,
                             double vh) {
  const double m = tk * bridges * vb / vdb * vl * kBridgeFactor / vh;
  return (m - 1) * 100;
}

}  // namespace lf

#include "store/store.hpp"

namespace lf {

void LL1Rec::grow(std::size_t n) {
  grow_all(n, basekv, busarea, busvmax, busvmin);
}
void IJRec::grow(std::size_t n) {
  grow_all(n, I, J, No, LOSSAREA);
}
void RXRec::grow(std::size_t n) {
  grow_all(n, R, X, B, T);
}
void IJOPENRec::grow(std::size_t n) {
  grow_all(n, I, J, No, mark);
}
void L2PRec::grow(std::size_t n) {
  grow_all(n, value_ctrl, mode_ctrl, par_group, ibs_ctrl, line_ctrl, I, J, No);
}
void L3PRec::grow(std::size_t n) {
  grow_all(n, value_ctrl, ang_shift, mode_ctrl, par_group, ibs_ctrl, line_ctrl, I, J, No);
}
void L3PPRec::grow(std::size_t n) {
  grow_all(n, Rm, Xm);
}
void NL4Rec::grow(std::size_t n) {
  grow_all(n, I, J, No, LOSSAREA, rpi_ohm, lpi_mh, rpj_ohm, lpj_mh, rl_ohm, ll_mh, rei_ohm, rej_ohm,
           lsi_mh, lsj_mh, vdrate_kv, vhi_kv, vli_kv, i_bridge, sti_mva, rti_ohm, xti_perc,
           vtimax_kv, vtimin_kv, i_tap, vhj_kv, vlj_kv, j_bridge, stj_mva, rtj_ohm, xtj_perc,
           vtjmax_kv, vtjmin_kv, j_tap, op_mode, qci_mvar, qcj_mvar, pd1_mw, vd1_kv, a1min_d, a10_d,
           gam1min_d, gam10_d, pd2_mw, vd2_kv, a2min_d, a20_d, gam2min_d, gam20_d);
}
void L5Rec::grow(std::size_t n) {
  grow_all(n, P, Q, V, Angle, ibs, mode_ctrl, merged);
}
void LPRec::grow(std::size_t n) {
  grow_all(n, Qmax, Qmin, Pmax, Pmin, value_ctrl, par_group, ibs_ctrl, line_ctrl);
}
void L5OLDRec::grow(std::size_t n) {
  grow_all(n, ibs, mode_ctrl, merged, map, P, Q, share);
}
void L6Rec::grow(std::size_t n) {
  grow_all(n, P, Q, V, Angle, ibs, No, mode_ctrl);
}
void L6PPRec::grow(std::size_t n) {
  grow_all(n, ibs, No, mode_ctrl, P, Q);
}
void LL7Rec::grow(std::size_t n) {
  grow_all(n, p_schedule, tolerance, pmax, unit, area_no);
}
void L10Rec::grow(std::size_t n) {
  grow_all(n, PG, QG, PL, QL, kv, area, name1, name2);
}
void ABCLCRec::grow(std::size_t n) {
  grow_all(n, ap, bp, cp, aq, bq, cq);
}
void L13Rec::grow(std::size_t n) {
  grow_all(n, valid, group, type, I, J, sw1, sw2, sw3, line1, load1, line2, load2);
}

LFINFRec LFINF;
LF93Rec LF93;
NORec NO;
NURec NU;
RTDBLSCMNRec RTDBLSCMN;
int32_t RMXMVALID = 0;
int32_t MARKL23 = 0;
int32_t CL23 = 0;
int32_t UPCLF = 0;

L1Rec L1;  // growable: sized by the reading of the buses (grow_buses), since its
           // blank-padded names would otherwise be written for kCapBus buses at start-up
LL1Rec LL1 = sized<LL1Rec>(kCapBus);
IJRec IJB = sized<IJRec>(kCapBranch);
IJRec IJC = sized<IJRec>(kCapBranch);
RXRec RXB = sized<RXRec>(kCapBranch);
RXRec RXC = sized<RXRec>(kCapBranch);
IJOPENRec IJOPEN = sized<IJOPENRec>(kCapBranch);
L2PRec L2P = sized<L2PRec>(kCapBranch);
L3PRec L3P = sized<L3PRec>(kCapBranch);
L3PPRec L3PP = sized<L3PPRec>(kCapBranch);
NL4Rec NL4 = sized<NL4Rec>(kCapDc);
L5Rec L5 = sized<L5Rec>(kCapGen);
LPRec L5P = sized<LPRec>(kCapGen);
L5OLDRec L5OLD;  // growable: sized by the merging
L6Rec L6 = sized<L6Rec>(kCapLoad);
LPRec L6P = sized<LPRec>(kCapLoad);
L6PPRec L6PP = sized<L6PPRec>(kCapLoad);
L7Rec L7 = sized<L7Rec>(kCapArea);
LL7Rec LL7 = sized<LL7Rec>(kCapArea);
L10Rec L10;  // growable: sized by the reading of the factor records
ABCLCRec ABCLC = sized<ABCLCRec>(kCapLoadPar);
L13Rec L13 = sized<L13Rec>(kCapSwitch);
NNTOONRec NNTOON = sized<NNTOONRec>(kCapBus);

CaseName casename;
CaseName datalibname;
CaseName udlibname;

void grow_buses(std::size_t n) {
  grow_all(n, L1, LL1, NNTOON);
}
void grow_branches(std::size_t n) {
  grow_all(n, IJB, RXB, IJOPEN, IJC, RXC, L2P, L3P, L3PP);
}
void grow_generators(std::size_t n) {
  grow_all(n, L5, L5P);
}
void grow_loads(std::size_t n) {
  grow_all(n, L6, L6P, L6PP);
}

}  // namespace lf

// The network and library tables of the real-time database: one flat row
// record and one binder per table.  Each list gives the columns in the
// binder's order with their types; the records bind every column, so that a
// row written back keeps the values of the columns the engine never looks at.
#pragma once

#include "rtdb/binding.hpp"

// clang-format off
#define LF_COLUMNS_global(X) \
  X(id, int4) X(base_mva, real4) X(nextbs, int4) X(nullbs, int4) X(nulavbs, int4) \
  X(nextbsl, int4) X(nullbsl, int4) X(nullprbs, int4) X(tprtime, int4) X(tprallnew, int4) \
  X(statusdb, int4) X(timedb, int4) X(error, int4) X(dberrnum, int4)

#define LF_COLUMNS_kv(X) \
  X(id, asciiz) X(descr, asciiz) X(dv, asciiz) X(st, asciiz) X(ibs, int4) X(ibsl, int4) \
  X(vbase, real4) X(vmax, real4) X(vmin, real4) X(sc1, real4) X(sc3, real4) X(q, int4) \
  X(r_st, int4) X(r_un, int4) X(r_cb, int4) X(r_ld, int4) X(r_cp, int4) X(r_bus, int4) \
  X(r_zbr, int4) X(r_nd, int4)

#define LF_COLUMNS_bs(X) \
  X(id, int4) X(name, asciiz) X(ikv, int4) X(kv, real8) X(iisland, int4) X(q, int4) X(qq, int4) \
  X(fbs, int4) X(bbs, int4) X(ibsl, int4) X(v, real8) X(adeg, real8) X(e, real8) X(f, real8) \
  X(w, real8) X(r, real8) X(iobisle, int4)

#define LF_COLUMNS_bus(X) \
  X(id, asciiz) X(descr, asciiz) X(kv, asciiz) X(nd, asciiz) X(ind, int4) X(ibs, int4) \
  X(v, real8) X(adeg, real8) X(f, real4) X(vmax, real4) X(vmin, real4) X(q, int4) \
  X(topflags, int4) X(r_kv, int4)

#define LF_COLUMNS_ln(X) \
  X(id, asciiz) X(descr, asciiz) X(lntype, int4) X(dv, asciiz) X(nd, asciiz) X(ind, int4) \
  X(znd, asciiz) X(iznd, int4) X(lnno, int4) X(ibs, int4) X(zbs, int4) X(iln2, int4) \
  X(zln2, int4) X(st, asciiz) X(zst, asciiz) X(kv, asciiz) X(zkv, asciiz) X(r1, real4) \
  X(x1, real4) X(bch, real4) X(r0, real4) X(x0, real4) X(bch0, real4) X(rci, real4) \
  X(rcz, real4) X(w, real4) X(r, real4) X(i, real4) X(wz, real4) X(rz, real4) X(iz, real4) \
  X(rate_ka, real4) X(up_limit, real4) X(type, asciiz) X(length_km, real4) X(mode_ctrl, int4) \
  X(par_group, int4) X(nd_ctrl, asciiz) X(ibs_ctrl, int4) X(line_ctrl, int4) \
  X(value_ctrl, real4) X(q, int4) X(topflags, int4) X(r_dv, int4)

#define LF_COLUMNS_cp(X) \
  X(id, asciiz) X(descr, asciiz) X(cpno, int4) X(kv, asciiz) X(nd, asciiz) X(ind, int4) \
  X(ibs, int4) X(q, int4) X(topflags, int4) X(r1, real4) X(x1, real4) X(r0, real4) X(x0, real4) \
  X(w, real4) X(r, real4) X(i, real4) X(type, asciiz) X(mode_ctrl, int4) X(par_no, int4) \
  X(nd_ctrl, asciiz) X(ibs_ctrl, int4) X(line_ctrl, int4) X(value_ctrl, real4) \
  X(rate_capa, real4) X(rate_v0, real4) X(r_kv, int4)

#define LF_COLUMNS_xf(X) \
  X(id, asciiz) X(descr, asciiz) X(xfno, int4) X(type, int4) X(ang_shift, real4) X(st, asciiz) \
  X(kv, asciiz) X(zkv, asciiz) X(nd, asciiz) X(znd, asciiz) X(ind, int4) X(iznd, int4) \
  X(ibs, int4) X(zbs, int4) X(ixf2, int4) X(zxf2, int4) X(w, real4) X(r, real4) X(i, real4) \
  X(wz, real4) X(rz, real4) X(iz, real4) X(pm, real4) X(qm, real4) X(q, int4) X(topflags, int4) \
  X(r_st, int4) X(iconn, asciiz) X(zconn, asciiz) X(zero_conn, int4) X(r1, real4) X(x1, real4) \
  X(r0, real4) X(x0, real4) X(rm, real4) X(xm, real4) X(rate_mva, real4) X(up_limit, real4) \
  X(mode_ctrl, int4) X(par_no, int4) X(nd_ctrl, asciiz) X(ibs_ctrl, int4) X(line_ctrl, int4) \
  X(value_ctrl, real4) X(tk, real4) X(itapmax, int4) X(itapmin, int4) X(ivstep_tap, real4) \
  X(iv0_tap, real4) X(ip0_tap, int4) X(ivpos_tap, int4) X(ztapmax, int4) X(ztapmin, int4) \
  X(zvstep_tap, real4) X(zv0_tap, real4) X(zp0_tap, int4) X(zvpos_tap, int4) X(ltc, int4)

#define LF_COLUMNS_dln(X) \
  X(id, asciiz) X(descr, asciiz) X(dlnno, int4) X(dv, asciiz) X(nd, asciiz) X(ind, int4) \
  X(znd, asciiz) X(iznd, int4) X(ibs, int4) X(zbs, int4) X(idln2, int4) X(zdln2, int4) \
  X(st, asciiz) X(zst, asciiz) X(kv, asciiz) X(zkv, asciiz) X(q, int4) X(topflags, int4) \
  X(r_dv, int4) X(rpi_ohm, real4) X(lpi_mh, real4) X(rpj_ohm, real4) X(lpj_mh, real4) \
  X(rl_ohm, real4) X(ll_mh, real4) X(rei_ohm, real4) X(rej_ohm, real4) X(lsi_mh, real4) \
  X(lsj_mh, real4) X(op_mode, int4) X(vdrate_kv, real4) X(vd1_kv, real4) X(pd1_mw, real4) \
  X(a1min_d, real4) X(a10_d, real4) X(gam1min_d, real4) X(gam10_d, real4) X(vd2_kv, real4) \
  X(pd2_mw, real4) X(a2min_d, real4) X(a20_d, real4) X(gam2min_d, real4) X(gam20_d, real4) \
  X(vhi_kv, real4) X(vli_kv, real4) X(i_bridge, int4) X(qci_mvar, real4) X(sti_mva, real4) \
  X(rti_ohm, real4) X(xti_perc, real4) X(vtimax_kv, real4) X(vtimin_kv, real4) X(i_tap, int4) \
  X(vhj_kv, real4) X(vlj_kv, real4) X(j_bridge, int4) X(qcj_mvar, real4) X(stj_mva, real4) \
  X(rtj_ohm, real4) X(xtj_perc, real4) X(vtjmax_kv, real4) X(vtjmin_kv, real4) X(j_tap, int4) \
  X(w, real4) X(r, real4) X(i, real4) X(wz, real4) X(rz, real4) X(iz, real4) X(id10, real8) \
  X(id20, real8) X(vaci, real8) X(vacj, real8) X(pd1i, real8) X(qd1i, real8) X(vd10i, real8) \
  X(tk1i, real8) X(ttk1i, real8) X(a10r_d, real8) X(pd1j, real8) X(qd1j, real8) X(vd10j, real8) \
  X(tk1j, real8) X(ttk1j, real8) X(pd2i, real8) X(qd2i, real8) X(vd20i, real8) X(tk2i, real8) \
  X(ttk2i, real8) X(a20r_d, real8) X(pd2j, real8) X(qd2j, real8) X(vd20j, real8) X(tk2j, real8) \
  X(ttk2j, real8) X(vbi, real8) X(vbj, real8) X(vdb, real8) X(idb, real8) X(zdb, real8) \
  X(ldb, real8) X(tkbi, real8) X(tkbj, real8) X(rpi, real8) X(lpi, real8) X(rpj, real8) \
  X(lpj, real8) X(rl, real8) X(ll, real8) X(rei, real8) X(rej, real8) X(lsi, real8) \
  X(lsj, real8) X(xci, real8) X(xcj, real8) X(tkimax, real8) X(tkimin, real8) X(tkjmax, real8) \
  X(tkjmin, real8) X(qcip, real8) X(qcjp, real8) X(dc_model, int4) X(reg_type, int4) \
  X(reg_fon, int4) X(reg_par, int4) X(reg_set, real4) X(amax_d, real4) X(amin_d, real4) \
  X(ireg_fon, int4) X(ireg_par, int4) X(ireg_set, real4) X(vreg_fon, int4) X(vreg_par, int4) \
  X(vreg_set, real4) X(greg_fon, int4) X(greg_par, int4) X(greg_set, real4) X(bmax_d, real4) \
  X(bmin_d, real4) X(im_percent, real4) X(vlow_perc, real4) X(idmax_ka, real4) \
  X(idmin_ka, real4) X(dki_perc, real4) X(dkj_perc, real4) X(dti_s, real4) X(dtj_s, real4) \
  X(v_relay_perc, real4) X(t_relay, real4) X(type_fadc, int4) X(k_fadc, int4) X(ts_fadc, real4) \
  X(te_fadc, real4) X(tdo, real4) X(tda, real4) X(tdb, real4) X(tdc, real4) X(n_rs, int4) \
  X(v_rs_perc, real4)

#define LF_COLUMNS_un(X) \
  X(id, asciiz) X(descr, asciiz) X(kv, asciiz) X(nd, asciiz) X(ind, int4) X(ibs, int4) \
  X(wmx, real4) X(rmx, real4) X(wmn, real4) X(rmn, real4) X(wm, real4) X(rm, real4) \
  X(auxw, real4) X(auxr, real4) X(pin, real4) X(qin, real4) X(w, real4) X(r, real4) X(i, real4) \
  X(v, real4) X(adeg, real4) X(mode_ctrl, int4) X(par_group, int4) X(nd_ctrl, asciiz) \
  X(ibs_ctrl, int4) X(line_ctrl, int4) X(value_ctrl, real4) X(gen_model, int4) X(gen_par, int4) \
  X(avr_model, int4) X(avr_par, int4) X(gov_model, int4) X(gov_par, int4) X(pss_model, int4) \
  X(pss_par, int4) X(rate_mva, real4) X(rate_mw, real4) X(xdp, real4) X(xdpp, real4) \
  X(x2, real4) X(tj, real4) X(q, int4) X(topflags, int4) X(r_kv, int4)

#define LF_COLUMNS_ld(X) \
  X(id, asciiz) X(descr, asciiz) X(ldno, int4) X(kv, asciiz) X(nd, asciiz) X(ind, int4) \
  X(ibs, int4) X(q, int4) X(topflags, int4) X(v, real4) X(adeg, real4) X(w, real4) X(r, real4) \
  X(i, real4) X(wmx, real4) X(rmx, real4) X(wmn, real4) X(rmn, real4) X(wm, real4) X(rm, real4) \
  X(mode_ctrl, int4) X(par_group, int4) X(nd_ctrl, asciiz) X(ibs_ctrl, int4) X(line_ctrl, int4) \
  X(value_ctrl, real4) X(load_model, int4) X(load_par, int4) X(z_percent, int4) X(r_kv, int4)

#define LF_COLUMNS_load_lib(X) \
  X(par_no, int4) X(ap, real4) X(bp, real4) X(cp, real4) X(fp, real4) X(np, real4) X(aq, real4) \
  X(bq, real4) X(cq, real4) X(fq, real4) X(nq, real4) X(note, asciiz)

#define LF_COLUMNS_status(X) \
  X(id, asciiz) X(descr, asciiz) X(value, int4) X(quality, int4)

#define LF_COLUMNS_co(X) \
  X(id, asciiz) X(descr, asciiz) X(wloss, real4) X(rloss, real4) X(wgen, real4) X(rgen, real4) \
  X(wload, real4) X(rload, real4) X(cap, real4) X(reac, real4) X(r_dv, int4)

#define LF_COLUMNS_dv(X) \
  X(id, asciiz) X(descr, asciiz) X(co, asciiz) X(wloss, real4) X(rloss, real4) X(wgen, real4) \
  X(rgen, real4) X(wload, real4) X(rload, real4) X(cap, real4) X(reac, real4) X(r_co, int4) \
  X(r_st, int4) X(r_ln, int4) X(r_dln, int4)

#define LF_COLUMNS_st(X) \
  X(id, asciiz) X(descr, asciiz) X(dv, asciiz) X(type, int4) X(qcomp, int4) X(wgen, real4) \
  X(rgen, real4) X(wload, real4) X(rload, real4) X(r_dv, int4) X(r_kv, int4) X(r_xf, int4)

#define LF_COLUMNS_nd(X) \
  X(id, asciiz) X(ibs, int4) X(primebs, int4) X(q, int4) X(fch, int4) X(bch, int4) \
  X(r_kv, int4) X(r_cb2, int4) X(r_ln2, int4) X(r_xf2, int4) X(r_zbr2, int4) X(r_dln2, int4)

#define LF_COLUMNS_cb(X) \
  X(id, asciiz) X(descr, asciiz) X(cbno, int4) X(kv, asciiz) X(q, int4) X(status, asciiz) \
  X(istatus, int4) X(icb2, int4) X(zcb2, int4) X(nd, asciiz) X(ind, int4) X(znd, asciiz) \
  X(iznd, int4) X(ibs, int4) X(zbs, int4) X(topflags, int4) X(w, real4) X(r, real4) \
  X(r_kv, int4)

#define LF_COLUMNS_svc(X) \
  X(id_name, asciiz) X(q, int4) X(set_bus, asciiz) X(iset_bus, int4) X(ctrl_bus, asciiz) \
  X(ictrl_bus, int4) X(model, int4) X(par_no, int4) X(x_fixed, real4)

#define LF_COLUMNS_mutual(X) \
  X(mut_group, int4) X(valid, int4) X(idac1, asciiz) X(i_name1, asciiz) X(ibs1, int4) \
  X(j_name1, asciiz) X(jbs1, int4) X(id_no1, int4) X(idac2, asciiz) X(i_name2, asciiz) \
  X(ibs2, int4) X(j_name2, asciiz) X(jbs2, int4) X(id_no2, int4) X(xm, real4) X(bm_half, real4)

#define LF_COLUMNS_zbr(X) \
  X(id, asciiz) X(descr, asciiz) X(cb, asciiz) X(icb, int4) X(ind, int4) X(iznd, int4) \
  X(ibs, int4) X(zbs, int4) X(izbr2, int4) X(zzbr2, int4) X(w, real4) X(r, real4) X(i, real4) \
  X(q, int4) X(topflags, int4) X(r_kv, int4)

#define LF_COLUMNS_island(X) \
  X(id, int4) X(refbs, int4) X(refun, int4) X(vref, real4) X(f, real4) X(wload, real4) \
  X(wgen, real4) X(slackid, asciiz) X(descr, asciiz)

#define LF_COLUMNS_tpl(X) \
  X(id, int4) X(type, int4) X(q, int4) X(devid, asciiz) X(newbs, int4) X(oldbs, int4) \
  X(time, int4) X(changed, asciiz)

#define LF_COLUMNS_tptrace(X) \
  X(id, int4) X(deviceid, asciiz) X(type, int4) X(sub, int4) X(close, int4) X(time, int4)

#define LF_COLUMNS_gen_lib(X) \
  X(par_no, int4) X(sb_lib, real4) X(xd, real4) X(xdp, real4) X(xdpp, real4) X(xq, real4) \
  X(xqp, real4) X(xqpp, real4) X(x2, real4) X(ra, real4) X(td0p, real4) X(td0pp, real4) \
  X(tq0p, real4) X(tq0pp, real4) X(tj, real4) X(a, real4) X(b, real4) X(n, real4) \
  X(d_sec, real4) X(note, asciiz)

#define LF_COLUMNS_avr1_lib(X) \
  X(par_no, int4) X(k_measure, real4) X(t_measure, real4) X(k_amplify, real4) \
  X(t_amplify, real4) X(k_feed, real4) X(t_feed, real4) X(t_exciter, real4) X(efd_max, real4) \
  X(efd_min, real4) X(note, asciiz)

#define LF_COLUMNS_avr2_lib(X) \
  X(par_no, int4) X(k_measure, real4) X(t_measure, real4) X(k_type, int4) X(t1, real4) \
  X(t2, real4) X(t3, real4) X(t4, real4) X(k_amplify, real4) X(t_amplify, real4) \
  X(k_voltage, real4) X(k_current, real4) X(k_arc, real4) X(efd_max, real4) X(efd_min, real4) \
  X(vt_max, real4) X(vt_min, real4) X(note, asciiz)

#define LF_COLUMNS_av1112_lib(X) \
  X(par_no, int4) X(xc_modul, real4) X(tr_measure, real4) X(k_dcplus, real4) X(kv_integ, real4) \
  X(t1_series, real4) X(t2_series, real4) X(t3_series, real4) X(t4_series, real4) \
  X(ka_amplify, real4) X(ta_amplify, real4) X(vamax, real4) X(vamin, real4) X(kf_paral, real4) \
  X(tf_paral, real4) X(vrmax, real4) X(vrmin, real4) X(kc_load, real4) X(mgl, int4) \
  X(ifdinf, real4) X(b_accept, real4) X(c_resume, real4) X(kl2_lim, real4) X(tl1, real4) \
  X(tl2, real4) X(t_over, real4) X(typedl, int4) X(p1_lim, real4) X(q1_lim, real4) \
  X(p2_lim, real4) X(q2_lim, real4) X(kh2_ampli, real4) X(th1, real4) X(th2, real4) \
  X(vs_pos, int4) X(note, asciiz)

#define LF_COLUMNS_av310_lib(X) \
  X(par_no, int4) X(xc_modul, real4) X(tr_measure, real4) X(k_dcplus, real4) X(kv_integ, real4) \
  X(t1_series, real4) X(t2_series, real4) X(t3_series, real4) X(t4_series, real4) \
  X(ka_amplify, real4) X(ta_amplify, real4) X(vamax, real4) X(vamin, real4) X(kf_paral, real4) \
  X(tf_paral, real4) X(kh1_feed, real4) X(kb_adjust, real4) X(t5_adjust, real4) X(vrmax, real4) \
  X(vrmin, real4) X(ke_exciter, real4) X(te_exciter, real4) X(vemax, real4) \
  X(c1_exciter, real4) X(c2_exciter, real4) X(kc_load, real4) X(kd_exciter, real4) \
  X(efdmax, real4) X(mql, int4) X(kl1_lim, real4) X(vl1r, real4) X(mgl, int4) X(ifdinf, real4) \
  X(b_accept, real4) X(c_resume, real4) X(t_over, real4) X(kl2_lim, real4) X(tl1, real4) \
  X(tl2, real4) X(typedl, int4) X(p1_lim, real4) X(q1_lim, real4) X(p2_lim, real4) \
  X(q2_lim, real4) X(kh2_ampli, real4) X(th1, real4) X(th2, real4) X(note, asciiz)

#define LF_COLUMNS_gov_lib(X) \
  X(par_no, int4) X(kd, real4) X(ki, real4) X(kb, real4) X(t_service, real4) \
  X(dead_range, real4) X(valve_max, real4) X(valve_min, real4) X(gate_max, real4) \
  X(gate_min, real4) X(k_overheat, real4) X(ti, real4) X(tw, real4) X(t0, real4) X(trh, real4) \
  X(note, asciiz)

#define LF_COLUMNS_gov2_lib(X) \
  X(par_no, int4) X(k_rev, real4) X(death, real4) X(tr, real4) X(tb, real4) X(topen, real4) \
  X(tc, real4) X(velc, real4) X(velo, real4) X(pmax, real4) X(pmin, real4) X(tch, real4) \
  X(fhp, real4) X(trh, real4) X(fip, real4) X(tco, real4) X(flp, real4) X(lnd, real4) \
  X(tsh, real4) X(td, real4) X(tw, real4) X(k_mp, real4) X(tdly, real4) X(vmax, real4) \
  X(vmin, real4) X(note, asciiz)

#define LF_COLUMNS_gov3_lib(X) \
  X(par_no, int4) X(death, real4) X(k_rev, real4) X(t1, real4) X(kmld, int4) X(kp1, real4) \
  X(kd1, real4) X(ki1, real4) X(imax1, real4) X(imin1, real4) X(pmax1, real4) X(pmin1, real4) \
  X(kmldf, int4) X(ffmax, real4) X(ffmin, real4) X(kmap, int4) X(kp2, real4) X(kd2, real4) \
  X(ki2, real4) X(imax2, real4) X(imin2, real4) X(pmax2, real4) X(pmin2, real4) X(cmax, real4) \
  X(cmin, real4) X(tc, real4) X(topen, real4) X(velc, real4) X(velo, real4) X(pmax, real4) \
  X(pmin, real4) X(tf, real4) X(kp, real4) X(kd, real4) X(ki, real4) X(imax, real4) \
  X(imin, real4) X(pidmax, real4) X(pidmin, real4) X(tch, real4) X(fhp, real4) X(trh, real4) \
  X(fip, real4) X(tco, real4) X(flp, real4) X(lnd, real4) X(tsh, real4) X(td, real4) \
  X(tw, real4) X(k_mp, real4) X(tdly, real4) X(vmax, real4) X(vmin, real4) X(note, asciiz)

#define LF_COLUMNS_gov4_lib(X) \
  X(par_no, int4) X(t1, real4) X(death, real4) X(k_rev, real4) X(kmct, int4) X(kp1, real4) \
  X(kd1, real4) X(ki1, real4) X(imax1, real4) X(imin1, real4) X(pmax1, real4) X(pmin1, real4) \
  X(k2, real4) X(ffmax, real4) X(ffmin, real4) X(tc, real4) X(topen, real4) X(velc, real4) \
  X(velo, real4) X(pmax, real4) X(pmin, real4) X(tf, real4) X(kp, real4) X(kd, real4) \
  X(ki, real4) X(imax, real4) X(imin, real4) X(pidmax, real4) X(pidmin, real4) X(tch, real4) \
  X(fhp, real4) X(trh, real4) X(fip, real4) X(tco, real4) X(flp, real4) X(lnd, real4) \
  X(tsh, real4) X(td, real4) X(tw, real4) X(k_mp, real4) X(tdly, real4) X(vmax, real4) \
  X(vmin, real4) X(note, asciiz)

#define LF_COLUMNS_gov5_lib(X) \
  X(par_no, int4) X(t_lb, real4) X(death, real4) X(kmlb, int4) X(k1, real4) X(k2, real4) \
  X(kmct, int4) X(kp1, real4) X(kd1, real4) X(ki1, real4) X(imax1, real4) X(imin1, real4) \
  X(pmax1, real4) X(pmin1, real4) X(ffmax, real4) X(ffmin, real4) X(tc, real4) X(topen, real4) \
  X(velc, real4) X(velo, real4) X(pmax, real4) X(pmin, real4) X(tf, real4) X(kp, real4) \
  X(kd, real4) X(ki, real4) X(imax, real4) X(imin, real4) X(pidmax, real4) X(pidmin, real4) \
  X(tch, real4) X(fhp, real4) X(trh, real4) X(fip, real4) X(tco, real4) X(flp, real4) \
  X(lnd, real4) X(tsh, real4) X(td, real4) X(tw, real4) X(k_mp, real4) X(tdly, real4) \
  X(vmax, real4) X(vmin, real4) X(note, asciiz)

#define LF_COLUMNS_pss_lib(X) \
  X(par_no, int4) X(k_rotate, real4) X(k_power, real4) X(k_voltage, real4) X(k_type, int4) \
  X(t_washout, real4) X(t1_shift, real4) X(t2_shift, real4) X(t3_shift, real4) \
  X(t4_shift, real4) X(vs_max, real4) X(vs_min, real4) X(note, asciiz)

#define LF_COLUMNS_pss2_lib(X) \
  X(par_no, int4) X(k_rotate, real4) X(k_power, real4) X(k_voltage, real4) X(t_measure, real4) \
  X(t_washout1, real4) X(t_washout2, real4) X(t1_shift, real4) X(t2_shift, real4) \
  X(t3_shift, real4) X(t4_shift, real4) X(t5_shift, real4) X(t6_shift, real4) X(vs_max, real4) \
  X(vs_min, real4) X(note, asciiz)

#define LF_COLUMNS_pss3_lib(X) \
  X(par_no, int4) X(kp, real4) X(k0p, real4) X(k1p, real4) X(k2p, real4) X(k3p, real4) \
  X(td, real4) X(t1_shift, real4) X(t2_shift, real4) X(t3_shift, real4) X(vs_max, real4) \
  X(vs_min, real4) X(tacc, real4) X(macc, real4) X(nacc, real4) X(iacc, real4) X(ktype, int4) \
  X(note, asciiz)

#define LF_COLUMNS_moto_lib(X) \
  X(par_no, int4) X(r_rotator, real4) X(x_rotator, real4) X(t1_rotator, real4) \
  X(t2_rotator, real4) X(x_coil, real4) X(k_damp, real4) X(p_damp, real4) X(s0_slip, real4) \
  X(note, asciiz)

#define LF_COLUMNS_cload_lib(X) \
  X(par_no, int4) X(r1, real4) X(x1, real4) X(xm, real4) X(r2, real4) X(x2, real4) X(tj, real4) \
  X(a, real4) X(b, real4) X(kpm, real4) X(mlf, real4) X(p_z, real4) X(p_i, real4) X(q_z, real4) \
  X(q_i, real4) X(note, asciiz)

#define LF_COLUMNS_dload_lib(X) \
  X(par_no, int4) X(rank, int4) X(a1, real4) X(a2, real4) X(b0, real4) X(b1, real4) \
  X(b2, real4) X(a1p, real4) X(a2p, real4) X(b0p, real4) X(b1p, real4) X(b2p, real4) \
  X(note, asciiz)

#define LF_COLUMNS_svc1_lib(X) \
  X(par_no, int4) X(k_amplify, real4) X(db_max, real4) X(db_min, real4) X(b_max, real4) \
  X(b_min, real4) X(t_amplify, real4) X(t_measure, real4) X(t_rectifier, real4) X(note, asciiz)

#define LF_COLUMNS_svc2_lib(X) \
  X(par_no, int4) X(x_reactor, real4) X(x_capacity, real4) X(i_overload, real4) X(t_lag, real4) \
  X(note, asciiz)

#define LF_COLUMNS_dc_lib(X) \
  X(par_no, int4) X(k_amplify, real4) X(t1_regulat, real4) X(t2_regulat, real4) \
  X(t3_regulat, real4) X(note, asciiz)

// clang-format on

namespace lf {

LF_DECLARE_TABLE(global)
LF_DECLARE_TABLE(kv)
LF_DECLARE_TABLE(bs)
LF_DECLARE_TABLE(bus)
LF_DECLARE_TABLE(ln)
LF_DECLARE_TABLE(cp)
LF_DECLARE_TABLE(xf)
LF_DECLARE_TABLE(dln)
LF_DECLARE_TABLE(un)
LF_DECLARE_TABLE(ld)
LF_DECLARE_TABLE(load_lib)
LF_DECLARE_TABLE(status)
LF_DECLARE_TABLE(co)
LF_DECLARE_TABLE(dv)
LF_DECLARE_TABLE(st)
LF_DECLARE_TABLE(nd)
LF_DECLARE_TABLE(cb)
LF_DECLARE_TABLE(svc)
LF_DECLARE_TABLE(mutual)
LF_DECLARE_TABLE(zbr)
LF_DECLARE_TABLE(island)
LF_DECLARE_TABLE(tpl)
LF_DECLARE_TABLE(tptrace)
LF_DECLARE_TABLE(gen_lib)
LF_DECLARE_TABLE(avr1_lib)
LF_DECLARE_TABLE(avr2_lib)
LF_DECLARE_TABLE(av1112_lib)
LF_DECLARE_TABLE(av310_lib)
LF_DECLARE_TABLE(gov_lib)
LF_DECLARE_TABLE(gov2_lib)
LF_DECLARE_TABLE(gov3_lib)
LF_DECLARE_TABLE(gov4_lib)
LF_DECLARE_TABLE(gov5_lib)
LF_DECLARE_TABLE(pss_lib)
LF_DECLARE_TABLE(pss2_lib)
LF_DECLARE_TABLE(pss3_lib)
LF_DECLARE_TABLE(moto_lib)
LF_DECLARE_TABLE(cload_lib)
LF_DECLARE_TABLE(dload_lib)
LF_DECLARE_TABLE(svc1_lib)
LF_DECLARE_TABLE(svc2_lib)
LF_DECLARE_TABLE(dc_lib)

// The tables of this group in schema order.
std::span<const TableDef> rtdbls_tables();

}  // namespace lf

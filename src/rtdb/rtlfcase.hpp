// The study-case tables of the real-time database: one flat row record and
// one binder per table, columns in the binder's order with their types.
#pragma once

#include "rtdb/binding.hpp"

// clang-format off
#define LF_COLUMNS_case_lf(X) \
  X(case_no, int4) X(scheme, asciiz) X(vmax, real4) X(vmin, real4) X(tolerance, real4) \
  X(method, int4) X(iteration, int4) X(ctrl_area, int4) X(ctrl_ud, int4) X(ctrl_sub, int4) \
  X(ctrl_fact, int4) X(ctrl_rmxm, int4) X(eq_method, int4) X(up_cal, int4) X(calculate, int4) \
  X(l23chged, int4) X(udout, int4) X(cal_date, asciiz) X(cal_time, asciiz) X(ud_time, int4) \
  X(nup, int4) X(nbus, int4) X(ngenerat, int4) X(nload, int4) X(nacline, int4) X(ndcline, int4) \
  X(ntrans, int4)

#define LF_COLUMNS_fact_gl(X) \
  X(valid, int4) X(area_no, int4) X(v_level, int4) X(factor_pg, real4) X(factor_qg, real4) \
  X(factor_pl, real4) X(factor_ql, real4)

#define LF_COLUMNS_area_ctl(X) \
  X(valid, int4) X(area_no, int4) X(area_name, asciiz) X(unit, int4) X(p_schedule, real4) \
  X(pmax, real4) X(tolerance, real4) X(gen_adj, asciiz)

#define LF_COLUMNS_udcal_lf(X) \
  X(valid, int4) X(model_no, int4) X(par_no, int4) X(x_set, real4) X(y_set, real4) \
  X(z_set, real4) X(bus1, asciiz) X(bus2, asciiz) X(bus3, asciiz) X(bus4, asciiz) \
  X(busno1, int4) X(busno2, int4) X(busno3, int4) X(busno4, int4) X(id_name1, asciiz) \
  X(i1_name, asciiz) X(j1_name, asciiz) X(i1_no, int4) X(j1_no, int4) X(id_no1, int4) \
  X(side1, int4) X(id_name2, asciiz) X(i2_name, asciiz) X(j2_name, asciiz) X(i2_no, int4) \
  X(j2_no, int4) X(id_no2, int4) X(side2, int4) X(id_name3, asciiz) X(i3_name, asciiz) \
  X(j3_name, asciiz) X(i3_no, int4) X(j3_no, int4) X(id_no3, int4) X(side3, int4) \
  X(id_name4, asciiz) X(i4_name, asciiz) X(j4_name, asciiz) X(i4_no, int4) X(j4_no, int4) \
  X(id_no4, int4) X(side4, int4)

#define LF_COLUMNS_upcal_lf(X) \
  X(valid, int4) X(up_name, asciiz) X(par_no, int4) X(bus1, asciiz) X(bus2, asciiz) \
  X(bus3, asciiz) X(bus4, asciiz) X(busno1, int4) X(busno2, int4) X(busno3, int4) \
  X(busno4, int4) X(i1_name, asciiz) X(j1_name, asciiz) X(i1_no, int4) X(j1_no, int4) \
  X(id_no1, int4) X(i2_name, asciiz) X(j2_name, asciiz) X(i2_no, int4) X(j2_no, int4) \
  X(id_no2, int4) X(i3_name, asciiz) X(j3_name, asciiz) X(i3_no, int4) X(j3_no, int4) \
  X(id_no3, int4) X(i4_name, asciiz) X(j4_name, asciiz) X(i4_no, int4) X(j4_no, int4) \
  X(id_no4, int4)

#define LF_COLUMNS_lfcutgrp_ctl(X) \
  X(valid, int4) X(grp_no, int4) X(grp_name, asciiz) X(numbranch, int4) X(p_schedule, real4) \
  X(tolerance, real4)

#define LF_COLUMNS_lfcutbra_ctl(X) \
  X(grp_no, int4) X(valid, int4) X(bratype, int4) X(i_name, asciiz) X(j_name, asciiz) \
  X(id_name, asciiz) X(ibs, int4) X(jbs, int4) X(id_no, int4) X(ndirect, int4) X(pmax, real4) \
  X(pmin, real4)

#define LF_COLUMNS_lfgenld_ctl(X) \
  X(id_name, asciiz) X(type, int4) X(zoneno, int4) X(node_name, asciiz) X(node_no, int4) \
  X(pmax, real4) X(pmin, real4)

// clang-format on

namespace lf {

LF_DECLARE_TABLE(case_lf)
LF_DECLARE_TABLE(fact_gl)
LF_DECLARE_TABLE(area_ctl)
LF_DECLARE_TABLE(udcal_lf)
LF_DECLARE_TABLE(upcal_lf)
LF_DECLARE_TABLE(lfcutgrp_ctl)
LF_DECLARE_TABLE(lfcutbra_ctl)
LF_DECLARE_TABLE(lfgenld_ctl)

// The tables of this group in schema order.
std::span<const TableDef> rtlfcase_tables();

}  // namespace lf

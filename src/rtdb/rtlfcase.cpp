#include "rtdb/rtlfcase.hpp"

namespace lf {

LF_DEFINE_TABLE(case_lf)
LF_DEFINE_TABLE(fact_gl)
LF_DEFINE_TABLE(area_ctl)
LF_DEFINE_TABLE(udcal_lf)
LF_DEFINE_TABLE(upcal_lf)
LF_DEFINE_TABLE(lfcutgrp_ctl)
LF_DEFINE_TABLE(lfcutbra_ctl)
LF_DEFINE_TABLE(lfgenld_ctl)

std::span<const TableDef> rtlfcase_tables() {
  static const TableDef tables[] = {
      LF_TABLE_ENTRY(case_lf),      LF_TABLE_ENTRY(fact_gl),     LF_TABLE_ENTRY(area_ctl),
      LF_TABLE_ENTRY(udcal_lf),     LF_TABLE_ENTRY(upcal_lf),    LF_TABLE_ENTRY(lfcutgrp_ctl),
      LF_TABLE_ENTRY(lfcutbra_ctl), LF_TABLE_ENTRY(lfgenld_ctl),
  };
  return tables;
}

}  // namespace lf

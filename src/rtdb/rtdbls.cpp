#include "rtdb/rtdbls.hpp"

namespace lf {

LF_DEFINE_TABLE(global)
LF_DEFINE_TABLE(kv)
LF_DEFINE_TABLE(bs)
LF_DEFINE_TABLE(bus)
LF_DEFINE_TABLE(ln)
LF_DEFINE_TABLE(cp)
LF_DEFINE_TABLE(xf)
LF_DEFINE_TABLE(dln)
LF_DEFINE_TABLE(un)
LF_DEFINE_TABLE(ld)
LF_DEFINE_TABLE(load_lib)
LF_DEFINE_TABLE(status)
LF_DEFINE_TABLE(co)
LF_DEFINE_TABLE(dv)
LF_DEFINE_TABLE(st)
LF_DEFINE_TABLE(nd)
LF_DEFINE_TABLE(cb)
LF_DEFINE_TABLE(svc)
LF_DEFINE_TABLE(mutual)
LF_DEFINE_TABLE(zbr)
LF_DEFINE_TABLE(island)
LF_DEFINE_TABLE(tpl)
LF_DEFINE_TABLE(tptrace)
LF_DEFINE_TABLE(gen_lib)
LF_DEFINE_TABLE(avr1_lib)
LF_DEFINE_TABLE(avr2_lib)
LF_DEFINE_TABLE(av1112_lib)
LF_DEFINE_TABLE(av310_lib)
LF_DEFINE_TABLE(gov_lib)
LF_DEFINE_TABLE(gov2_lib)
LF_DEFINE_TABLE(gov3_lib)
LF_DEFINE_TABLE(gov4_lib)
LF_DEFINE_TABLE(gov5_lib)
LF_DEFINE_TABLE(pss_lib)
LF_DEFINE_TABLE(pss2_lib)
LF_DEFINE_TABLE(pss3_lib)
LF_DEFINE_TABLE(moto_lib)
LF_DEFINE_TABLE(cload_lib)
LF_DEFINE_TABLE(dload_lib)
LF_DEFINE_TABLE(svc1_lib)
LF_DEFINE_TABLE(svc2_lib)
LF_DEFINE_TABLE(dc_lib)

std::span<const TableDef> rtdbls_tables() {
  static const TableDef tables[] = {
      LF_TABLE_ENTRY(global),    LF_TABLE_ENTRY(kv),        LF_TABLE_ENTRY(bs),
      LF_TABLE_ENTRY(bus),       LF_TABLE_ENTRY(ln),        LF_TABLE_ENTRY(cp),
      LF_TABLE_ENTRY(xf),        LF_TABLE_ENTRY(dln),       LF_TABLE_ENTRY(un),
      LF_TABLE_ENTRY(ld),        LF_TABLE_ENTRY(load_lib),  LF_TABLE_ENTRY(status),
      LF_TABLE_ENTRY(co),        LF_TABLE_ENTRY(dv),        LF_TABLE_ENTRY(st),
      LF_TABLE_ENTRY(nd),        LF_TABLE_ENTRY(cb),        LF_TABLE_ENTRY(svc),
      LF_TABLE_ENTRY(mutual),    LF_TABLE_ENTRY(zbr),       LF_TABLE_ENTRY(island),
      LF_TABLE_ENTRY(tpl),       LF_TABLE_ENTRY(tptrace),   LF_TABLE_ENTRY(gen_lib),
      LF_TABLE_ENTRY(avr1_lib),  LF_TABLE_ENTRY(avr2_lib),  LF_TABLE_ENTRY(av1112_lib),
      LF_TABLE_ENTRY(av310_lib), LF_TABLE_ENTRY(gov_lib),   LF_TABLE_ENTRY(gov2_lib),
      LF_TABLE_ENTRY(gov3_lib),  LF_TABLE_ENTRY(gov4_lib),  LF_TABLE_ENTRY(gov5_lib),
      LF_TABLE_ENTRY(pss_lib),   LF_TABLE_ENTRY(pss2_lib),  LF_TABLE_ENTRY(pss3_lib),
      LF_TABLE_ENTRY(moto_lib),  LF_TABLE_ENTRY(cload_lib), LF_TABLE_ENTRY(dload_lib),
      LF_TABLE_ENTRY(svc1_lib),  LF_TABLE_ENTRY(svc2_lib),  LF_TABLE_ENTRY(dc_lib),
  };
  return tables;
}

}  // namespace lf

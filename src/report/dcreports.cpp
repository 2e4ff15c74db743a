#include "report/dcreports.hpp"

#include <string>

#include "control/dcline.hpp"
#include "report/reportfile.hpp"
#include "support/fmt.hpp"

namespace lf {

void nwlp4(const CaseName& casename) {
  ReportFile out(casename.trimmed() + ".nP4");
  const DCLFOPRec& op = DCLFOP;
  for (int32_t k = 1; k <= LFINF.ndcline; ++k) {
    const double vbi = DCBASE.vbi[k], vbj = DCBASE.vbj[k], vdb = DCBASE.vdb[k];
    const int32_t bi = NL4.i_bridge[k], bj = NL4.j_bridge[k];
    const double vli = NL4.vli_kv[k], vhi = NL4.vhi_kv[k];
    const double vlj = NL4.vlj_kv[k], vhj = NL4.vhj_kv[k];
    out.put(csv_i({NL4.I[k], NL4.J[k], NL4.No[k], NL4.LOSSAREA[k]}, 6));
    out.put(csv_i({NL4.op_mode[k]}, 6));
    out.put(csv_f({op.id10[k], op.id20[k], op.vaci[k], op.vacj[k]}, 16, 9));
    out.put(csv_f({op.pd1i[k], op.qd1i[k], op.vd10i[k], op.tk1i[k], op.a10r_d[k],
                   converter_tap_percent(op.tk1i[k], bi, vbi, vdb, vli, vhi)},
                  16, 9));
    out.put(csv_f({op.pd1j[k], op.qd1j[k], op.vd10j[k], op.tk1j[k],
                   converter_tap_percent(op.tk1j[k], bj, vbj, vdb, vlj, vhj)},
                  16, 9));
    out.put(csv_f({op.pd2i[k], op.qd2i[k], op.vd20i[k], op.tk2i[k], op.a20r_d[k],
                   converter_tap_percent(op.tk2i[k], bi, vbi, vdb, vli, vhi)},
                  16, 9));
    out.put(csv_f({op.pd2j[k], op.qd2j[k], op.vd20j[k], op.tk2j[k],
                   converter_tap_percent(op.tk2j[k], bj, vbj, vdb, vlj, vhj)},
                  16, 9));
    out.put(csv_f({vbi, vbj, vdb, DCBASE.idb[k], DCBASE.zdb[k], DCBASE.ldb[k], DCBASE.tkbi[k],
                   DCBASE.tkbj[k]},
                  16, 9));
    out.put(csv_f({NL4.rpi_ohm[k], NL4.lpi_mh[k], NL4.rpj_ohm[k], NL4.lpj_mh[k], NL4.rl_ohm[k],
                   NL4.ll_mh[k], NL4.rei_ohm[k], NL4.rej_ohm[k], NL4.lsi_mh[k], NL4.lsj_mh[k]},
                  16, 9));
    out.put(csv_f({DCLFPU.xci[k], DCLFPU.xcj[k], DCLFPU.tkimax[k], DCLFPU.tkimin[k],
                   DCLFPU.tkjmax[k], DCLFPU.tkjmin[k], DCLFPU.qcip[k], DCLFPU.qcjp[k]},
                  16, 9));
  }
}

void wlp4_new(const CaseName& casename) {
  ReportFile out(casename.trimmed() + ".LP4");
  const DCLFOPRec& op = DCLFOP;
  // Circuit totals by operating mode; a mode outside the table keeps those
  // of the line before.
  double rt = 0, lt = 0, lst = 0, xct = 0, xcjt = 0;
  for (int32_t k = 1; k <= LFINF.ndcline; ++k) {
    const double rl = NL4.rl_ohm[k], ll = NL4.ll_mh[k], lsi = NL4.lsi_mh[k], lsj = NL4.lsj_mh[k];
    const double rpi = NL4.rpi_ohm[k], rpj = NL4.rpj_ohm[k], rei = NL4.rei_ohm[k],
                 rej = NL4.rej_ohm[k];
    const double lpi = NL4.lpi_mh[k], lpj = NL4.lpj_mh[k];
    const double xci = DCLFPU.xci[k], xcj = DCLFPU.xcj[k];
    switch (NL4.op_mode[k]) {
      case kDcBipole:
        rt = 2 * rl, lt = 2 * ll, lst = 2 * (lsi + lsj), xct = 2 * xci, xcjt = 2 * xcj;
        break;
      case kDcEarthReturn:
        rt = rl + rpi + rpj + rei + rej, lt = ll + lpi + lpj, lst = lsi + lsj;
        xct = xci, xcjt = xcj;
        break;
      case kDcMetallicReturn:
        rt = 2 * rl, lt = 2 * ll, lst = 2 * (lsi + lsj), xct = xci, xcjt = xcj;
        break;
      case kDcParallel:
        rt = 0.5 * rl + rpi + rpj + rei + rej, lt = 0.5 * ll + lpi + lpj, lst = 0.5 * (lsi + lsj);
        xct = xci, xcjt = xcj;
        break;
      default:
        break;
    }
    const double poles = dc_poles(k);
    const double vdb = DCBASE.vdb[k];
    out.put(csv_i({NL4.I[k], NL4.J[k], NL4.No[k]}, 6) +
            csv_f({op.pd1i[k] + op.pd2i[k], op.qd1i[k] + op.qd2i[k], op.pd1j[k] + op.pd2j[k],
                   op.qd1j[k] + op.qd2j[k], op.tk1i[k], op.tk1j[k]},
                  9, 4));
    out.put(csv_f({op.vd10i[k] + op.vd20i[k], op.vd10j[k] + op.vd20j[k], op.a10r_d[k]}, 9, 4));
    out.put(csv_f({DCBASE.idb[k]}, 9, 4) + csv_f({DCBASE.zdb[k]}, 9, 3) +
            csv_f({DCBASE.ldb[k] * kHenryPerMillihenry}, 9, 4));
    out.put(csv_f({op.id10[k], (NL4.vd1_kv[k] + NL4.vd2_kv[k]) / vdb,
                   (NL4.pd1_mw[k] + NL4.pd2_mw[k]) / LFINF.base_mva, rt, lt, lst, xct, xcjt},
                  9, 4));
    out.put(
        csv_f({NL4.vhi_kv[k] / (NL4.vli_kv[k] * NL4.i_bridge[k] * DCBASE.tkbi[k]), DCLFPU.tkimax[k],
               DCLFPU.tkimin[k], NL4.vhj_kv[k] / (NL4.vlj_kv[k] * NL4.j_bridge[k] * DCBASE.tkbj[k]),
               DCLFPU.tkjmax[k], DCLFPU.tkjmin[k], DCLFPU.qcip[k] * poles, DCLFPU.qcjp[k] * poles},
              9, 4) +
        csv_i({NL4.LOSSAREA[k]}, 2));
  }
}

}  // namespace lf

#include "casefile/readers.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include "casefile/checks.hpp"
#include "casefile/indexcheck.hpp"
#include "casefile/sequence.hpp"
#include "io/channels.hpp"
#include "io/errlist.hpp"
#include "support/freeread.hpp"
#include "support/stop.hpp"

namespace lf {

namespace {

// Opens a mandatory case file or ends the run: "File <path>.L1 not found !"
// goes out as a message, the stop text names the extension in lower case.
void open_mandatory(FreeReader& in, const std::string& path, const char* ext, const char* stop) {
  if (in.open(path + ext)) return;
  wstring("File " + path + ext + " not found !");
  stop_run(stop);
}

// Makes row n of a record family valid, growing it by doubling.
template <typename Grow>
void room_for(std::size_t n, std::size_t have, Grow grow) {
  if (n > have) grow(std::max(n, 2 * have));
}

void grow_branch_room(std::size_t n) {
  room_for(n, IJB.I.size(), grow_branches);
}

// Reads one record after the other until the file ends or a read fails.
// read(k, mark) reads a record into slot k; the record counts when its mark
// is above 0 and then keep(k, mark, r) completes it, r being the record's
// place in the file.  A dropped record takes no slot: the next one is read
// into the same place.  Gives the count kept.
template <typename Read, typename Keep>
int32_t read_marked(Read read, Keep keep) {
  int32_t n = 0;
  for (int32_t r = 1;; ++r) {
    int32_t mark = 0;
    if (!read(n + 1, mark)) return n;
    if (mark > 0) keep(++n, mark, r);
  }
}

}  // namespace

void rl0(const std::string& path) {
  FreeReader in;
  open_mandatory(in, path, ".L0", "*.l0 file not found!");
  if (!in(LFINF.nbus, LFINF.nacline, LFINF.ntrans, LFINF.ndcline, LFINF.ngenerat, LFINF.nload,
          LFINF.narea, NU.nl9, LF93.nlf93spare, LF93.nswitch, LF93.ctrl_fact))
    return;
  int32_t unused = 0;
  in(LFINF.base_mva, LFINF.vmax, LFINF.vmin, LFINF.tolerance, LFINF.method, LFINF.iteration,
     LFINF.ctrl_area, LF93.ctrl_ud, unused, LF93.ctrl_sub);
}

void rl1(const std::string& path) {
  FreeReader in;
  open_mandatory(in, path, ".L1", "*.l1 file not found!");
  int32_t i = 0;
  for (;;) {
    const int32_t k = i + 1;
    room_for(k, L1.busname.size(), grow_buses);  // the smallest of the bus records
    double vmax_kv = 0, vmin_kv = 0;
    if (!in(L1.busname[k], LL1.basekv[k], LL1.busarea[k], vmax_kv, vmin_kv)) break;
    i = k;
    const double base = LL1.basekv[i];
    LL1.busvmax[i] = base == 0.0 ? vmax_kv : vmax_kv / base;
    LL1.busvmin[i] = base == 0.0 ? vmin_kv : vmin_kv / base;
    repair_bus_limits(i);
  }
  LFINF.nbus = i;
}

void rl23(const std::string& path) {
  if (LFINF.nacline != 0) {
    FreeReader in;
    open_mandatory(in, path, ".L2", "*.l2 file not found!");
    const std::string source = path + ".L2";
    LFINF.nacline = read_marked(
        [&](int32_t k, int32_t& mark) {
          grow_branch_room(k);
          return in(mark, IJB.I[k], IJB.J[k], IJB.No[k], RXB.R[k], RXB.X[k], RXB.B[k],
                    IJB.LOSSAREA[k], L2P.mode_ctrl[k], L2P.par_group[k], L2P.ibs_ctrl[k],
                    L2P.line_ctrl[k], L2P.value_ctrl[k]);
        },
        [&](int32_t n, int32_t mark, int32_t r) {
          check_bus(IJB.I[n], source, r);
          check_bus(IJB.J[n], source, r);
          RXB.T[n] = 1.0;
          IJOPEN.mark[n] = mark;
          IJOPEN.I[n] = L2P.I[n] = IJB.I[n];
          IJOPEN.J[n] = L2P.J[n] = IJB.J[n];
          IJOPEN.No[n] = L2P.No[n] = IJB.No[n];
        });
  }
  if (LFINF.ntrans == 0) return;

  // Transformer t is branch nacline + t.  Without the file there are no
  // transformers, whatever .L0 counted.
  const int32_t n0 = LFINF.nacline;
  FreeReader in;
  const std::string source = path + ".L3";
  if (!in.open(source)) {
    LFINF.ntrans = 0;
    return;
  }
  LFINF.ntrans = read_marked(
      [&](int32_t t, int32_t& mark) {
        const int32_t k = n0 + t;
        grow_branch_room(k);
        double unused = 0;
        return in(mark, IJB.I[k], IJB.J[k], IJB.No[k], RXB.R[k], RXB.X[k], RXB.T[k], L3PP.Rm[t],
                  L3PP.Xm[t], IJB.LOSSAREA[k], L3P.mode_ctrl[t], L3P.par_group[t], unused,
                  L3P.ibs_ctrl[t], L3P.line_ctrl[t], L3P.value_ctrl[t], L3P.ang_shift[t]);
      },
      [&](int32_t t, int32_t mark, int32_t r) {
        const int32_t n = n0 + t;
        // Only the bus numbers of the ends count, not their signs; the one
        // number without a magnitude in 32 bits is no bus either.
        for (int32_t* end : {&IJB.I[n], &IJB.J[n]}) {
          if (*end == INT32_MIN) check_bus(*end, source, r);
          *end = std::abs(*end);
          check_bus(*end, source, r);
        }
        RXB.B[n] = 0.0;
        IJOPEN.mark[n] = mark;
        IJOPEN.I[n] = L3P.I[t] = IJB.I[n];
        IJOPEN.J[n] = L3P.J[t] = IJB.J[n];
        IJOPEN.No[n] = L3P.No[t] = IJB.No[n];
      });
}

void nrl4(const std::string& path) {
  FreeReader in;
  const std::string source = path + ".NL4";
  if (!in.open(source)) {
    errlist_write("File " + path + ".L4 not found !");
    LFINF.ndcline = 0;
    return;
  }
  NL4Rec& d = NL4;
  int32_t m = 0;
  for (int32_t r = 1;; ++r) {
    const int32_t k = m + 1;
    room_for(k, d.I.size(), [](std::size_t n) { NL4.grow(n); });
    int32_t mark = 0;
    if (!in(mark, d.I[k], d.J[k], d.No[k], d.LOSSAREA[k]) ||
        !in(d.rpi_ohm[k], d.lpi_mh[k], d.rpj_ohm[k], d.lpj_mh[k], d.rl_ohm[k], d.ll_mh[k],
            d.rei_ohm[k], d.rej_ohm[k], d.lsi_mh[k], d.lsj_mh[k]) ||
        !in(d.vdrate_kv[k]) ||
        !in(d.vhi_kv[k], d.vli_kv[k], d.i_bridge[k], d.sti_mva[k], d.rti_ohm[k], d.xti_perc[k],
            d.vtimax_kv[k], d.vtimin_kv[k], d.i_tap[k]) ||
        !in(d.vhj_kv[k], d.vlj_kv[k], d.j_bridge[k], d.stj_mva[k], d.rtj_ohm[k], d.xtj_perc[k],
            d.vtjmax_kv[k], d.vtjmin_kv[k], d.j_tap[k]) ||
        !in(d.op_mode[k], d.qci_mvar[k], d.qcj_mvar[k]) ||
        !in(d.pd1_mw[k], d.vd1_kv[k], d.a1min_d[k], d.a10_d[k], d.gam1min_d[k], d.gam10_d[k]) ||
        !in(d.pd2_mw[k], d.vd2_kv[k], d.a2min_d[k], d.a20_d[k], d.gam2min_d[k], d.gam20_d[k]))
      break;
    if (mark != kInService) continue;  // only mark 1 counts for a DC line
    check_bus(d.I[k], source, r);
    check_bus(d.J[k], source, r);
    m = k;
  }
  LFINF.ndcline = m;
}

void rl5(const std::string& path) {
  FreeReader in;
  open_mandatory(in, path, ".L5", "*.l5 file not found!");
  const std::string source = path + ".L5";
  LFINF.ngenerat = read_marked(
      [&](int32_t k, int32_t& mark) {
        room_for(k, L5.P.size(), grow_generators);
        return in(mark, L5.ibs[k], L5.mode_ctrl[k], L5.P[k], L5.Q[k], L5.V[k], L5.Angle[k],
                  L5P.Qmax[k], L5P.Qmin[k], L5P.Pmax[k], L5P.Pmin[k], L5P.par_group[k],
                  L5P.ibs_ctrl[k], L5P.line_ctrl[k], L5P.value_ctrl[k]);
      },
      [&](int32_t g, int32_t, int32_t r) {
        check_bus(L5.ibs[g], source, r);
        L5.merged[g] = 0;
        if (LF93.ctrl_ud == 0) fold_mode_ctrl(L5.mode_ctrl[g]);
      });
}

void rl6(const std::string& path) {
  LFINF.nload = 0;
  FreeReader in;
  const std::string source = path + ".L6";
  if (in.open(source)) {
    LFINF.nload = read_marked(
        [&](int32_t k, int32_t& mark) {
          room_for(k, L6.P.size(), grow_loads);
          return in(mark, L6.ibs[k], L6.No[k], L6.mode_ctrl[k], L6.P[k], L6.Q[k], L6.V[k],
                    L6.Angle[k], L6P.Qmax[k], L6P.Qmin[k], L6P.Pmax[k], L6P.Pmin[k],
                    L6P.par_group[k], L6P.ibs_ctrl[k], L6P.line_ctrl[k], L6P.value_ctrl[k]);
        },
        [&](int32_t d, int32_t, int32_t r) {
          check_bus(L6.ibs[d], source, r);
          if (LF93.ctrl_ud == 0) fold_mode_ctrl(L6.mode_ctrl[d]);
        });
  }
  set_loadshare();
}

void rl7(const std::string& path) {
  FreeReader in;
  if (!in.open(path + ".L7")) {
    LFINF.narea = 0;
    return;
  }
  LFINF.narea = read_marked(
      [&](int32_t k, int32_t& mark) {
        room_for(k, LL7.area_no.size(), [](std::size_t n) {
          L7.grow(n);
          LL7.grow(n);
        });
        return in(mark, LL7.area_no[k], L7.area_name[k], LL7.unit[k], LL7.p_schedule[k],
                  LL7.tolerance[k], LL7.pmax[k]);
      },
      [](int32_t, int32_t, int32_t) {});
}

void rl10(const std::string& path) {
  FreeReader in;
  if (!in.open(path + ".L10")) {
    LF93.ctrl_fact = 0;
    return;
  }
  LF93.ctrl_fact = read_marked(
      [&](int32_t k, int32_t& mark) {
        room_for(k, L10.area.size(), [](std::size_t n) { L10.grow(n); });
        return in(mark, L10.area[k], L10.kv[k], L10.name1[k], L10.name2[k], L10.PG[k], L10.QG[k],
                  L10.PL[k], L10.QL[k]);
      },
      [](int32_t, int32_t, int32_t) {});
}

void rl13(const std::string& path) {
  if (LF93.nswitch == 0) return;
  FreeReader in;
  if (!in.open(path + ".L13")) {
    LF93.nswitch = 0;
    return;
  }
  // Groups: the substation's bus number, then switch records up to one
  // whose first four integers are zeros.  The end of the file ends the
  // reading quietly, anything unreadable with a message.
  // A kept record's group is a bus of the case and its ends are node
  // numbers, which substation splitting uses as indices.
  const std::string source = path + ".L13";
  const int32_t top_node = std::max(LFINF.nbus, static_cast<int32_t>(kCapBus));
  int32_t s = 0;
  int32_t r = 0;  // switch records read
  for (;;) {
    int32_t g = 0;
    bool ok = in(g);
    if (ok && g < 1) continue;
    while (ok) {
      const int32_t k = s + 1;
      room_for(k, L13.valid.size(), [](std::size_t n) { L13.grow(n); });
      ok = in(L13.valid[k], L13.type[k], L13.I[k], L13.J[k], L13.sw1[k], L13.sw2[k], L13.sw3[k],
              L13.line1[k], L13.load1[k], L13.line2[k], L13.load2[k]);
      if (!ok) break;
      ++r;
      if (L13.valid[k] == 0 && L13.type[k] == 0 && L13.I[k] == 0 && L13.J[k] == 0) break;
      if (L13.valid[k] > 0) {
        check_bus(g, source, r);
        check_range(L13.I[k], top_node, "node number", source, r);
        check_range(L13.J[k], top_node, "node number", source, r);
        s = k;
        L13.group[s] = g;
      }
    }
    if (!ok) {
      if (!in.at_end()) wstring("ERROR Read In File *.L13");
      break;
    }
  }
  LF93.nswitch = s;
}

void rpalib(const std::string& path) {
  FreeReader in;
  if (!in.open(path + ".DAT")) {
    wstring("File " + path + ".DAT Not Exist !");
    stop_run("*.dat file not found!");
  }
  const auto fail = [&] { wstring("Read " + path + ".DAT File Error!"); };
  int32_t size[8] = {0, 0, 0, 0, 0, 0, 0, 0};
  int32_t npar = 0, unused = 0;
  if (!in(size[0], size[1], size[2], size[3], size[4], size[5], size[6], size[7], npar, unused))
    return fail();
  for (int32_t n : size)
    for (int32_t r = 0; r < n; ++r)
      if (!in.skip()) return fail();
  // The sets follow in the order of their numbers from 1, the first one
  // taking the place of the default set.
  for (int32_t k = 1; k <= npar; ++k) {
    room_for(k, ABCLC.ap.size(), [](std::size_t n) { ABCLC.grow(n); });
    double fp = 0, np = 0, fq = 0, nq = 0;
    if (!in(ABCLC.ap[k], ABCLC.bp[k], ABCLC.cp[k], fp, np, ABCLC.aq[k], ABCLC.bq[k], ABCLC.cq[k],
            fq, nq))
      return fail();
    LFINF.nloadpar = k;
  }
}

namespace {

// The case files of one stem, each part read by its own reader.
class CaseFiles final : public CaseSource {
 public:
  CaseFiles(std::string path, std::string datalib)
      : path_(std::move(path)), datalib_(std::move(datalib)) {}
  void control() override { rl0(path_); }
  void buses() override { rl1(path_); }
  void branches() override { rl23(path_); }
  void dc_lines() override { nrl4(path_); }
  void generators() override { rl5(path_); }
  void loads() override { rl6(path_); }
  void areas() override { rl7(path_); }
  void factors() override { rl10(path_); }
  void switches() override { rl13(path_); }
  void load_library() override { rpalib(datalib_); }
  std::string load_origin() const override { return path_ + ".L6"; }

 private:
  std::string path_;     // the case stem without trailing blanks
  std::string datalib_;  // the .DAT library's stem, likewise
};

}  // namespace

void rdlf(const CaseName& casename, const CaseName& datalibname) {
  CaseFiles files(casename.trimmed(), datalibname.trimmed());
  read_case(files);
}

}  // namespace lf

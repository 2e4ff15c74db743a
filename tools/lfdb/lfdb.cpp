// lfdb: makes a real-time database file for the load flow.
//
//   lfdb import CASE_STEM DB_FILE [--dat DAT_STEM]
//
// creates DB_FILE with every table the engine binds and fills it from the
// case files CASE_STEM.L0, .L1, ... as the engine itself reads them: one
// placeholder bus row, then one bs and one bus row per bus, the voltage
// levels in kv, lines in ln, shunt branches in cp, transformers in xf, DC
// lines in dln, generators in un, loads in ld, the run control in case_lf
// and global, and the static load characteristics in load_lib.
#include <sqlite3.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "casefile/readers.hpp"
#include "cmdline.hpp"
#include "io/channels.hpp"
#include "rtdb/pass.hpp"
#include "rtdb/rtdbls.hpp"
#include "rtdb/rtlfcase.hpp"
#include "store/store.hpp"

extern const char* const kSchemaSql;

namespace fs = std::filesystem;

namespace lf {
namespace {

constexpr const char* kUsage =
    "usage: lfdb import CASE_STEM DB_FILE [--dat DAT_STEM]\n"
    "\n"
    "Creates the database file DB_FILE with the tables of the load flow and\n"
    "fills it from the case files CASE_STEM.L0, .L1, .L2, .L3, .NL4, .L5, .L6\n"
    "(scaled by .L10 when the case asks for it).  DAT_STEM.DAT gives the static\n"
    "load characteristics when a load needs them; it defaults to DATALIB beside\n"
    "the case.  Area schedules (.L7), switch records (.L13) and model files have\n"
    "no tables here: database mode solves the case without them, and lfdb warns\n"
    "when the case has them.  An existing DB_FILE is never replaced.\n"
    "\n"
    "Run the case on the database with: lfrun --db DB_FILE CASE_STEM\n";

void put_text(char* field, const std::string& text) {
  std::size_t n = std::min(text.size(), static_cast<std::size_t>(kTextWidth - 1));
  std::memcpy(field, text.data(), n);
  field[n] = '\0';
}

// Inserts one row of a table through the client interface.
template <typename Row>
bool insert(int session, const char* table, int (*binder)(int, Row&), Row& row) {
  std::string text = std::string("insert into ") + table;
  int st = cli_statement(session, text.c_str());
  bool ok = binder(st, row) == cli_ok && cli_insert(st, nullptr) == cli_ok;
  cli_free(st);
  if (!ok) std::fprintf(stderr, "lfdb: cannot insert into %s\n", table);
  return ok;
}

// The control fields shared by branches, generators and loads.
template <typename Row>
void put_control(Row& row, int32_t mode_ctrl, int32_t ibs_ctrl, int32_t line_ctrl,
                 double value_ctrl) {
  row.mode_ctrl = mode_ctrl;
  row.ibs_ctrl = ibs_ctrl;
  row.line_ctrl = line_ctrl;
  row.value_ctrl = static_cast<float>(value_ctrl);
}

template <typename Row>
void put_limits(Row& row, const LPRec& p, int32_t k) {
  row.rmx = static_cast<float>(p.Qmax[k]);
  row.rmn = static_cast<float>(p.Qmin[k]);
  row.wmx = static_cast<float>(p.Pmax[k]);
  row.wmn = static_cast<float>(p.Pmin[k]);
  row.par_group = p.par_group[k];
  put_control(row, 0, p.ibs_ctrl[k], p.line_ctrl[k], p.value_ctrl[k]);
}

// The bus, type and set values of generator or load k of rec; after
// put_limits, whose control fields leave the type at 0.
template <typename Row, typename Rec>
void put_setpoint(Row& row, const Rec& rec, int32_t k) {
  row.ibs = rec.ibs[k];
  row.mode_ctrl = rec.mode_ctrl[k];
  row.w = static_cast<float>(rec.P[k]);
  row.r = static_cast<float>(rec.Q[k]);
  row.v = static_cast<float>(rec.V[k]);
  row.adeg = static_cast<float>(rec.Angle[k]);
}

bool write_control(int s, const std::string& scheme) {
  global_row g;
  reset(g);
  g.id = 1;
  g.base_mva = static_cast<float>(LFINF.base_mva);
  case_lf_row c;
  reset(c);
  c.case_no = 1;
  put_text(c.scheme, scheme);
  c.vmax = static_cast<float>(LFINF.vmax);
  c.vmin = static_cast<float>(LFINF.vmin);
  c.tolerance = static_cast<float>(LFINF.tolerance);
  c.method = LFINF.method;
  c.iteration = LFINF.iteration;
  c.ctrl_area = LFINF.ctrl_area;
  c.ctrl_ud = LF93.ctrl_ud;
  c.ctrl_sub = LF93.ctrl_sub;
  c.ctrl_fact = 0;  // the factors were applied while reading
  c.nbus = LFINF.nbus;
  c.ngenerat = LFINF.ngenerat;
  c.nload = LFINF.nload;
  c.nacline = LFINF.nacline;
  c.ndcline = LFINF.ndcline;
  c.ntrans = LFINF.ntrans;
  return insert(s, "global", bindglobal, g) && insert(s, "case_lf", bindcase_lf, c);
}

// One kv row for each distinct base voltage, limits in kV and area; the row
// ids sort in the order of the rows, so a bus's ikv is its level's place.
bool write_buses(int s) {
  std::map<std::tuple<double, double, double, int32_t>, int32_t> levels;
  bs_row b;
  reset(b);
  b.id = 0;
  if (!insert(s, "bs", bindbs, b)) return false;
  for (int32_t i = 1; i <= LFINF.nbus; ++i) {
    double base = LL1.basekv[i], scale = base == 0 ? 1.0 : base;
    auto key =
        std::make_tuple(base, LL1.busvmax[i] * scale, LL1.busvmin[i] * scale, LL1.busarea[i]);
    auto [it, added] = levels.emplace(key, static_cast<int32_t>(levels.size()));
    if (added) {
      kv_row k;
      reset(k);
      char id[kTextWidth];
      std::snprintf(id, sizeof id, "kv%06d", it->second);
      put_text(k.id, id);
      put_text(k.dv, std::to_string(LL1.busarea[i]));
      k.vbase = static_cast<float>(base);
      k.vmax = static_cast<float>(std::get<1>(key));
      k.vmin = static_cast<float>(std::get<2>(key));
      if (!insert(s, "kv", bindkv, k)) return false;
    }
    reset(b);
    b.id = i;
    put_text(b.name, L1.busname[i].trimmed());
    b.ikv = it->second;
    b.kv = base;
    if (!insert(s, "bs", bindbs, b)) return false;
    bus_row u;
    reset(u);
    put_text(u.id, L1.busname[i].trimmed());
    u.ibs = i;
    if (!insert(s, "bus", bindbus, u)) return false;
  }
  return true;
}

// Series rows of the lines go to ln, rows from a bus to itself to cp; the
// transformers follow in xf.
bool write_branches(int s) {
  for (int32_t k = 1; k <= LFINF.nacline; ++k) {
    if (IJB.I[k] != IJB.J[k]) {
      ln_row l;
      reset(l);
      l.ibs = IJB.I[k];
      l.zbs = IJB.J[k];
      l.lnno = IJB.No[k];
      put_text(l.dv, std::to_string(IJB.LOSSAREA[k]));
      l.r1 = static_cast<float>(RXB.R[k]);
      l.x1 = static_cast<float>(RXB.X[k]);
      l.bch = static_cast<float>(RXB.B[k]);
      l.q = open_bits(IJOPEN.mark[k]);
      put_control(l, L2P.mode_ctrl[k], L2P.ibs_ctrl[k], L2P.line_ctrl[k], L2P.value_ctrl[k]);
      l.par_group = L2P.par_group[k];
      if (!insert(s, "ln", bindln, l)) return false;
    } else {
      cp_row c;
      reset(c);
      c.ibs = IJB.I[k];
      c.cpno = IJB.No[k];
      c.r1 = static_cast<float>(RXB.R[k]);
      c.x1 = static_cast<float>(RXB.X[k]);
      put_control(c, L2P.mode_ctrl[k], L2P.ibs_ctrl[k], L2P.line_ctrl[k], L2P.value_ctrl[k]);
      c.par_no = L2P.par_group[k];
      if (RXB.B[k] != 0)
        std::fprintf(stderr, "lfdb: note: shunt branch %d at bus %d loses its charging B\n",
                     IJB.No[k], IJB.I[k]);
      if (!insert(s, "cp", bindcp, c)) return false;
    }
  }
  for (int32_t t = 1; t <= LFINF.ntrans; ++t) {
    int32_t k = LFINF.nacline + t;
    xf_row x;
    reset(x);
    x.ibs = IJB.I[k];
    x.zbs = IJB.J[k];
    x.xfno = IJB.No[k];
    x.r1 = static_cast<float>(RXB.R[k]);
    x.x1 = static_cast<float>(RXB.X[k]);
    x.tk = static_cast<float>(RXB.T[k]);
    x.rm = static_cast<float>(L3PP.Rm[t]);
    x.xm = static_cast<float>(L3PP.Xm[t]);
    x.ang_shift = static_cast<float>(L3P.ang_shift[t]);
    put_control(x, L3P.mode_ctrl[t], L3P.ibs_ctrl[t], L3P.line_ctrl[t], L3P.value_ctrl[t]);
    x.par_no = L3P.par_group[t];
    if (!insert(s, "xf", bindxf, x)) return false;
  }
  return true;
}

bool write_dc(int s) {
  for (int32_t m = 1; m <= LFINF.ndcline; ++m) {
    dln_row d;
    reset(d);
    d.ibs = NL4.I[m];
    d.zbs = NL4.J[m];
    d.dlnno = NL4.No[m];
    put_text(d.dv, std::to_string(NL4.LOSSAREA[m]));
    d.rpi_ohm = NL4.rpi_ohm[m];
    d.lpi_mh = NL4.lpi_mh[m];
    d.rpj_ohm = NL4.rpj_ohm[m];
    d.lpj_mh = NL4.lpj_mh[m];
    d.rl_ohm = NL4.rl_ohm[m];
    d.ll_mh = NL4.ll_mh[m];
    d.rei_ohm = NL4.rei_ohm[m];
    d.rej_ohm = NL4.rej_ohm[m];
    d.lsi_mh = NL4.lsi_mh[m];
    d.lsj_mh = NL4.lsj_mh[m];
    d.op_mode = NL4.op_mode[m];
    d.vdrate_kv = NL4.vdrate_kv[m];
    d.vd1_kv = NL4.vd1_kv[m];
    d.pd1_mw = NL4.pd1_mw[m];
    d.a1min_d = NL4.a1min_d[m];
    d.a10_d = NL4.a10_d[m];
    d.gam1min_d = NL4.gam1min_d[m];
    d.gam10_d = NL4.gam10_d[m];
    d.vd2_kv = NL4.vd2_kv[m];
    d.pd2_mw = NL4.pd2_mw[m];
    d.a2min_d = NL4.a2min_d[m];
    d.a20_d = NL4.a20_d[m];
    d.gam2min_d = NL4.gam2min_d[m];
    d.gam20_d = NL4.gam20_d[m];
    d.vhi_kv = NL4.vhi_kv[m];
    d.vli_kv = NL4.vli_kv[m];
    d.i_bridge = NL4.i_bridge[m];
    d.qci_mvar = NL4.qci_mvar[m];
    d.sti_mva = NL4.sti_mva[m];
    d.rti_ohm = NL4.rti_ohm[m];
    d.xti_perc = NL4.xti_perc[m];
    d.vtimax_kv = NL4.vtimax_kv[m];
    d.vtimin_kv = NL4.vtimin_kv[m];
    d.i_tap = NL4.i_tap[m];
    d.vhj_kv = NL4.vhj_kv[m];
    d.vlj_kv = NL4.vlj_kv[m];
    d.j_bridge = NL4.j_bridge[m];
    d.qcj_mvar = NL4.qcj_mvar[m];
    d.stj_mva = NL4.stj_mva[m];
    d.rtj_ohm = NL4.rtj_ohm[m];
    d.xtj_perc = NL4.xtj_perc[m];
    d.vtjmax_kv = NL4.vtjmax_kv[m];
    d.vtjmin_kv = NL4.vtjmin_kv[m];
    d.j_tap = NL4.j_tap[m];
    if (!insert(s, "dln", binddln, d)) return false;
  }
  return true;
}

bool write_units(int s) {
  for (int32_t g = 1; g <= LFINF.ngenerat; ++g) {
    un_row u;
    reset(u);
    put_limits(u, L5P, g);
    put_setpoint(u, L5, g);
    if (!insert(s, "un", bindun, u)) return false;
  }
  for (int32_t d = 1; d <= LFINF.nload; ++d) {
    ld_row l;
    reset(l);
    l.ldno = L6.No[d];
    put_limits(l, L6P, d);
    put_setpoint(l, L6, d);
    if (!insert(s, "ld", bindld, l)) return false;
  }
  for (int32_t p = 1; p <= LFINF.nloadpar; ++p) {
    load_lib_row c;
    reset(c);
    c.par_no = p;
    c.ap = static_cast<float>(ABCLC.ap[p]);
    c.bp = static_cast<float>(ABCLC.bp[p]);
    c.cp = static_cast<float>(ABCLC.cp[p]);
    c.aq = static_cast<float>(ABCLC.aq[p]);
    c.bq = static_cast<float>(ABCLC.bq[p]);
    c.cq = static_cast<float>(ABCLC.cq[p]);
    if (!insert(s, "load_lib", bindload_lib, c)) return false;
  }
  return true;
}

bool create_schema(const fs::path& file) {
  sqlite3* db = nullptr;
  char* err = nullptr;
  bool ok = sqlite3_open(file.c_str(), &db) == SQLITE_OK &&
            sqlite3_exec(db, (std::string("BEGIN;") + kSchemaSql + "COMMIT;").c_str(), nullptr,
                         nullptr, &err) == SQLITE_OK;
  if (!ok) std::fprintf(stderr, "lfdb: cannot create %s: %s\n", file.c_str(), err ? err : "");
  sqlite3_free(err);
  sqlite3_close(db);
  return ok;
}

// The case reader's messages (a missing file, a bad record) go to standard
// error.
int say(const char* line) {
  std::fprintf(stderr, "lfdb: %s\n", line);
  return 0;
}

// Imports the case of stem into the new database file; a problem with the
// names is told as bad usage of the program.
int import(const lfcmd::Program& program, const std::string& stem, const fs::path& file,
           std::string dat) {
  if (fs::exists(file))
    return lfcmd::problem(program, "will not replace the existing file " + file.string());
  if (stem.size() > CaseName::size())
    return lfcmd::problem(program, "the case stem is longer than 60 characters");
  if (dat.empty()) dat = (fs::path(stem).parent_path() / "DATALIB").string();
  if (dat.size() > CaseName::size())
    return lfcmd::problem(program, "the library stem is longer than 60 characters");

  prnon = 1;
  prnfunc = reinterpret_cast<intptr_t>(&say);
  rdlf(CaseName(stem), CaseName(dat));
  // Neither has a table: a run on the database solves another network.
  if (LFINF.narea > 0)
    std::fprintf(stderr,
                 "lfdb: warning: %s has %d area schedules (.L7), which database mode does not "
                 "use: a run on %s adjusts no area interchange\n",
                 stem.c_str(), LFINF.narea, file.c_str());
  if (LF93.ctrl_sub > 0 && LF93.nswitch > 0)
    std::fprintf(stderr,
                 "lfdb: warning: %s has %d substation switch records (.L13), which database mode "
                 "does not use: a run on %s splits no substation\n",
                 stem.c_str(), LF93.nswitch, file.c_str());
  if (LF93.ctrl_ud != 0 && NU.nl9 > 0 && fs::exists(stem + ".L9"))
    std::fprintf(stderr,
                 "lfdb: note: the model rows of %s.L9 cannot be carried by the database and are "
                 "left out; the control fields of the rows are kept\n",
                 stem.c_str());

  if (!create_schema(file)) return 1;
  int s = cli_create("lf", file.c_str(), 0, cli_open_default, 0, 0, 0, 0);
  if (s <= 0) {
    std::fprintf(stderr, "lfdb: cannot open %s (code %d)\n", file.c_str(), s);
    return 1;
  }
  bool ok = write_control(s, fs::path(stem).filename().string()) && write_buses(s) &&
            write_branches(s) && write_dc(s) && write_units(s);
  if (!ok) {
    cli_abort(s);
    cli_close(s);
    fs::remove(file);
    return 1;
  }
  cli_close(s);
  std::printf(
      "%s: %d buses, %d lines and shunt branches, %d transformers, %d DC lines, "
      "%d generators, %d loads\n",
      file.c_str(), LFINF.nbus, LFINF.nacline, LFINF.ntrans, LFINF.ndcline, LFINF.ngenerat,
      LFINF.nload);
  return 0;
}

}  // namespace
}  // namespace lf

int main(int argc, char** argv) {
  std::string dat;
  const lfcmd::Command command{{"lfdb", lf::kUsage},
                               {{"--dat", "a library stem",
                                 [&dat](const char* value) {
                                   dat = value;
                                   return std::string();
                                 }}},
                               3,
                               "too many arguments",
                               true};
  std::vector<std::string> args;
  if (int status = lfcmd::parse(command, argc, argv, args); status >= 0) return status;
  if (args.size() != 3 || args[0] != "import")
    return lfcmd::problem(command.program, "expected: import CASE_STEM DB_FILE");
  return lf::import(command.program, args[1], args[2], dat);
}

// Reading the solved state back from the tables of a database file, through
// the database's client interface, into the same CaseResults as the report
// files give: bus rows of bs (voltages), lines of ln, shunt branches of cp,
// transformers of xf, generators of un, loads of ld.
#include <functional>

#include "cli.h"
#include "results.hpp"

namespace lfres {
namespace {

constexpr int kText = 25;  // bytes of a text column

// One column to bind: its name and where its value goes.
struct Column {
  const char* name;
  int type;
  void* to;
};

// Runs a query, binding the columns, and calls row() for each row fetched.
bool each_row(int session, const char* query, std::initializer_list<Column> columns,
              const std::function<void()>& row) {
  int st = cli_statement(session, query);
  if (st < 0) return false;
  bool ok = true;
  for (const Column& c : columns)
    ok = ok && cli_column(st, c.name, c.type, nullptr, c.to) == cli_ok;
  if (ok && cli_fetch(st, cli_view_only) >= 0) {
    for (int rc = cli_get_first(st); rc == cli_ok; rc = cli_get_next(st)) row();
  } else {
    ok = false;
  }
  cli_free(st);
  return ok;
}

std::string text(const char* t) {
  std::string s(t);
  s.erase(s.find_last_not_of(' ') + 1);
  return s;
}

}  // namespace

bool read_db_results(const std::string& db, const std::string& name, CaseResults& r) {
  r = CaseResults{};
  r.stem = name;
  int session = cli_create("lf", db.c_str(), 0, cli_open_default, 0, 0, 0, 0);
  if (session <= 0) {
    r.problems.push_back(db + ": cannot be opened");
    return false;
  }
  float base = 0, vmax = 0, vmin = 0, f1 = 0, f2 = 0, f3 = 0, f4 = 0, f5 = 0, f6 = 0, f7 = 0,
        f8 = 0;
  int method = 1, calculate = 0, i1 = 0, i2 = 0, i3 = 0;
  double d1 = 0, d2 = 0;
  char name_text[kText] = "";
  each_row(session, "select * from global", {{"base_mva", cli_real4, &base}},
           [&] { r.base_mva = base; });
  each_row(session, "select * from case_lf",
           {{"method", cli_int4, &method},
            {"calculate", cli_int4, &calculate},
            {"vmax", cli_real4, &vmax},
            {"vmin", cli_real4, &vmin}},
           [&] { r.method = method, r.converged = calculate == 1; });

  struct Level {
    double base, vmax, vmin;
  };
  std::vector<Level> levels;
  each_row(session, "select * from kv order by id",
           {{"vbase", cli_real4, &f1}, {"vmax", cli_real4, &f2}, {"vmin", cli_real4, &f3}}, [&] {
             levels.push_back({f1, f2, f3});
           });
  bool placeholder = true;
  each_row(session, "select * from bs order by id",
           {{"name", cli_asciiz, name_text},
            {"ikv", cli_int4, &i1},
            {"iisland", cli_int4, &i2},
            {"v", cli_real8, &d1},
            {"adeg", cli_real8, &d2}},
           [&] {
             if (placeholder) return void(placeholder = false);
             Bus b;
             b.number = static_cast<int>(r.buses.size()) + 1;
             b.name = text(name_text);
             b.vmax = vmax, b.vmin = vmin;
             if (i1 >= 0 && static_cast<std::size_t>(i1) < levels.size() && levels[i1].base > 0) {
               const Level& l = levels[static_cast<std::size_t>(i1)];
               b.base_kv = l.base;
               if (l.vmax > 0) b.vmax = l.vmax / l.base;
               if (l.vmin > 0) b.vmin = l.vmin / l.base;
             }
             b.solved = i2 >= 0 && d1 > 0;
             b.v = d1, b.angle = d2;
             r.buses.push_back(b);
           });

  auto branch = [&](bool transformer, int i, int j, int no, std::initializer_list<float> v) {
    Branch b;
    b.transformer = transformer, b.i = i, b.j = j, b.no = no;
    auto it = v.begin();
    b.pij = *it++, b.qij = *it++, b.pji = *it++, b.qji = *it++, b.extra_p = *it++, b.extra_q = *it;
    r.branches.push_back(b);
  };
  each_row(session, "select * from ln",
           {{"ibs", cli_int4, &i1},
            {"zbs", cli_int4, &i2},
            {"lnno", cli_int4, &i3},
            {"w", cli_real4, &f1},
            {"r", cli_real4, &f2},
            {"wz", cli_real4, &f3},
            {"rz", cli_real4, &f4},
            {"rci", cli_real4, &f5},
            {"rcz", cli_real4, &f6}},
           [&] {
             branch(false, i1, i2, i3, {f1, f2, f3, f4, f5, f6});
           });
  each_row(session, "select * from cp",
           {{"ibs", cli_int4, &i1},
            {"cpno", cli_int4, &i3},
            {"w", cli_real4, &f1},
            {"r", cli_real4, &f2}},
           [&] {
             branch(false, i1, i1, i3, {f1, f2, 0, 0, 0, 0});
           });
  each_row(session, "select * from xf",
           {{"ibs", cli_int4, &i1},
            {"zbs", cli_int4, &i2},
            {"xfno", cli_int4, &i3},
            {"w", cli_real4, &f1},
            {"r", cli_real4, &f2},
            {"wz", cli_real4, &f3},
            {"rz", cli_real4, &f4},
            {"pm", cli_real4, &f5},
            {"qm", cli_real4, &f6}},
           [&] {
             branch(true, i1, i2, i3, {f1, f2, f3, f4, f5, f6});
           });
  each_row(session, "select * from un",
           {{"ibs", cli_int4, &i1},
            {"mode_ctrl", cli_int4, &i2},
            {"w", cli_real4, &f1},
            {"r", cli_real4, &f2},
            {"rmx", cli_real4, &f7},
            {"rmn", cli_real4, &f8}},
           [&] {
             Generator g;
             g.bus = i1, g.type = i2, g.p = f1, g.q = f2, g.qmax = f7, g.qmin = f8;
             r.generators.push_back(g);
           });
  each_row(session, "select * from ld",
           {{"ibs", cli_int4, &i1},
            {"ldno", cli_int4, &i3},
            {"w", cli_real4, &f1},
            {"r", cli_real4, &f2}},
           [&] {
             r.loads.push_back(Load{i1, i3, f1, f2});
           });
  cli_close(session);
  return true;
}

}  // namespace lfres

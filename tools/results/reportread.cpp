// Reading the case files and the report files of a case into CaseResults.
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>

#include "results.hpp"
#include "support/freeread.hpp"

namespace lfres {
namespace {

constexpr double kNoBaseKv = 1e-4;  // a base voltage at most this is none
constexpr double kNoLimit = 1e-3;   // a per-unit limit at most this is none

// The fields of one report line: split at the commas, blanks and quotes
// taken off.  A field of asterisks (a value too wide for it) stays as it is.
std::vector<std::string> fields_of(const std::string& line) {
  std::vector<std::string> out;
  std::string f;
  bool quoted = false;
  for (char c : line) {
    if (c == '\'') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      out.push_back(f);
      f.clear();
    } else if (c != '\r') {
      f += c;
    }
  }
  for (auto& s : out) {
    s.erase(0, s.find_first_not_of(' '));
    s.erase(s.find_last_not_of(' ') + 1);
  }
  return out;
}

bool number(const std::string& text, double& v) {
  char* end = nullptr;
  v = std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0';
}

bool integer(const std::string& text, int& v) {
  double d = 0;
  if (!number(text, d) || d != std::floor(d)) return false;
  v = static_cast<int>(d);
  return true;
}

// Lines of one report file, each split into fields; empty when it is absent.
std::vector<std::vector<std::string>> report(const std::string& path) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) rows.push_back(fields_of(line));
  return rows;
}

class Reader {
 public:
  Reader(const std::string& stem, CaseResults& r) : stem_(stem), r_(r) {}

  bool run() {
    if (!read_control()) return false;
    read_buses();
    read_case_rows();
    read_map();
    if (!read_bus_report()) return false;
    read_branches(".LP2", false);
    read_branches(".LP3", true);
    read_generators();
    read_loads();
    read_dclines();
    read_areas();
    return true;
  }

 private:
  void problem(const std::string& file, const std::string& what) {
    r_.problems.push_back(stem_ + file + ": " + what);
  }

  bool read_control() {
    lf::FreeReader in;
    if (!in.open(stem_ + ".L0")) {
      problem(".L0", "cannot be read");
      return false;
    }
    in(counts_[0], counts_[1], counts_[2], counts_[3], counts_[4], counts_[5], counts_[6]);
    in(r_.base_mva, vmax_, vmin_, tolerance_, r_.method);
    return true;
  }

  void read_buses() {
    lf::FreeReader in;
    if (!in.open(stem_ + ".L1")) return;
    for (;;) {
      Bus b;
      double vmax_kv = 0, vmin_kv = 0;
      if (!in(b.name, b.base_kv, b.area, vmax_kv, vmin_kv)) break;
      b.number = static_cast<int>(r_.buses.size()) + 1;
      b.name.erase(b.name.find_last_not_of(' ') + 1);
      const bool base = b.base_kv > kNoBaseKv;
      b.vmax = base ? vmax_kv / b.base_kv : vmax_;
      b.vmin = base ? vmin_kv / b.base_kv : vmin_;
      if (b.vmax <= kNoLimit) b.vmax = vmax_;
      if (b.vmin <= kNoLimit) b.vmin = vmin_;
      if (b.vmax < b.vmin) b.vmax = vmax_, b.vmin = vmin_;
      r_.buses.push_back(b);
    }
  }

  // The rows of the branch and generator files as read: which buses have a
  // branch (the bus report leaves out the others), and the generators'
  // types and limits.
  void read_case_rows() {
    if (counts_[1] != 0) read_branch_ends(false);
    if (counts_[2] != 0) read_branch_ends(true);
    if (counts_[4] == 0) return;
    lf::FreeReader in;
    if (!in.open(stem_ + ".L5")) return;
    for (;;) {
      int mark = 0, bus = 0, type = 0;
      double p, q, v, a, qmax = 0, qmin = 0;
      if (!in(mark, bus, type, p, q, v, a, qmax, qmin)) break;
      if (mark <= 0) continue;
      Generator g;
      g.bus = bus, g.type = type, g.qmax = qmax, g.qmin = qmin;
      case_generators_.push_back(g);
    }
  }

  void read_branch_ends(bool transformer) {
    lf::FreeReader in;
    if (!in.open(stem_ + (transformer ? ".L3" : ".L2"))) return;
    for (;;) {
      int mark = 0, i = 0, j = 0, no = 0;
      double r, x, t;
      if (!in(mark, i, j, no, r, x, t)) break;
      if (mark > 0) connected_.insert(std::abs(i)), connected_.insert(std::abs(j));
    }
  }

  void read_map() {
    std::ifstream in(stem_ + ".MAP");
    int bus = 0, original = 0;
    while (in >> bus >> original) {
      if (bus >= 1 && bus <= static_cast<int>(r_.buses.size()))
        r_.buses[bus - 1].original = original;
    }
  }

  // The bus report: a first line with the status and the time, then one
  // line per solved bus in ascending order.  A bus number too wide for its
  // field is the next bus after the last that has a branch.
  bool read_bus_report() {
    auto rows = report(stem_ + ".LP1");
    if (rows.empty() || rows[0].size() < 2) {
      problem(".LP1", "missing or without its first line");
      return false;
    }
    int status = 1;
    integer(rows[0][0], status);
    r_.converged = status == 0;
    r_.stamp = rows[0][1];
    int last = 0;
    for (std::size_t k = 1; k < rows.size(); ++k) {
      const auto& f = rows[k];
      int bus = 0;
      if (f.size() < 3) continue;
      if (!integer(f[0], bus)) {
        bus = last + 1;
        while (bus <= static_cast<int>(r_.buses.size()) && !connected_.count(bus)) ++bus;
      }
      last = bus;
      if (bus < 1 || bus > static_cast<int>(r_.buses.size())) {
        problem(".LP1", "line " + std::to_string(k + 1) + " names no bus of the case");
        continue;
      }
      Bus& b = r_.buses[static_cast<std::size_t>(bus - 1)];
      b.solved = number(f[1], b.v) && number(f[2], b.angle);
    }
    return true;
  }

  void read_branches(const char* ext, bool transformer) {
    for (const auto& f : report(stem_ + ext)) {
      Branch b;
      b.transformer = transformer;
      if (f.size() < 9 || !integer(f[0], b.i) || !integer(f[1], b.j) || !integer(f[2], b.no))
        continue;
      double* v[] = {&b.pij, &b.qij, &b.pji, &b.qji, &b.extra_p, &b.extra_q};
      for (std::size_t k = 0; k < 6; ++k) {
        if (!number(f[3 + k], *v[k])) *v[k] = std::nan("");
      }
      r_.branches.push_back(b);
    }
  }

  // Generator report lines stand in the order of the rows as read, without
  // the rows of buses left out; each takes its type and limits from the
  // next row as read at the same bus.
  void read_generators() {
    std::map<int, std::size_t> next;  // bus -> next row as read to look at
    for (const auto& f : report(stem_ + ".LP5")) {
      Generator g;
      if (f.size() < 4 || !number(f[1], g.p) || !number(f[2], g.q)) continue;
      integer(f[3], g.merged);
      if (!integer(f[0], g.bus)) g.bus = 0;
      std::size_t& k = next[g.bus];
      while (k < case_generators_.size() && case_generators_[k].bus != g.bus) ++k;
      if (k < case_generators_.size()) {
        g.type = case_generators_[k].type;
        g.qmin = case_generators_[k].qmin;
        g.qmax = case_generators_[k].qmax;
        ++k;
      }
      r_.generators.push_back(g);
    }
  }

  void read_loads() {
    for (const auto& f : report(stem_ + ".LP6")) {
      Load l;
      if (f.size() < 4 || !number(f[2], l.p) || !number(f[3], l.q)) continue;
      if (!integer(f[0], l.bus)) l.bus = 0;
      integer(f[1], l.no);
      r_.loads.push_back(l);
    }
  }

  void read_dclines() {
    auto rows = report(stem_ + ".LP4");
    for (std::size_t k = 0; k + 1 < rows.size(); k += 5) {
      const auto& a = rows[k];
      const auto& b = rows[k + 1];
      DcLine d;
      if (a.size() < 9 || b.size() < 3 || !integer(a[0], d.i) || !integer(a[1], d.j) ||
          !integer(a[2], d.no))
        continue;
      double* v[] = {&d.p_i, &d.q_i, &d.p_j, &d.q_j, &d.ratio_i, &d.ratio_j};
      for (std::size_t n = 0; n < 6; ++n) number(a[3 + n], *v[n]);
      number(b[0], d.vdc_i), number(b[1], d.vdc_j), number(b[2], d.firing_angle);
      r_.dclines.push_back(d);
    }
  }

  void read_areas() {
    std::map<int, Area> schedules;
    lf::FreeReader in;
    if (counts_[6] != 0 && in.open(stem_ + ".L7")) {
      for (;;) {
        int mark = 0, area = 0, unit = 0;
        std::string name;
        double schedule = 0;
        if (!in(mark, area, name, unit, schedule)) break;
        if (mark <= 0) continue;
        name.erase(name.find_last_not_of(' ') + 1);
        schedules[area] = Area{area, name, schedule, 0, 0};
      }
    }
    for (const auto& f : report(stem_ + ".LP7")) {
      Area a;
      if (f.size() < 3 || !integer(f[0], a.number)) continue;
      if (auto it = schedules.find(a.number); it != schedules.end()) a = it->second;
      number(f[1], a.actual), number(f[2], a.regulating);
      r_.areas.push_back(a);
    }
  }

  std::string stem_;
  CaseResults& r_;
  int counts_[7] = {};  // buses, lines, transformers, DC lines, generators, loads, areas of .L0
  double vmax_ = 0, vmin_ = 0, tolerance_ = 0;
  std::set<int> connected_;                 // buses at an end of a branch in service
  std::vector<Generator> case_generators_;  // generator rows as read, without output
};

}  // namespace

double Branch::loading() const {
  return std::max(std::hypot(pij, qij), std::hypot(pji, qji));
}

bool Generator::at_limit() const {
  constexpr double kOnLimit = 1e-6;  // per unit: a report rounds to ten decimals
  return type == -2 && (q >= qmax - kOnLimit || q <= qmin + kOnLimit);
}

const Bus* CaseResults::bus(int number) const {
  if (number < 1 || number > static_cast<int>(buses.size())) return nullptr;
  return &buses[static_cast<std::size_t>(number - 1)];
}

std::string CaseResults::bus_name(int number) const {
  const Bus* b = bus(number);
  return b ? b->name : std::string();
}

int CaseResults::shown_number(int number) const {
  const Bus* b = bus(number);
  return b && b->original != 0 ? b->original : number;
}

bool read_file_results(const std::string& stem, CaseResults& r) {
  r = CaseResults{};
  r.stem = stem;
  return Reader(stem, r).run();
}

}  // namespace lfres

// mp2lf: turns a MATPOWER case into the engine's case files.
//
//   mp2lf CASE.m OUT_STEM [--method N] [--tolerance X] [--iterations N] [--qlim] [--force]
//
// writes OUT_STEM.L0, .L1, .L2, .L3, .L5 and .L6, all per unit on the case's
// base, and warns about what the engine will not solve as MATPOWER does.
// Buses of type 4 and everything out of service or attached to such a bus
// are left out; the other buses are numbered 1..n in file order.  Numbers
// are written in full (the shortest text that reads back to the same
// double), so that the engine works on exactly MATPOWER's data.
// OUT_STEM.MAP keeps, one line per bus, its number in the case files and
// its number in the MATPOWER case, which the report tool shows.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "cmdline.hpp"
#include "family.hpp"
#include "mpcase.hpp"

namespace mp2lf {
namespace {

// Bus, generator and branch columns (0-based) of the MATPOWER format.
enum { BUS_I, BUS_TYPE, PD, QD, GS, BS, BUS_AREA, VM, VA, BASE_KV, ZONE, VMAX, VMIN };
enum { GEN_BUS, PG, QG, QMAX, QMIN, VG, MBASE, GEN_STATUS, PMAX, PMIN };
enum { F_BUS, T_BUS, BR_R, BR_X, BR_B, RATE_A, RATE_B, RATE_C, TAP, SHIFT, BR_STATUS };

struct Options {
  std::string input, stem;
  int method = 1;
  double tolerance = 1e-8;
  int iterations = 50;
  bool qlim = false;
  bool force = false;  // replace an existing case family
};

constexpr const char* kUsage =
    "usage: mp2lf CASE.m OUT_STEM [--method N] [--tolerance X] [--iterations N] "
    "[--qlim] [--force]\n"
    "  writes OUT_STEM.L0 .L1 .L2 .L3 .L5 .L6 from a MATPOWER case, and OUT_STEM.MAP:\n"
    "  per bus its number in the case files and its MATPOWER number; an existing\n"
    "  case family of that stem is never replaced without --force, and a write\n"
    "  that fails leaves the old files as they were\n"
    "  --method N      iteration method written to .L0 (default 1)\n"
    "  --tolerance X   convergence tolerance, per unit (default 1e-8)\n"
    "  --iterations N  iteration limit (default 50)\n"
    "  --qlim          PV generators get type -2: reactive limits enforced\n"
    "  --force         replace the files of an existing case family\n";

// An integer option's value, or a problem text.
std::string to_int(const std::string& opt, const char* text, int& value) {
  char* end = nullptr;
  long v = std::strtol(text, &end, 10);
  if (*text == '\0' || *end != '\0' || v < -1000000 || v > 1000000)
    return opt + " needs an integer, not '" + text + "'";
  value = static_cast<int>(v);
  return {};
}

// Walks the arguments into o; returns -1 to go on, else the exit status.
int options(int argc, char** argv, Options& o) {
  const auto flag = [](bool& to) {
    return [&to](const char*) {
      to = true;
      return std::string();
    };
  };
  const lfcmd::Command command{
      {"mp2lf", kUsage},
      {{"--method", "a value", [&](const char* t) { return to_int("--method", t, o.method); }},
       {"--iterations", "a value",
        [&](const char* t) {
          std::string why = to_int("--iterations", t, o.iterations);
          if (why.empty() && o.iterations < 1) why = "--iterations must be at least 1";
          return why;
        }},
       {"--tolerance", "a value",
        [&](const char* t) {
          char* end = nullptr;
          o.tolerance = std::strtod(t, &end);
          if (*t == '\0' || *end != '\0' || !(o.tolerance > 0) || !std::isfinite(o.tolerance))
            return "--tolerance needs a positive number, not '" + std::string(t) + "'";
          return std::string();
        }},
       {"--qlim", nullptr, flag(o.qlim)},
       {"--force", nullptr, flag(o.force)}}};
  std::vector<std::string> plain;
  if (int status = lfcmd::parse(command, argc, argv, plain); status >= 0) return status;
  if (plain.size() != 2)
    return lfcmd::problem(command.program, "give one case file and one output stem");
  o.input = plain[0];
  o.stem = plain[1];
  return -1;
}

// A real in the shortest form that reads back to the same double; an
// infinite limit becomes a huge finite one, which the engine's reader takes.
std::string real(double x) {
  if (std::isinf(x)) x = x > 0 ? 1e10 : -1e10;
  char buf[40];
  const auto res = std::to_chars(buf, buf + sizeof buf, x);
  return std::string(buf, res.ptr);
}

// A name between apostrophes, at most 20 characters, a quote doubled.
std::string quoted(std::string name) {
  if (name.size() > 20) name.resize(20);
  std::string q = "'";
  for (char c : name) {
    if (c == '\'') q += '\'';
    q += c;
  }
  return q + "'";
}

struct Output {
  std::ostringstream l0, l1, l2, l3, l5, l6;
  std::ostringstream map;  // .MAP: per bus, the engine's number and the MATPOWER number
  int nbus = 0, nline = 0, nshunt = 0, ntrans = 0, ngen = 0, nload = 0;
  int dropped_buses = 0, dropped_branches = 0, dropped_gens = 0;
  // What the engine will not solve as MATPOWER does, for the warnings.
  bool reference_bus = false;  // a bus of type 3 is kept
  int slack_gens = 0;          // generators written as slack (type 0)
  int shifts = 0;              // kept branches with a phase shift
  double largest_shift = 0;    // its largest size, degrees
  int zero_impedance = 0;      // kept branches with R = X = 0
  std::string first_zero;      // the first of them, "F and T" in MATPOWER's numbers
};

// A branch row of .L2: the fields the reader takes, then a spare real and a
// spare integer, so that the row also has the width that the rewriting of
// branch data after a run expects.
void line_row(Output& out, int i, int j, int no, double r, double x, double b) {
  out.l2 << "1 " << i << ' ' << j << ' ' << no << ' ' << real(r) << ' ' << real(x) << ' ' << real(b)
         << " 0 0 0 0 0 0 0 0\n";
}

// A shunt branch (I = J) of admittance g + jb, given as its impedance.
void shunt_row(Output& out, int bus, int no, double g, double b) {
  const double d = g * g + b * b;
  line_row(out, bus, bus, no, g / d, -b / d, 0.0);
  ++out.nshunt;
}

// A transformer row of .L3, ratio t at the J end; the spare fields again give
// the row the width of the rewriting step.
void transformer_row(Output& out, int i, int j, int no, double r, double x, double t,
                     double shift) {
  out.l3 << "1 " << i << ' ' << j << ' ' << no << ' ' << real(r) << ' ' << real(x) << ' ' << real(t)
         << " 0 0 0 0 0 0 0 0 0 " << real(shift) << " 0 0 0 0 0\n";
  ++out.ntrans;
}

Output convert(const MpCase& c, const Options& o) {
  Output out;
  const double base = c.base_mva;

  // Buses: type 4 is left out, the others are numbered in file order.
  std::map<double, int> num;
  std::vector<int> type;  // by new number, from 1
  type.push_back(0);
  for (std::size_t k = 0; k < c.bus.size(); ++k) {
    const auto& b = c.bus[k];
    if (b[BUS_TYPE] == 4) {
      ++out.dropped_buses;
      continue;
    }
    const int n = ++out.nbus;
    num[b[BUS_I]] = n;
    out.reference_bus = out.reference_bus || b[BUS_TYPE] == 3;
    out.map << n << ' ' << static_cast<long long>(b[BUS_I]) << '\n';
    type.push_back(static_cast<int>(b[BUS_TYPE]));
    std::string name =
        c.bus_name.empty() ? std::to_string(static_cast<long long>(b[BUS_I])) : c.bus_name[k];
    out.l1 << quoted(name) << ' ' << real(b[BASE_KV]) << ' ' << static_cast<long long>(b[BUS_AREA])
           << ' ' << real(b[VMAX] * b[BASE_KV]) << ' ' << real(b[VMIN] * b[BASE_KV]) << '\n';
    if (b[PD] != 0 || b[QD] != 0) {
      ++out.nload;
      out.l6 << "1 " << n << ' ' << out.nload << " 1 " << real(b[PD] / base) << ' '
             << real(b[QD] / base) << " 1 0 0 0 0 0 0 0 0 0\n";
    }
  }
  auto bus_of = [&](double b) {
    auto it = num.find(b);
    return it == num.end() ? 0 : it->second;
  };

  // Branches in service between kept buses, grouped by bus pair so that
  // parallel branches stand side by side; a pair with a transformer goes
  // wholly to .L3.
  struct Pair {
    std::vector<std::size_t> rows;
    bool has_transformer = false;
  };
  std::vector<Pair> pairs;
  std::map<std::pair<int, int>, std::size_t> pair_of;
  auto is_transformer = [](const std::vector<double>& r) { return r[TAP] != 0 || r[SHIFT] != 0; };
  for (std::size_t k = 0; k < c.branch.size(); ++k) {
    const auto& r = c.branch[k];
    const int f = bus_of(r[F_BUS]), t = bus_of(r[T_BUS]);
    if (!(r[BR_STATUS] > 0) || f == 0 || t == 0) {
      ++out.dropped_branches;
      continue;
    }
    auto [it, fresh] = pair_of.try_emplace({std::min(f, t), std::max(f, t)}, pairs.size());
    if (fresh) pairs.emplace_back();
    Pair& p = pairs[it->second];
    p.rows.push_back(k);
    if (r[SHIFT] != 0) {
      ++out.shifts;
      out.largest_shift = std::max(out.largest_shift, std::fabs(r[SHIFT]));
    }
    if (r[BR_R] == 0 && r[BR_X] == 0 && out.zero_impedance++ == 0)
      out.first_zero = std::to_string(static_cast<long long>(r[F_BUS])) + " and " +
                       std::to_string(static_cast<long long>(r[T_BUS]));
    p.has_transformer = p.has_transformer || is_transformer(r);
  }

  // Shunt rows follow all series rows of .L2: first the bus shunts, then
  // the charging of the branches that went to .L3.
  struct Shunt {
    int bus;
    double g, b;
  };
  std::vector<Shunt> shunts;
  for (const auto& b : c.bus) {
    const int n = bus_of(b[BUS_I]);
    if (n != 0 && (b[GS] != 0 || b[BS] != 0)) shunts.push_back({n, b[GS] / base, b[BS] / base});
  }
  for (const Pair& p : pairs) {
    for (std::size_t k : p.rows) {
      const auto& r = c.branch[k];
      const int f = bus_of(r[F_BUS]), t = bus_of(r[T_BUS]);
      const int no = static_cast<int>(k) + 1;
      if (!p.has_transformer) {
        line_row(out, f, t, no, r[BR_R], r[BR_X], r[BR_B] / 2);
        ++out.nline;
        continue;
      }
      // MATPOWER's ratio stands at the from bus, the engine's at the J end.
      const double tap = r[TAP] != 0 ? r[TAP] : 1.0;
      transformer_row(out, t, f, no, r[BR_R], r[BR_X], tap, r[SHIFT]);
      if (r[BR_B] != 0) {
        shunts.push_back({f, 0.0, r[BR_B] / 2 / (tap * tap)});
        shunts.push_back({t, 0.0, r[BR_B] / 2});
      }
    }
  }
  int no = static_cast<int>(c.branch.size());
  for (const Shunt& s : shunts) shunt_row(out, s.bus, ++no, s.g, s.b);

  // Generators: the reference bus keeps its voltage and angle, a PV bus its
  // voltage, a PQ bus its P and Q.
  std::map<int, double> angle;
  for (const auto& b : c.bus)
    if (int n = bus_of(b[BUS_I])) angle[n] = b[VA];
  for (const auto& g : c.gen) {
    const int n = bus_of(g[GEN_BUS]);
    if (!(g[GEN_STATUS] > 0) || n == 0) {
      ++out.dropped_gens;
      continue;
    }
    const int mode = type[n] == 3 ? 0 : type[n] == 2 ? (o.qlim ? -2 : -1) : 1;
    ++out.ngen;
    if (mode == 0) ++out.slack_gens;
    out.l5 << "1 " << n << ' ' << mode << ' ' << real(g[PG] / base) << ' ' << real(g[QG] / base)
           << ' ' << real(g[VG]) << ' ' << real(mode == 0 ? angle[n] : 0.0) << ' '
           << real(g[QMAX] / base) << ' ' << real(g[QMIN] / base) << ' ' << real(g[PMAX] / base)
           << ' ' << real(g[PMIN] / base) << " 0 0 0 0\n";
  }

  out.l0 << out.nbus << ' ' << out.nline + out.nshunt << ' ' << out.ntrans << " 0 " << out.ngen
         << ' ' << out.nload << " 0 0 0 0 0\n"
         << real(base) << " 1.1 0.9 " << real(o.tolerance) << ' ' << o.method << ' ' << o.iterations
         << " 0 0 0 0\n";
  return out;
}

// Says what the engine will solve differently from MATPOWER, or not at all.
void warn(const Output& out) {
  if (!out.reference_bus)
    std::fputs("mp2lf: warning: no bus is of type 3 (reference): the case has no slack bus\n",
               stderr);
  else if (out.slack_gens == 0)
    std::fputs(
        "mp2lf: warning: no generator in service stands at the reference bus: the case has no "
        "slack bus\n",
        stderr);
  if (out.shifts > 0)
    std::fprintf(stderr,
                 "mp2lf: warning: %d transformers have a phase shift (the largest %g degrees), "
                 "which the engine does not model: it solves them without\n",
                 out.shifts, out.largest_shift);
  if (out.zero_impedance > 0)
    std::fprintf(stderr,
                 "mp2lf: warning: %d branches have zero impedance (the first between buses %s), "
                 "which the engine cannot solve\n",
                 out.zero_impedance, out.first_zero.c_str());
}

}  // namespace
}  // namespace mp2lf

int main(int argc, char** argv) {
  using namespace mp2lf;
  Options o;
  if (int status = options(argc, argv, o); status >= 0) return status;
  std::ifstream in(o.input, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "mp2lf: cannot open %s\n", o.input.c_str());
    return 1;
  }
  std::stringstream text;
  text << in.rdbuf();
  MpCase c;
  try {
    c = parse_case(text.str());
  } catch (const ParseError& e) {
    std::fprintf(stderr, "mp2lf: cannot convert %s: %s; nothing written\n", o.input.c_str(),
                 e.what());
    return 1;
  }
  const Output out = convert(c, o);
  if (out.nbus == 0) {
    std::fprintf(stderr, "mp2lf: cannot convert %s: no bus is in service; nothing written\n",
                 o.input.c_str());
    return 1;
  }
  warn(out);
  if (!write_family(o.stem,
                    {{".L0", out.l0.str()},
                     {".L1", out.l1.str()},
                     {".L2", out.l2.str()},
                     {".L3", out.l3.str()},
                     {".L5", out.l5.str()},
                     {".L6", out.l6.str()},
                     {".MAP", out.map.str()}},
                    o.force))
    return 1;
  std::printf(
      "mp2lf: wrote %s.L0-.L6 and .MAP: %d buses, %d lines, %d shunt rows, %d transformers, %d "
      "generators, "
      "%d loads; left out %d isolated buses, %d branches and %d generators out of service or "
      "isolated\n",
      o.stem.c_str(), out.nbus, out.nline, out.nshunt, out.ntrans, out.ngen, out.nload,
      out.dropped_buses, out.dropped_branches, out.dropped_gens);
  return 0;
}

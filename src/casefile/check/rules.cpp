#include "casefile/check/rules.hpp"

#include <algorithm>
#include <string>

#include "store/store.hpp"

namespace lf::check {

namespace {

constexpr int32_t kLibraryRoom = 80;  // parameter sets the engine has room for from the start
constexpr int32_t kNodeRoom = 10000;  // node numbers of switch records at least allowed

std::string num(double x) {
  std::string s = std::to_string(x);
  while (s.size() > 1 && s.back() == '0') s.pop_back();
  if (s.back() == '.') s.pop_back();
  return s;
}

std::string where(const FileRead& file, const Record& r) {
  return file.name + " record " + std::to_string(r.number);
}

// One count of .L0 against the file it decides about.
void count(const Family& f, const FileRead& file, const char* field, const char* what,
           Warnings& w) {
  const int32_t n = f.header(field);
  const int32_t held = file.kept_count();
  const std::string counted =
      f.l0.name + " counts " + std::to_string(n) + " " + what + " (" + field + ")";
  if (n > 0 && !file.present) {
    w.push_back(counted + " but there is no " + file.name + ": none are used");
  } else if (n > 0 && held != n) {
    w.push_back(counted + ", " + file.name + " holds " + std::to_string(held) + ": " +
                std::to_string(held) + " are used");
  } else if (n == 0 && held > 0 && !f.reads(file)) {
    w.push_back(file.name + " holds " + std::to_string(held) + " " + what + " but " + f.l0.name +
                " counts none (" + field + "): the file is not read");
  }
}

void bus_in_case(const Family& f, const FileRead& file, const Record& r, int32_t bus, Warnings& w) {
  if (bus >= 1 && bus <= f.nbus()) return;
  w.push_back(where(file, r) + ": bus number " + std::to_string(bus) + " is not in 1.." +
              std::to_string(f.nbus()) + "; the engine stops");
}

// A pair of limits of a layout: the names and the fields' positions.
struct Limits {
  const char *hi, *lo;
  std::size_t hi_at, lo_at;
};
Limits limits(const FileRead& file, const char* hi, const char* lo) {
  return {hi, lo, file.layout->at(hi), file.layout->at(lo)};
}

void inverted(const FileRead& file, const Record& r, const Limits& l, const char* tail,
              Warnings& w) {
  const double h = file.value(r, l.hi_at).r, lo = file.value(r, l.lo_at).r;
  if (h < lo)
    w.push_back(where(file, r) + ": " + l.hi + " " + num(h) + " is below " + l.lo + " " + num(lo) +
                tail);
}

void branches(const Family& f, const FileRead& file, Warnings& w) {
  const Layout& l = *file.layout;
  const std::size_t i_at = l.at("I"), j_at = l.at("J"), r_at = l.at("R"), x_at = l.at("X");
  for (const Record& r : file.records) {
    if (!f.uses(file, r)) continue;
    const int32_t i = end_bus(file.value(r, i_at).i), j = end_bus(file.value(r, j_at).i);
    bus_in_case(f, file, r, i, w);
    if (j != i) bus_in_case(f, file, r, j, w);
    const double R = file.value(r, r_at).r, X = file.value(r, x_at).r;
    const auto branch = [&] { return "branch " + std::to_string(i) + "-" + std::to_string(j); };
    if (R == 0 && X == 0)
      w.push_back(where(file, r) + ": " + branch() + " has no impedance (R = X = 0): it carries " +
                  (i == j ? "nothing" : "no flow, and the decoupled method cannot solve with it"));
    else if (R < 0)
      w.push_back(where(file, r) + ": " + branch() + " has a negative resistance R = " + num(R));
  }
}

void rows(const Family& f, const FileRead& file, Warnings& w) {
  const std::size_t ibs = file.layout->at("ibs");
  const Limits q = limits(file, "Qmax", "Qmin"), p = limits(file, "Pmax", "Pmin");
  for (const Record& r : file.records) {
    if (!f.uses(file, r)) continue;
    bus_in_case(f, file, r, file.value(r, ibs).i, w);
    inverted(file, r, q, "", w);
    inverted(file, r, p, "", w);
  }
}

void load_types(const Family& f, Warnings& w) {
  const auto sets = static_cast<int32_t>(f.dat.records.size());
  const std::size_t type_at = f.l6.layout->at("mode_ctrl");
  for (const Record& r : f.l6.records) {
    const int32_t type = f.l6.value(r, type_at).i;
    if (!f.uses(f.l6, r) || type < kTypeFirstLoadSet || type <= sets) continue;
    std::string says = where(f.l6, r) + ": load type " + std::to_string(type);
    if (!f.dat.present)
      w.push_back(says + " needs the library " + f.dat.name +
                  ", which is missing: the engine stops");
    else if (type > std::max(sets, kLibraryRoom))
      w.push_back(says + " is beyond the room of the library: the engine stops");
    else
      w.push_back(says + " names a parameter set that " + f.dat.name + " does not hold (it has " +
                  std::to_string(sets) + "): the load counts as zero");
  }
}

}  // namespace

void check_counts(const Family& f, Warnings& w) {
  if (!f.l0.present) {
    w.push_back("there is no " + f.l0.name + ": the engine stops");
    return;
  }
  count(f, f.l1, "nbus", "buses", w);
  count(f, f.l2, "nacline", "lines", w);
  count(f, f.l3, "ntrans", "transformers", w);
  count(f, f.nl4, "ndcline", "DC lines", w);
  count(f, f.l5, "ngenerat", "generators", w);
  count(f, f.l6, "nload", "loads", w);
  count(f, f.l7, "narea", "areas", w);
  count(f, f.l10, "ctrl_fact", "factor records", w);
  if (f.header("ctrl_sub") > 0) count(f, f.l13, "nswitch", "switch records", w);
}

void check_records(const Family& f, Warnings& w) {
  const Limits kv = limits(f.l1, "vmax_kv", "vmin_kv");
  for (const Record& r : f.l1.records) {
    if (!f.reads(f.l1)) break;
    if (f.l1.value(r, kv.hi_at).r != 0 && f.l1.value(r, kv.lo_at).r != 0)
      inverted(f.l1, r, kv, ": the engine takes the case's default limits", w);
  }
  branches(f, f.l2, w);
  branches(f, f.l3, w);
  const std::size_t i_at = f.nl4.layout->at("I"), j_at = f.nl4.layout->at("J");
  for (const Record& r : f.nl4.records) {
    if (!f.uses(f.nl4, r)) continue;
    bus_in_case(f, f.nl4, r, f.nl4.value(r, i_at).i, w);
    bus_in_case(f, f.nl4, r, f.nl4.value(r, j_at).i, w);
  }
  rows(f, f.l5, w);
  rows(f, f.l6, w);
  load_types(f, w);
  const int32_t top_node = std::max(f.nbus(), kNodeRoom);
  for (const Record& r : f.l13.records) {
    if (!f.uses(f.l13, r)) continue;
    bus_in_case(f, f.l13, r, r.group, w);
    for (const char* end : {"I", "J"}) {
      const int32_t node = f.l13.integer(r, end);
      if (node < 1 || node > top_node)
        w.push_back(where(f.l13, r) + ": node number " + std::to_string(node) + " is not in 1.." +
                    std::to_string(top_node) + "; the engine stops");
    }
  }
}

}  // namespace lf::check

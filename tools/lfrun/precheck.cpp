#include "precheck.hpp"

#include <cstdio>
#include <fstream>

#include "casefile/check/casecheck.hpp"

namespace {

constexpr std::size_t kNameWidth = 60;  // the engine's names are 60 characters

// The load library's stem as the engine takes it: line 4 of NAME.INC, first
// 60 characters without trailing blanks, or DATALIB.
std::string library_stem() {
  std::ifstream in("NAME.INC");
  std::string line;
  for (int n = 1; n <= 4; ++n)
    if (!std::getline(in, line)) return "DATALIB";
  if (!line.empty() && line.back() == '\r') line.pop_back();
  line = line.substr(0, kNameWidth);
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

}  // namespace

int precheck(const std::string& name, bool alone, std::vector<lfres::BusRecord>& buses) {
  lf::check::Family read;
  const std::vector<std::string> warnings = lf::check::check_case(name, library_stem(), read);
  const lf::check::FileRead& l1 = read.l1;
  const lf::check::Layout& l = *l1.layout;
  const std::size_t busname = l.slot("busname"), kv = l.at("basekv"), area = l.at("busarea"),
                    vmax = l.at("vmax_kv"), vmin = l.at("vmin_kv");
  buses.clear();
  buses.reserve(l1.records.size());
  for (const lf::check::Record& r : l1.records)
    buses.push_back({l1.texts[r.index * l.texts + busname], l1.value(r, kv).r, l1.value(r, area).i,
                     l1.value(r, vmax).r, l1.value(r, vmin).r});
  for (const std::string& w : warnings) std::fprintf(stderr, "lfrun: check: %s\n", w.c_str());
  if (alone)
    std::fprintf(stderr, "lfrun: check: %s: %zu warning(s)\n", name.c_str(), warnings.size());
  return static_cast<int>(warnings.size());
}

#include "precheck.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "casefile/check/casecheck.hpp"

namespace {

constexpr std::size_t kNameWidth = 60;  // the engine's names are 60 characters
constexpr std::uintmax_t kMostRoom = std::uintmax_t{1} << 24;  // bytes of bus file made room for

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

int precheck(const std::string& name, bool alone, lfres::BusNames& buses) {
  // Room for the names before the check takes its memory, so that they do
  // not stand amid it: the calculation then finds all of that memory free in
  // one piece.  No name is longer than the file, and a record takes two
  // bytes at least.  Room that is not written costs nothing; beyond a
  // bound the names grow as they come.
  std::error_code ec;
  const std::uintmax_t bytes =
      std::min<std::uintmax_t>(std::filesystem::file_size(name + ".L1", ec), kMostRoom);
  buses = {};
  if (!ec) buses.text.reserve(bytes), buses.ends.reserve(bytes / 2);
  lf::check::Family read;
  const std::vector<std::string> warnings = lf::check::check_case(name, library_stem(), read);
  const lf::check::FileRead& l1 = read.l1;
  const std::size_t busname = l1.layout->slot("busname");
  for (const lf::check::Record& r : l1.records)
    buses.add(l1.texts[r.index * l1.layout->texts + busname]);
  for (const std::string& w : warnings) std::fprintf(stderr, "lfrun: check: %s\n", w.c_str());
  if (alone)
    std::fprintf(stderr, "lfrun: check: %s: %zu warning(s)\n", name.c_str(), warnings.size());
  return static_cast<int>(warnings.size());
}

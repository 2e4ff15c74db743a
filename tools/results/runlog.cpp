#include "runlog.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace lfres {
namespace {

struct Heading {
  const char* text;  // the table's title line without its leading blanks
  const char* name;  // the method as a user knows it
  bool two_values;   // rows hold a P and a Q mismatch
};

// By method number 0 to 4, then the nonlinear method.

constexpr Heading kHeadings[] = {
    {"P Q Decoupled Iterative Process", "P-Q decoupled (method 0)", true},
    {"Newton Method (Power Equation) Iterative Process", "Newton, correction test (method 1)",
     false},
    {"Optimum Factor Iterative Process", "Newton with optimum factor (method 2)", false},
    {"Newton Method (Current Equation) Iterated Process", "Newton, current equations (method 3)",
     false},
    {"Newton Method Iterative Process", "Newton after a decoupled start (method 4)", false},
    {"NOLINEAR METHOD ITERATIVE PROCESS", "nonlinear", false},
};

constexpr const char* kInterrupted = "Calculation Termination!......";

std::string trimmed(const std::string& s) {
  auto b = s.find_first_not_of(' ');
  if (b == std::string::npos) return {};
  return s.substr(b, s.find_last_not_of(' ') - b + 1);
}

// A table row: four blanks, the count in three columns, then the bus name
// in 20 columns and the value in 12 from column 29 (and, for the decoupled
// table, a second name and value from column 42).
bool parse_row(const std::string& line, bool two_values, IterationRow& row) {
  if (line.size() < 41 || line.compare(0, 4, "    ") != 0) return false;
  char* end = nullptr;
  const std::string count = line.substr(4, 3);
  row.t = static_cast<int>(std::strtol(count.c_str(), &end, 10));
  if (end == count.c_str() || trimmed(std::string(end)) != "") return false;
  const std::string value = line.substr(29, 12);
  row.value = std::strtod(value.c_str(), &end);
  if (end == value.c_str()) return false;
  row.bus = trimmed(line.substr(8, 20));
  if (two_values && line.size() >= 75) {
    const std::string q = line.substr(63, 12);
    const double vq = std::strtod(q.c_str(), &end);
    if (end != q.c_str() && vq > row.value) row.value = vq, row.bus = trimmed(line.substr(42, 20));
  }
  return true;
}

}  // namespace

std::string method_name(int method) {
  // A method above 4 or below 0 runs the decoupled method.
  return kHeadings[method >= 1 && method <= 4 ? method : 0].name;
}

RunLog parse_run_log(const std::vector<std::string>& lines) {
  RunLog log;
  const Heading* table = nullptr;
  for (const auto& line : lines) {
    const std::string t = trimmed(line);
    if (t == kInterrupted) log.interrupted = true;
    if (t.rfind(kTimeLabel, 0) == 0)
      log.seconds = std::strtod(t.c_str() + std::strlen(kTimeLabel), nullptr) / 1000;
    auto h = std::find_if(std::begin(kHeadings), std::end(kHeadings),
                          [&](const Heading& h) { return t == h.text; });
    if (h != std::end(kHeadings)) {
      table = h;
      log.method = h->name;
      ++log.tables;
      continue;
    }
    IterationRow row;
    if (table && parse_row(line, table->two_values, row)) {
      row.table = log.tables;
      log.rows.push_back(row);
    }
  }
  return log;
}

std::vector<std::string> read_lines(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

}  // namespace lfres

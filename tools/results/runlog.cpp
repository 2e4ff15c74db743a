#include "runlog.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace lfres {
namespace {

// Where a table's rows hold their fields.
enum class Layout {
  Newton,     // count from column 4, bus name from 8, value from 29
  Decoupled,  // the same, then a second name from 42 and value from 63
  Nonlinear,  // count from column 6, bus number from 16, value from 31
};

struct Heading {
  const char* text;  // the table's title line without its leading blanks
  const char* name;  // the method as a user knows it
  Layout layout;
};

// By method number 0 to 4, then the nonlinear method.

constexpr Heading kHeadings[] = {
    {"P Q Decoupled Iterative Process", "P-Q decoupled (method 0)", Layout::Decoupled},
    {"Newton Method (Power Equation) Iterative Process", "Newton, correction test (method 1)",
     Layout::Newton},
    {"Optimum Factor Iterative Process", "Newton with optimum factor (method 2)", Layout::Newton},
    {"Newton Method (Current Equation) Iterated Process", "Newton, current equations (method 3)",
     Layout::Newton},
    {"Newton Method Iterative Process", "Newton after a decoupled start (method 4)",
     Layout::Newton},
    {"NOLINEAR METHOD ITERATIVE PROCESS", "nonlinear method", Layout::Nonlinear},
};

constexpr const char* kInterrupted = "Calculation Termination!......";

std::string trimmed(const std::string& s) {
  auto b = s.find_first_not_of(' ');
  if (b == std::string::npos) return {};
  return s.substr(b, s.find_last_not_of(' ') - b + 1);
}

// A number in columns [from, from + width) of a line; false when there is none.
bool field(const std::string& line, std::size_t from, std::size_t width, double& value) {
  if (line.size() < from + width) return false;
  const std::string text = line.substr(from, width);
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return end != text.c_str() && trimmed(std::string(end)).empty();
}

// A table row: the iteration count, the bus and the value at the places of
// the table's layout (the decoupled table's second value when larger).
bool parse_row(const std::string& line, Layout layout, IterationRow& row) {
  const bool nonlinear = layout == Layout::Nonlinear;
  double count = 0;
  if (line.compare(0, 4, "    ") != 0 || !field(line, nonlinear ? 6 : 4, 3, count) ||
      !field(line, nonlinear ? 31 : 29, 12, row.value))
    return false;
  row.t = static_cast<int>(count);
  row.bus = trimmed(line.substr(nonlinear ? 16 : 8, nonlinear ? 10 : 20));
  double q = 0;
  if (layout == Layout::Decoupled && field(line, 63, 12, q) && q > row.value)
    row.value = q, row.bus = trimmed(line.substr(42, 20));
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
    if (table && parse_row(line, table->layout, row)) {
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

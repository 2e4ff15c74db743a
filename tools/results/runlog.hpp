// The iteration tables of one calculation, read from the lines that the
// engine printed (the run log that lfrun keeps beside the case).
#pragma once

#include <string>
#include <vector>

namespace lfres {

// One row of an iteration table.
struct IterationRow {
  int table = 0;    // which table of the calculation, from 1 (a second pass prints a new one)
  int t = 0;        // iteration count of the row
  std::string bus;  // bus of the largest mismatch or correction
  double value =
      0;  // the largest mismatch or correction, per unit (decoupled: the larger of P and Q)
};

struct RunLog {
  std::string method;  // the method of the last table, by name; empty when none was printed
  int tables = 0;      // iteration tables printed
  std::vector<IterationRow> rows;  // all rows in the order printed
  bool interrupted = false;        // the user stopped the iteration
  double seconds = -1;             // calculation time that lfrun noted, -1 when none
  int iterations() const { return rows.empty() ? 0 : rows.back().t; }
};

// The summary's line of the calculation time, which lfrun writes into the
// run log after the engine's lines: this label, then milliseconds.
constexpr const char* kTimeLabel = "Calculation time";

// The name of the method that a case's method number selects.
std::string method_name(int method);

// Reads the iteration tables of one calculation's lines.
RunLog parse_run_log(const std::vector<std::string>& lines);

// The lines of a log file, empty when there is none.
std::vector<std::string> read_lines(const std::string& path);

}  // namespace lfres

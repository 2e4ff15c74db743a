// The solved state of one case as the host programs see it: read back from
// the case files and the report files (or the database) after a
// calculation, never from the engine's memory, so that a summary or a table
// shows exactly what the engine wrote.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lfres {

// One bus of the case, in the order of the bus file.
struct Bus {
  int number = 0;       // case bus number: the row in the bus file, from 1
  int original = 0;     // the bus number of the source case (from the map file), 0 when none
  std::string name;     // bus name, without trailing blanks
  int area = 0;         // area number of the bus file
  double base_kv = 0;   // base voltage, kV
  double vmin = 0;      // lower voltage limit, per unit (the case's default where the bus has none)
  double vmax = 0;      // upper voltage limit, per unit
  bool solved = false;  // false for a bus the calculation left out (no branch)
  double v = 0;         // voltage magnitude, per unit
  double angle = 0;     // voltage angle, degrees, as the bus report gives it
};

// One line, shunt branch or transformer as read, with its flows counted from
// I to J at both ends, per unit.
struct Branch {
  bool transformer = false;
  int i = 0, j = 0, no = 0;  // case bus numbers of the two ends and the circuit number
  double pij = 0, qij = 0;   // power entering at the I end
  double pji = 0, qji = 0;   // power leaving at the J end
  double extra_p = 0;        // lines: charging at the I end; transformers: magnetising P
  double extra_q = 0;        // lines: charging at the J end; transformers: magnetising Q
  bool shunt() const { return i == j; }
  // Apparent power at the more loaded end, per unit.
  double loading() const;
};

// One generator row as read, with its output.
struct Generator {
  int bus = 0;                // case bus number
  double p = 0, q = 0;        // output, per unit
  int merged = 0;             // merged flag of the generator report
  int type = 0;               // type as read: 0 slack, -1 and -2 P and V given, 1 P and Q given
  double qmin = 0, qmax = 0;  // reactive limits as read, per unit
  bool at_limit() const;      // a type -2 row whose output stands on a reactive limit
};

// One load row as reported.
struct Load {
  int bus = 0;          // case bus number
  int no = 0;           // load number
  double p = 0, q = 0;  // consumption, per unit
};

// One DC line: the compact DC report's first two lines.
struct DcLine {
  int i = 0, j = 0, no = 0;         // rectifier bus, inverter bus, circuit number
  double p_i = 0, q_i = 0;          // power at the rectifier, per unit
  double p_j = 0, q_j = 0;          // power at the inverter, per unit
  double ratio_i = 0, ratio_j = 0;  // converter transformer ratios
  double vdc_i = 0, vdc_j = 0;      // DC voltages, per unit
  double firing_angle = 0;          // rectifier firing angle, degrees
};

// One area record with its schedule and its outcome.
struct Area {
  int number = 0;
  std::string name;
  double schedule = 0;    // scheduled export, per unit
  double actual = 0;      // actual interchange, per unit
  double regulating = 0;  // output of the area's regulating generator, per unit
};

struct CaseResults {
  std::string stem;        // path of the case without extension
  double base_mva = 100;   // power base of the case, MVA
  int method = 1;          // method as the case gives it
  bool converged = false;  // status of the bus report's first line
  std::string stamp;       // date and time of the bus report
  std::vector<Bus> buses;  // by case number - 1
  std::vector<Branch> branches;
  std::vector<Generator> generators;
  std::vector<Load> loads;
  std::vector<DcLine> dclines;
  std::vector<Area> areas;
  std::vector<std::string> problems;  // what could not be read, one line each

  const Bus* bus(int number) const;
  std::string bus_name(int number) const;
  // The number a user knows a bus by: the source case's number when the
  // map file gives one, else the case number.
  int shown_number(int number) const;
};

// The names of the records of a bus file, in their order: what a caller
// that has read the bus file already hands to the reading of the results.
struct BusNames {
  std::string text;                 // the names one after the other, as read
  std::vector<std::uint32_t> ends;  // where each name ends in text
  std::size_t size() const { return ends.size(); }
  std::string_view operator[](std::size_t k) const {
    const std::uint32_t from = k == 0 ? 0 : ends[k - 1];
    return std::string_view(text).substr(from, ends[k] - from);
  }
  void add(std::string_view name) {
    text += name;
    ends.push_back(static_cast<std::uint32_t>(text.size()));
  }
};

// What the reading may leave out for a caller that shows the result
// summary alone.
struct SummaryOnly {
  // The names of the bus file's records, when the caller has read that file
  // already (the same way: the case files' free-form reading up to the end
  // or the first unreadable record): the file is then not read again, and
  // the bus table holds the names alone; base voltages, areas and limits
  // stay zero.  Null: the bus file is read.
  const BusNames* bus_names = nullptr;
  // Above 0: only that many of the most loaded branches are kept (those that
  // by_loading would give first), in the order of the reports.
  std::size_t branches = 0;
};

// Reads the case files and the report files of CASE_STEM.  Returns false,
// with the reason in problems, when the case or its bus report is missing.
bool read_file_results(const std::string& stem, CaseResults& r, const SummaryOnly& only = {});

// Reads the solved state from the tables of the database file db; name is
// the case's name for the summary.
bool read_db_results(const std::string& db, const std::string& name, CaseResults& r);

}  // namespace lfres

// lfreport: the results of a calculation in readable form, read back from a
// case's files: the summary on standard output, tidy CSV tables, and one
// HTML page with plots and sortable tables.
#include <cstdio>
#include <string>
#include <vector>

#include "cmdline.hpp"
#include "html.hpp"
#include "results.hpp"
#include "runlog.hpp"
#include "summary.hpp"
#include "tables.hpp"

namespace {

constexpr int kExitFailed = 1;

constexpr const char* kUsage =
    "usage: lfreport CASE_STEM [--csv DIR] [--html FILE]\n"
    "\n"
    "Reads the case files CASE_STEM.L0, .L1, ... and the report files that a\n"
    "calculation left beside them (CASE_STEM.LP1, ...; CASE_STEM.LOG, the run\n"
    "log that lfrun keeps, for the iterations) and prints the result summary.\n"
    "CASE_STEM.MAP, written by mp2lf, gives the buses' numbers in the source\n"
    "case (column source_bus).\n"
    "\n"
    "  --csv DIR    writes buses.csv, branches.csv, transformers.csv,\n"
    "               generators.csv, loads.csv, dc_lines.csv and areas.csv into DIR:\n"
    "               a header row, one row per element, numbers in full, bus names\n"
    "  --html FILE  writes one self-contained page: the summary, plots of the bus\n"
    "               voltages and angles, the branch loading and the convergence,\n"
    "               and the tables, sortable by a click on a column heading\n";

}  // namespace

int main(int argc, char** argv) {
  std::string csv, html;
  const auto keep = [](std::string& to) {
    return [&to](const char* value) {
      to = value;
      return std::string();
    };
  };
  const lfcmd::Command command{{"lfreport", kUsage},
                               {{"--csv", "a path", keep(csv)}, {"--html", "a path", keep(html)}},
                               1,
                               "only one case stem, please"};
  std::vector<std::string> plain;
  if (int status = lfcmd::parse(command, argc, argv, plain); status >= 0) return status;
  if (plain.empty()) return lfcmd::problem(command.program, "no case stem given");
  const std::string& stem = plain[0];

  lfres::CaseResults r;
  if (!lfres::read_file_results(stem, r)) {
    for (const auto& p : r.problems) std::fprintf(stderr, "lfreport: %s\n", p.c_str());
    return kExitFailed;
  }
  const lfres::RunLog log = lfres::parse_run_log(lfres::read_lines(stem + ".LOG"));
  const auto summary = lfres::summary_lines(r, log, r.converged, log.seconds);
  const auto tables = result_tables(r);
  if (csv.empty() && html.empty()) {
    for (const auto& line : summary) std::puts(line.c_str());
    return 0;
  }
  if (!csv.empty() && !write_csv(tables, csv)) return kExitFailed;
  if (!html.empty() && !write_html(r, log, summary, tables, html)) return kExitFailed;
  return 0;
}

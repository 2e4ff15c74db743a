// lfreport: the results of a calculation in readable form, read back from a
// case's files: the summary on standard output, tidy CSV tables, and one
// HTML page with plots and sortable tables.
#include <cstdio>
#include <string>

#include "html.hpp"
#include "results.hpp"
#include "runlog.hpp"
#include "summary.hpp"
#include "tables.hpp"

namespace {

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

int usage(const char* problem) {
  if (problem) std::fprintf(stderr, "lfreport: %s\n", problem);
  std::fputs(
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
      "               and the tables, sortable by a click on a column heading\n",
      problem ? stderr : stdout);
  return problem ? kExitUsage : 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::string stem, csv, html;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--help" || a == "-h") return usage(nullptr);
    if (a == "--csv" || a == "--html") {
      if (i + 1 >= argc) return usage((a + " needs a path").c_str());
      (a == "--csv" ? csv : html) = argv[++i];
    } else if (a.size() > 1 && a[0] == '-') {
      return usage(("unknown option " + a).c_str());
    } else if (stem.empty()) {
      stem = a;
    } else {
      return usage("only one case stem, please");
    }
  }
  if (stem.empty()) return usage("no case stem given");

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

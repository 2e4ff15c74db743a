#include "calclog.hpp"

#include <chrono>
#include <cstdio>
#include <fstream>

#include "results.hpp"
#include "summary.hpp"

namespace {

std::ofstream run_log;
std::chrono::steady_clock::time_point started;

}  // namespace

void start_calculation(const std::string& case_name) {
  run_log.close();
  run_log.open(case_name + ".LOG", std::ios::trunc);
  started = std::chrono::steady_clock::now();
}

void keep_line(const char* line) {
  if (run_log.is_open()) run_log << line << '\n';
}

void finish_calculation(const std::string& case_name, const std::string& db, bool converged,
                        bool print_summary) {
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  lfres::CaseResults results;
  if (db.empty()) {
    lfres::read_file_results(case_name, results);
  } else {
    lfres::read_db_results(db, case_name, results);
  }
  run_log.flush();
  const lfres::RunLog log = lfres::parse_run_log(lfres::read_lines(case_name + ".LOG"));
  for (const auto& line : lfres::summary_lines(results, log, converged, seconds)) {
    if (line.find(lfres::kTimeLabel) != std::string::npos) run_log << line << '\n';
    if (print_summary) std::puts(line.c_str());
  }
  run_log.close();
  std::fflush(stdout);
}

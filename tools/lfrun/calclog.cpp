#include "calclog.hpp"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>

#include "results.hpp"
#include "summary.hpp"

namespace {

std::ofstream run_log;
std::chrono::steady_clock::time_point started;
std::FILE* captured = nullptr;  // where standard output goes during a capture
int saved_stdout = -1;          // standard output itself meanwhile

void start_capture() {
  std::fflush(stdout);
  captured = std::tmpfile();
  saved_stdout = captured ? dup(STDOUT_FILENO) : -1;
  if (saved_stdout < 0 || dup2(fileno(captured), STDOUT_FILENO) < 0) {
    if (captured) std::fclose(captured);
    captured = nullptr;
  }
}

// Puts standard output back and passes on what was printed meanwhile, to
// standard output and to the run log.
void end_capture() {
  if (!captured) return;
  std::fflush(stdout);
  dup2(saved_stdout, STDOUT_FILENO);
  close(saved_stdout);
  std::rewind(captured);
  char buf[4096];
  while (std::fgets(buf, sizeof buf, captured)) {
    std::fputs(buf, stdout);
    run_log << buf;
  }
  std::fclose(captured);
  captured = nullptr;
}

// Prints the summary of the results that the calculation wrote (read back
// from the report files or the database) and keeps its time line in the
// run log.
void print_results(const std::string& case_name, const std::string& db, bool converged,
                   double seconds, const lfres::BusNames* bus_names) {
  lfres::CaseResults results;
  if (db.empty()) {
    lfres::read_file_results(case_name, results, {bus_names, lfres::kBranchesShown});
  } else {
    lfres::read_db_results(db, case_name, results);
  }
  run_log.flush();
  const lfres::RunLog log = lfres::parse_run_log(lfres::read_lines(case_name + ".LOG"));
  for (const auto& line : lfres::summary_lines(results, log, converged, seconds)) {
    if (line.find(lfres::kTimeLabel) != std::string::npos) run_log << line << '\n';
    std::puts(line.c_str());
  }
}

}  // namespace

void start_calculation(const std::string& case_name, bool nonlinear) {
  run_log.close();
  // The old log is removed rather than cut to nothing: a file system that
  // sees a file truncated and written again writes it out at once, which
  // costs far more than making a new file.
  const std::string log = case_name + ".LOG";
  std::remove(log.c_str());
  run_log.open(log, std::ios::trunc);
  if (nonlinear) start_capture();
  started = std::chrono::steady_clock::now();
}

void keep_line(const char* line) {
  if (run_log.is_open() && !captured) run_log << line << '\n';
}

void finish_calculation(const std::string& case_name, const std::string& db, bool converged,
                        bool print_summary, const lfres::BusNames* bus_names) {
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  end_capture();
  if (print_summary) {
    print_results(case_name, db, converged, seconds, bus_names);
  } else {  // the run log keeps the time line all the same
    run_log << lfres::time_line(seconds) << '\n';
  }
  run_log.close();
  std::fflush(stdout);
}

// Times whole load-flow calculations stage by stage.
//
//   lfbench [--repeat N] [--timing FILE] [--variant NAME] [--lfrun PATH]
//           [--json FILE] DIR...
//
// Each DIR holds one converted case, named as the folder; the case's own
// method is the one timed.  The calculation runs N times through its stages in the
// driver's order (read, preparation, ordering, admittance, iteration,
// reports), each stage timed on its own, and once more N times as one whole
// LFCal.  The table gives the median of each, the iterations (rows of the
// method's tables) and, with --timing, the ratio of the reference time of the
// same case and variant to the whole calculation.  With --lfrun the host
// program also runs N times on each case as a process of its own, and the
// median of its processor time, start-up included, and its peak resident
// memory are given, and a first row gives the same for `lfrun --help`, the
// start-up floor.  With --json the rows also go to FILE as a JSON array.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "casefile/readers.hpp"
#include "control/dcline.hpp"
#include "driver/newlf.hpp"
#include "io/channels.hpp"
#include "io/errlist.hpp"
#include "lfengine.h"
#include "methods/newton.hpp"
#include "methods/pqdecp.hpp"
#include "netprep/netprep.hpp"
#include "report/reports.hpp"
#include "sparse/ordering.hpp"
#include "sparse/ymatrix.hpp"
#include "store/store.hpp"

namespace {

// Times are the processor time of the calculation's thread, user and system,
// so that other work on a shared machine does not count.
struct Clock {
  using time_point = double;
  static double now() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
  }
};

double seconds_since(Clock::time_point t0) {
  return Clock::now() - t0;
}

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  const std::size_t n = v.size();
  return n % 2 ? v[n / 2] : 0.5 * (v[n / 2 - 1] + v[n / 2]);
}

constexpr int kStages = 6;
const char* const kStageNames[kStages] = {"read", "prep", "order", "admit", "iter", "report"};

// Counts the rows of the iteration table: lines that begin with the row number.
int rows_counted = 0;
int count_rows(const char* line) {
  if (std::strncmp(line, "    ", 4) == 0 && std::strlen(line) > 7 && line[6] >= '0' &&
      line[6] <= '9')
    ++rows_counted;
  return 0;
}

void run_method(int method, int32_t& convergent) {
  switch (method) {
    case 1:
      lf::newton(convergent);
      break;
    case 2:
      lf::optimu(convergent);
      break;
    case 3:
      lf::inewton(convergent);
      break;
    case 4:
      lf::newtonp(convergent);
      break;
    default:
      lf::pqdecp(convergent);
      break;
  }
}

// One calculation through its stages; t receives the time of each.
void staged(double t[kStages], int32_t& convergent) {
  using namespace lf;
  convergent = 0;
  UPCLF = 0;
  errlist_open();
  auto t0 = Clock::now();
  read_names();
  rdlf(casename, datalibname);
  t[0] = seconds_since(t0);
  t0 = Clock::now();
  if (RMXMVALID != 0) dwrmxm();
  dwsubij();
  NU.nud = 0;
  NU.udout = 0;
  t[1] = seconds_since(t0);
  t0 = Clock::now();
  NEW.fill(0);
  fomy11();
  t[2] = seconds_since(t0);
  t0 = Clock::now();
  fomy12();
  dcval();
  t[3] = seconds_since(t0);
  t0 = Clock::now();
  if (LFINF.method > 4) LFINF.method = 0;
  run_method(LFINF.method, convergent);
  t[4] = seconds_since(t0);
  t0 = Clock::now();
  wtlf(convergent, casename);
  serror();
  errlist_close();
  t[5] = seconds_since(t0);
}

// One run of the host program as a process of its own: its processor time,
// user and system, in seconds, and its peak resident memory in kB.
struct ProcessUse {
  double seconds = 0;
  long max_rss_kb = 0;
};

// Runs the host program with one argument (the case LF in the current
// folder, or --help) through lfspawn, which stands beside lfbench.
std::string spawner;
ProcessUse process_use(const std::string& lfrun, const char* arg) {
  const std::string cmd = "'" + spawner + "' '" + lfrun + "' " + arg;
  std::FILE* p = popen(cmd.c_str(), "r");
  ProcessUse u;
  if (!p) return u;
  if (std::fscanf(p, "%lf %ld", &u.seconds, &u.max_rss_kb) != 2) u = {};
  pclose(p);
  return u;
}

// Medians of repeated process runs.
ProcessUse process_median(const std::string& lfrun, const char* arg, int repeat) {
  std::vector<double> t, rss;
  for (int r = 0; r < repeat; ++r) {
    const ProcessUse u = process_use(lfrun, arg);
    t.push_back(u.seconds);
    rss.push_back(static_cast<double>(u.max_rss_kb));
  }
  return {median(t), static_cast<long>(median(rss))};
}

// The rows of the JSON output.
struct JsonRow {
  std::string name, variant;
  int method = 0, iterations = 0;
  bool converged = false;
  double stage[kStages] = {};
  double staged = 0, lfcal = 0, process = -1, reference = -1;
  long max_rss_kb = -1;
};

void write_json(const std::string& file, const std::vector<JsonRow>& rows) {
  std::FILE* f = std::fopen(file.c_str(), "w");
  if (!f) {
    std::fprintf(stderr, "lfbench: cannot write %s\n", file.c_str());
    return;
  }
  std::fprintf(f, "[\n");
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const JsonRow& r = rows[k];
    std::fprintf(f, "  {\"case\": \"%s\", \"variant\": \"%s\", \"method\": %d, ", r.name.c_str(),
                 r.variant.c_str(), r.method);
    std::fprintf(f, "\"iterations\": %d, \"converged\": %s, \"ms\": {", r.iterations,
                 r.converged ? "true" : "false");
    for (int s = 0; s < kStages; ++s)
      std::fprintf(f, "\"%s\": %.4f, ", kStageNames[s], 1e3 * r.stage[s]);
    std::fprintf(f, "\"staged\": %.4f, \"LFCal\": %.4f", 1e3 * r.staged, 1e3 * r.lfcal);
    if (r.process >= 0) std::fprintf(f, ", \"process\": %.4f", 1e3 * r.process);
    std::fprintf(f, "}");
    if (r.max_rss_kb >= 0) std::fprintf(f, ", \"max_rss_kb\": %ld", r.max_rss_kb);
    if (r.reference > 0)
      std::fprintf(f, ", \"reference_ms\": %.4f, \"ratio\": %.2f", 1e3 * r.reference,
                   r.lfcal > 0 ? r.reference / r.lfcal : 0.0);
    std::fprintf(f, "}%s\n", k + 1 < rows.size() ? "," : "");
  }
  std::fprintf(f, "]\n");
  std::fclose(f);
}

// The reference times: case,variant -> runpf_legacy_median_s.
std::map<std::string, double> read_timing(const std::string& file) {
  std::map<std::string, double> ref;
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::vector<std::string> f;
    std::stringstream ss(line);
    for (std::string x; std::getline(ss, x, ',');) f.push_back(x);
    if (f.size() >= 4) ref[f[0] + "," + f[1]] = std::atof(f[3].c_str());
  }
  return ref;
}

int usage() {
  std::fprintf(stderr,
               "usage: lfbench [--repeat N] [--timing FILE] [--variant NAME] [--lfrun PATH] "
               "[--json FILE] DIR...\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  int repeat = 5;
  std::string timing, variant = "base", lfrun, json;
  std::vector<std::string> dirs;
  for (int a = 1; a < argc; ++a) {
    const std::string arg = argv[a];
    if (arg == "--repeat" && a + 1 < argc) {
      repeat = std::max(1, std::atoi(argv[++a]));
    } else if (arg == "--timing" && a + 1 < argc) {
      timing = argv[++a];
    } else if (arg == "--lfrun" && a + 1 < argc) {
      char path[4096];
      lfrun = realpath(argv[++a], path) ? path : argv[a];
    } else if (arg == "--json" && a + 1 < argc) {
      json = argv[++a];
    } else if (arg == "--variant" && a + 1 < argc) {
      variant = argv[++a];
    } else if (arg == "--help" || arg == "-h") {
      return usage();
    } else if (!arg.empty() && arg[0] == '-') {
      return usage();
    } else {
      dirs.push_back(arg);
    }
  }
  if (dirs.empty()) return usage();
  {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    spawner = std::string(self, n > 0 ? static_cast<std::size_t>(n) : 0);
    spawner = spawner.substr(0, spawner.find_last_of('/') + 1) + "lfspawn";
  }
  const auto ref = timing.empty() ? std::map<std::string, double>{} : read_timing(timing);

  // The engine as a host starts it, without window, link or printing; the
  // callback only counts the rows of the iteration tables.
  int flags = 0, session = 0, mode = 0;
  char title[] = "lfbench";
  intptr_t callback = reinterpret_cast<intptr_t>(&count_rows);
  LFInit(&flags, title, &session, &callback, &mode);
  lf::prnon = 1;

  char home[4096];
  if (!getcwd(home, sizeof home)) return 1;
  std::printf("%-14s %-8s %2s %5s %3s", "case", "variant", "m", "iter", "ok");
  for (const char* s : kStageNames) std::printf(" %8s", s);
  std::printf(" %9s %9s %9s %7s %9s %7s\n", "staged", "LFCal", "process", "rss", "reference",
              "ratio");
  std::printf("%-14s %-8s %2s %5s %3s", "", "", "", "", "");
  for (int s = 0; s < kStages; ++s) std::printf(" %8s", "ms");
  std::printf(" %9s %9s %9s %7s %9s %7s\n", "ms", "ms", "ms", "MB", "ms", "x");
  std::vector<JsonRow> rows;
  // The start-up floor: the host that only explains its options.
  if (!lfrun.empty()) {
    const ProcessUse u = process_median(lfrun, "--help", repeat);
    std::printf("%-14s %-8s %2s %5s %3s", "lfrun --help", "-", "-", "-", "-");
    for (int s = 0; s < kStages; ++s) std::printf(" %8s", "-");
    std::printf(" %9s %9s %9.3f %7.1f %9s %7s\n", "-", "-", 1e3 * u.seconds,
                static_cast<double>(u.max_rss_kb) / 1024, "-", "-");
    JsonRow r;
    r.name = "lfrun --help";
    r.process = u.seconds;
    r.max_rss_kb = u.max_rss_kb;
    rows.push_back(r);
  }
  for (const std::string& dir : dirs) {
    if (chdir(dir.c_str()) != 0) {
      std::fprintf(stderr, "lfbench: cannot enter %s\n", dir.c_str());
      continue;
    }
    JsonRow row;
    {
      std::vector<double> st[kStages], whole, staged_total;
      int32_t convergent = 0;
      for (int r = 0; r < repeat; ++r) {
        double t[kStages];
        rows_counted = 0;
        staged(t, convergent);
        row.iterations = rows_counted;
        double sum = 0;
        for (int s = 0; s < kStages; ++s) st[s].push_back(t[s]), sum += t[s];
        staged_total.push_back(sum);
      }
      row.method = lf::LFINF.method;
      row.converged = convergent != 0;
      std::string name = dir;
      while (name.size() > 1 && name.back() == '/') name.pop_back();
      row.name = name.substr(name.find_last_of('/') + 1);
      row.variant = variant;
      // The whole calculation as the host runs it.
      for (int r = 0; r < repeat; ++r) {
        const auto t0 = Clock::now();
        int calflags = 4;
        LFCal(&calflags);
        whole.push_back(seconds_since(t0));
      }
      for (int s = 0; s < kStages; ++s) row.stage[s] = median(st[s]);
      row.staged = median(staged_total);
      row.lfcal = median(whole);
      if (!lfrun.empty()) {
        const ProcessUse u = process_median(lfrun, "LF", repeat);
        row.process = u.seconds;
        row.max_rss_kb = u.max_rss_kb;
      }
      const auto it = ref.find(row.name + "," + variant);
      if (it != ref.end()) row.reference = it->second;
    }
    std::printf("%-14s %-8s %2d %5d %3s", row.name.c_str(), variant.c_str(), row.method,
                row.iterations, row.converged ? "yes" : "no");
    for (int s = 0; s < kStages; ++s) std::printf(" %8.3f", 1e3 * row.stage[s]);
    std::printf(" %9.3f %9.3f", 1e3 * row.staged, 1e3 * row.lfcal);
    if (row.process >= 0)
      std::printf(" %9.3f %7.1f", 1e3 * row.process, static_cast<double>(row.max_rss_kb) / 1024);
    else
      std::printf(" %9s %7s", "-", "-");
    if (row.reference > 0)
      std::printf(" %9.3f %7.1f\n", 1e3 * row.reference, row.reference / row.lfcal);
    else
      std::printf(" %9s %7s\n", "-", "-");
    std::fflush(stdout);
    rows.push_back(row);
    if (chdir(home) != 0) return 1;
  }
  if (!json.empty()) write_json(json, rows);
  LFFinilize();
  return 0;
}

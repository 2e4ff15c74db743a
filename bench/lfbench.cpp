// Times whole load-flow calculations stage by stage.
//
//   lfbench [--repeat N] [--timing FILE] [--variant NAME] [--lfrun PATH] DIR...
//
// Each DIR holds one converted case, named as the folder; the case's own
// method is the one timed.  The calculation runs N times through its stages in the
// driver's order (read, preparation, ordering, admittance, iteration,
// reports), each stage timed on its own, and once more N times as one whole
// LFCal.  The table gives the median of each, the iterations (rows of the
// method's tables) and, with --timing, the ratio of the reference time of the
// same case and variant to the whole calculation.  With --lfrun the host
// program also runs N times on each case as a process of its own, and the
// median of its processor time, start-up included, is given.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
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
int rows = 0;
int count_rows(const char* line) {
  if (std::strncmp(line, "    ", 4) == 0 && std::strlen(line) > 7 && line[6] >= '0' &&
      line[6] <= '9')
    ++rows;
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

// Runs the host program on the case LF in the current folder and gives the
// processor time of the process, user and system, in seconds.
double process_time(const std::string& lfrun) {
  std::fflush(stdout);
  const pid_t pid = fork();
  if (pid == 0) {
    if (!freopen("/dev/null", "w", stdout) || !freopen("/dev/null", "w", stderr)) _exit(127);
    execl(lfrun.c_str(), lfrun.c_str(), "LF", static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  rusage use{};
  if (pid < 0 || wait4(pid, &status, 0, &use) < 0) return 0;
  auto sec = [](const timeval& t) { return static_cast<double>(t.tv_sec) + 1e-6 * t.tv_usec; };
  return sec(use.ru_utime) + sec(use.ru_stime);
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
               "DIR...\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  int repeat = 5;
  std::string timing, variant = "base", lfrun;
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
  std::printf("%-12s %-8s %2s %5s %3s", "case", "variant", "m", "iter", "ok");
  for (const char* s : kStageNames) std::printf(" %8s", s);
  std::printf(" %9s %9s %9s %9s %7s\n", "staged", "LFCal", "process", "reference", "ratio");
  std::printf("%-12s %-8s %2s %5s %3s", "", "", "", "", "");
  for (int s = 0; s < kStages; ++s) std::printf(" %8s", "ms");
  std::printf(" %9s %9s %9s %9s %7s\n", "ms", "ms", "ms", "ms", "x");
  for (const std::string& dir : dirs) {
    if (chdir(dir.c_str()) != 0) {
      std::fprintf(stderr, "lfbench: cannot enter %s\n", dir.c_str());
      continue;
    }
    {
      std::vector<double> st[kStages], whole, staged_total;
      int32_t convergent = 0;
      int iterations = 0;
      for (int r = 0; r < repeat; ++r) {
        double t[kStages];
        rows = 0;
        staged(t, convergent);
        iterations = rows;
        double sum = 0;
        for (int s = 0; s < kStages; ++s) st[s].push_back(t[s]), sum += t[s];
        staged_total.push_back(sum);
      }
      const int method = lf::LFINF.method;
      std::string name = dir;
      while (name.size() > 1 && name.back() == '/') name.pop_back();
      name = name.substr(name.find_last_of('/') + 1);
      // The whole calculation as the host runs it.
      for (int r = 0; r < repeat; ++r) {
        const auto t0 = Clock::now();
        int calflags = 4;
        LFCal(&calflags);
        whole.push_back(seconds_since(t0));
      }
      std::printf("%-12s %-8s %2d %5d %3s", name.c_str(), variant.c_str(), method, iterations,
                  convergent ? "yes" : "no");
      for (int s = 0; s < kStages; ++s) std::printf(" %8.3f", 1e3 * median(st[s]));
      const double total = median(whole);
      std::printf(" %9.3f %9.3f", 1e3 * median(staged_total), 1e3 * total);
      if (!lfrun.empty()) {
        std::vector<double> proc;
        for (int r = 0; r < repeat; ++r) proc.push_back(process_time(lfrun));
        std::printf(" %9.3f", 1e3 * median(proc));
      } else {
        std::printf(" %9s", "-");
      }
      const auto it = ref.find(name + "," + variant);
      if (it != ref.end())
        std::printf(" %9.3f %7.1f\n", 1e3 * it->second, it->second / total);
      else
        std::printf(" %9s %7s\n", "-", "-");
      std::fflush(stdout);
    }
    if (chdir(home) != 0) return 1;
  }
  LFFinilize();
  return 0;
}

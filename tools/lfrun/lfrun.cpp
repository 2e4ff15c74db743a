// lfrun: runs load-flow calculations on a case and prints the engine's
// lines.  See kUsage for the options.
#include <malloc.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "calclog.hpp"
#include "cli.h"
#include "cmdline.hpp"
#include "dbsession.hpp"
#include "engine.hpp"
#include "folder.hpp"
#include "precheck.hpp"

namespace {

namespace fs = std::filesystem;

constexpr int kExitConverged = 0;
constexpr int kExitNotConverged = 1;
constexpr std::size_t kCaseNameWidth = 60;
constexpr int kMapAlone = 32 << 20;   // bytes from which a memory block gets a mapping of its own
constexpr int kKeepFree = 256 << 20;  // freed memory kept in the process, bytes

constexpr const char* kUsage =
    "usage: lfrun [options] CASE_STEM\n"
    "\n"
    "Runs load-flow calculations on the case whose files are CASE_STEM.L0,\n"
    "CASE_STEM.L1 and so on, and prints the engine's lines.  lfrun works in the\n"
    "folder of CASE_STEM: the engine writes its report files (CASE_STEM.LP1, ...)\n"
    "and its error list LFERR.LIS there, and itself keeps the engine's lines of\n"
    "the last calculation in CASE_STEM.LOG.  After each calculation it prints a\n"
    "summary of the results, read back from the report files (or the database).\n"
    "It locks that folder for the whole run (the file .lfrun.lock there): a\n"
    "second lfrun in the same folder waits until the first has ended, so that\n"
    "the two never mix their cases.\n"
    "\n"
    "The engine takes the case name from NAME.INC in that folder (second line),\n"
    "or uses the name LF without one.  lfrun never changes a NAME.INC of yours:\n"
    "  - no NAME.INC and a stem named LF: nothing is written;\n"
    "  - no NAME.INC and another name: lfrun writes one for the run and removes\n"
    "    it afterwards, also when the run is interrupted or terminated; one that\n"
    "    a run killed outright left behind is replaced;\n"
    "  - a NAME.INC naming this case: it is used as it stands;\n"
    "  - a NAME.INC naming another case: lfrun refuses, unless --name-inc is\n"
    "    given, which replaces that NAME.INC with one naming this case.\n"
    "\n"
    "Options:\n"
    "  --window      bit value 1: show the progress window (Escape stops a\n"
    "                Newton-type iteration; close the window to end lfrun); without\n"
    "                a display it is drawn off-screen and closes by itself\n"
    "  --link        bit value 2: send every line to the status server on\n"
    "                127.0.0.1 port 9876 (see lfstatus); without a server the\n"
    "                engine says \"Fail to initialize Socket!\" and goes on\n"
    "  --no-print    clear bit value 4: the engine prints nothing at all\n"
    "                (bit value 4 is set by default: lines go to standard output)\n"
    "  --mode N      N = 2 includes the magnetising branches of transformers;\n"
    "                any other value leaves them out (default 0)\n"
    "  --repeat N    runs N calculations one after another (default 1)\n"
    "  --db FILE     database mode: reads the case from the tables of the database\n"
    "                file FILE (made by lfdb import) and writes the results back\n"
    "                into it; no case or report files are used, CASE_STEM still\n"
    "                names the folder of the run\n"
    "  --name-inc    replaces a NAME.INC that names another case (see above)\n"
    "  --quiet       leaves out the result summary that follows each calculation\n"
    "                (convergence, method, totals, extreme voltages, most loaded\n"
    "                branches, generators at a reactive limit, time)\n"
    "  --nonlinear   solves with the nonlinear method (constant Jacobian with the\n"
    "                exact second-order term) in place of the case's method; its\n"
    "                iteration table goes to standard output\n"
    "  --no-check    skips the case check (see below)\n"
    "  --check-only  checks the case and runs no calculation: exit status 0\n"
    "                without warnings, 1 with\n"
    "  --help        shows this text\n"
    "\n"
    "Before the calculations lfrun checks the case files strictly and prints a\n"
    "warning on standard error (\"lfrun: check: ...\") for each thing that the\n"
    "engine would pass over in silence: a field it cannot read (and how many\n"
    "records it then uses), counts of CASE_STEM.L0 that differ from the records,\n"
    "bus numbers outside the case, no slack bus, islands without one, buses\n"
    "without any branch, branches without impedance, limits the wrong way\n"
    "round, load types without a parameter set, byte-order marks and other\n"
    "encodings.  The check changes nothing; in database mode there is none.\n"
    "\n"
    "Exit status: 0 when every calculation converged, 1 when one did not (or\n"
    "was interrupted, or its database could not be read or written), 2 on bad\n"
    "usage.  A missing mandatory case file or a bus number outside the case\n"
    "ends the engine with a stop text and status 1.\n";

constexpr lfcmd::Program kProgram{"lfrun", kUsage, true};

int bad_usage(const std::string& why) {
  return lfcmd::problem(kProgram, why);
}

bool to_int(const char* text, int& value) {
  char* end = nullptr;
  long v = std::strtol(text, &end, 10);
  if (end == text || *end != '\0' || v < INT32_MIN || v > INT32_MAX) return false;
  value = static_cast<int>(v);
  return true;
}

int print_line(const char* line) {
  std::puts(line);
  keep_line(line);
  return 0;
}

struct Options {
  int flags = LF_FLAG_PRINT;
  int mode = 0;
  int repeat = 1;
  bool replace_name_inc = false;
  bool nonlinear = false;
  bool quiet = false;  // no result summary after a calculation
  bool check = true;   // check the case files before the calculations
  bool check_only = false;
  std::string db, stem;
};

// Parses the arguments; returns -1 to go on, else the exit status.
int parse(int argc, char** argv, Options& o) {
  const auto flag = [](auto set) {
    return [set](const char*) {
      set();
      return std::string();
    };
  };
  const auto count = [](int& to, int least, const char* problem) {
    return [&to, least, problem](const char* text) {
      return to_int(text, to) && to >= least ? std::string() : std::string(problem);
    };
  };
  const lfcmd::Command command{
      kProgram,
      {{"--window", nullptr, flag([&] { o.flags |= LF_FLAG_WINDOW; })},
       {"--link", nullptr, flag([&] { o.flags |= LF_FLAG_LINK; })},
       {"--no-print", nullptr, flag([&] { o.flags &= ~LF_FLAG_PRINT; })},
       {"--quiet", nullptr, flag([&] { o.quiet = true; })},
       {"--no-check", nullptr, flag([&] { o.check = false; })},
       {"--check-only", nullptr, flag([&] { o.check_only = true; })},
       {"--nonlinear", nullptr, flag([&] { o.nonlinear = true; })},
       {"--name-inc", nullptr, flag([&] { o.replace_name_inc = true; })},
       {"--mode", "an integer", count(o.mode, INT32_MIN, "--mode needs an integer")},
       {"--repeat", "a count of 1 or more",
        count(o.repeat, 1, "--repeat needs a count of 1 or more")},
       {"--db", "a database file",
        [&](const char* file) {
          o.db = fs::absolute(file).string();
          return fs::exists(o.db) ? std::string() : "no database file " + o.db;
        }}},
      1,
      "only one case stem, please"};
  std::vector<std::string> plain;
  if (int status = lfcmd::parse(command, argc, argv, plain); status >= 0) return status;
  if (!plain.empty()) o.stem = plain[0];
  if (o.stem.empty()) return bad_usage("no case stem given");
  if (o.check_only && !o.db.empty())
    return bad_usage("--check-only checks case files, not a database");
  return -1;
}

// Goes to the case's folder, locks it and makes sure that the engine finds
// the case by its name; returns -1 to go on, else the exit status.
int enter_case(const Options& o) {
  fs::path stem(o.stem);
  std::string name = stem.filename().string();
  if (name.empty() || name.size() > kCaseNameWidth) {
    return bad_usage("the case name must have 1 to 60 characters: " + o.stem);
  }
  if (std::string why = enter_folder(stem.parent_path().string()); !why.empty())
    return bad_usage(why);
  if (std::string why = name_case(name, o.replace_name_inc); !why.empty()) return bad_usage(why);
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  // The stages of a run (case check, calculation, summary) take memory and
  // give it back one after the other: kept in the process rather than
  // returned to the system at once, the pages one stage wrote serve the
  // next, which would otherwise fault in fresh ones.
  mallopt(M_MMAP_THRESHOLD, kMapAlone);
  mallopt(M_TRIM_THRESHOLD, kKeepFree);
  Options o;
  if (int status = parse(argc, argv, o); status >= 0) return status;
  if (int status = enter_case(o); status >= 0) return status;
  // The bus names as the check read them: the summaries take them from
  // here rather than read the bus file again.
  lfres::BusNames buses;
  const bool checked = o.db.empty() && (o.check || o.check_only);
  if (checked) {
    const int warnings = precheck(fs::path(o.stem).filename().string(), o.check_only, buses);
    if (o.check_only) return warnings == 0 ? kExitConverged : kExitNotConverged;
  }

  Engine engine;
  if (std::string why; !load_engine(engine, why)) {
    std::fprintf(stderr, "lfrun: %s\n", why.c_str());
    return kExitNotConverged;
  }
  char title[80] = {};
  std::snprintf(title, sizeof title, "Load Flow: %s", fs::path(o.stem).filename().c_str());
  int flags = o.flags;
  int session = 0;
  if (!o.db.empty() && (session = open_database(o.db)) == 0) return kExitNotConverged;
  intptr_t callback = reinterpret_cast<intptr_t>(&print_line);
  int mode = o.mode;
  flags = engine.init(&flags, title, &session, &callback, &mode);
  bool all_converged = true;
  for (int run = 0; run < o.repeat; ++run) {
    int cal_flags = flags | (o.nonlinear ? LF_FLAG_NONLINEAR : 0);
    const std::string name = fs::path(o.stem).filename().string();
    start_calculation(name, o.nonlinear);
    const long writes = session > 0 ? lfcli_writes(session) : 0;
    const bool converged = engine.cal(&cal_flags) == 0;
    if (!converged) all_converged = false;
    // In database mode a calculation that wrote nothing has no results to
    // sum up: the tables hold those of an earlier one.
    const bool results = session <= 0 || lfcli_writes(session) > writes;
    finish_calculation(name, o.db, converged, !o.quiet && results, checked ? &buses : nullptr);
  }
  engine.finish();
  std::fflush(stdout);
  if (session > 0 && !close_database(session, o.db)) {
    std::fprintf(stderr, "lfrun: not solved; nothing written to %s\n", o.db.c_str());
    return kExitNotConverged;
  }
  std::fprintf(stderr, "lfrun: %s; %s in %s\n", all_converged ? "converged" : "not converged",
               session > 0 ? "results" : "reports",
               session > 0 ? o.db.c_str() : fs::current_path().c_str());
  return all_converged ? kExitConverged : kExitNotConverged;
}

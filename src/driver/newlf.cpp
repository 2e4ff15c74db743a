#include "driver/newlf.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "casefile/readers.hpp"
#include "control/dcline.hpp"
#include "control/models.hpp"
#include "io/channels.hpp"
#include "io/errlist.hpp"
#include "methods/newton.hpp"
#include "methods/pqdecp.hpp"
#include "netprep/netprep.hpp"
#include "report/area.hpp"
#include "report/reports.hpp"
#include "rtdb/rtdb.hpp"
#include "sparse/ordering.hpp"
#include "sparse/ymatrix.hpp"
#include "support/fmt.hpp"
#include "support/freeread.hpp"

namespace lf {

int32_t NLFAST = 0;
int32_t adjcount = 0;
int32_t adjflag = 0;

namespace {

constexpr int32_t kMaxAdjustments = 10;
// The highest row of NEW that an ordering has numbered in this process: the
// rows above it are still zero as they came, so that clearing NEW for the
// next case stops there instead of writing the whole table.
int32_t new_rows_numbered = 0;
// 0.01 held in single precision: hundredths of a second to seconds.
constexpr double kCentiseconds = 0.0099999997764825821;

// The time of day in hundredths of a second.
int32_t timer() {
  using namespace std::chrono;
  auto now = system_clock::now();
  std::time_t t = system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&t, &local);
  auto hundredths = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000 / 10;
  return ((local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec) * 100 +
         static_cast<int32_t>(hundredths);
}

// Runs the iteration method that LFINF.method selects.
void run_method(int32_t& convergent) {
  if (NLFAST != 0) {
    nlfast(convergent);
    return;
  }
  switch (LFINF.method) {
    case 1:  // Newton's method with the correction test
      newton(convergent);
      break;
    case 2:  // the optimum-factor method
      optimu(convergent);
      break;
    case 3:  // Newton's method on current equations
      inewton(convergent);
      break;
    case 4:  // Newton's method on power equations
      newtonp(convergent);
      break;
    default:  // 0 and every negative value: the P-Q decoupled method
      pqdecp(convergent);
      break;
  }
}

// The area interchange loop: the method runs again after each adjustment of
// the regulating generators, at most ten adjustments in all.
void iterate(int32_t& convergent) {
  for (;;) {
    run_method(convergent);
    if (LFINF.ctrl_area == 0) return;
    if (convergent == 0) {
      wstring("Load Flow Calculation Is Not Convergent");
      wstring("Area Interchange Will Not Be Readjusted");
      return;
    }
    if (++adjcount > kMaxAdjustments) {
      wstring("The Number Of Area Adjustment Hit Its Limit");
      wstring("Area Interchange Will Not Be Readjusted");
      return;
    }
    adjare(adjflag);
    if (adjflag != kAreasMoved) return;
  }
}

void print_elapsed(int32_t start) {
  auto seconds = static_cast<int32_t>((timer() - start) * kCentiseconds);
  int32_t minutes = 0;
  while (seconds >= 60) {
    seconds -= 60;
    ++minutes;
  }
  std::string line = " elapsed " + fmt_i(minutes, 3) + ":m" + fmt_i(seconds, 3) + ":s";
  line.resize(80, ' ');
  wstring(line);
}

// The closing lines of every calculation.
void finish(int32_t start) {
  print_elapsed(start);
  wstring("End of Program.  Please Close the Window....");
}

}  // namespace

void newlf(int32_t& convergent) {
  convergent = 0;
  const int32_t start = timer();
  UPCLF = 0;
  errlist_open();
  read_names();

  // The case, from the database or from the case files.  A case that the
  // database gave only in part is neither solved nor written back.
  if (RTDBLSCMN.rtdbmode != 0) {
    rdrtlf();
    if (!RTDBFAIL.text.empty()) {
      wstring("Case not read from the database: nothing solved, nothing written");
      wstring(" " + RTDBFAIL.text);
      serror();
      errlist_close();
      finish(start);
      return;
    }
  } else {
    rdlf(casename, datalibname);
  }

  // Network preparation.
  if (RMXMVALID != 0) dwrmxm();
  dwsubij();  // substations, merging, opened line ends and islands

  // User-defined models, when the case asks for them.  The flag of changed
  // branch data belongs to this calculation alone.
  NU.nud = 0;
  NU.udout = 0;
  CL23 = 0;
  if (LF93.ctrl_ud != 0) {
    rudlf(casename, udlibname);
    if (NU.nud != 0) {
      fmlfar();
      udopio();
    }
  }

  adjcount = 0;
  NEW.clear(static_cast<std::size_t>(new_rows_numbered));
  fomy11();  // the ordering
  new_rows_numbered = std::max(new_rows_numbered, NO.MAXBUS);
  fomy12();  // the admittance matrix
  dcval();   // the DC lines

  if (LFINF.method > 4) LFINF.method = 0;
  iterate(convergent);
  release_factors();

  // The results, converged or not, to the database or to the report files.
  if (RTDBLSCMN.rtdbmode != 0) {
    wtrtlf(convergent);
  } else {
    wtlf(convergent, casename);
  }

  // The model output; the count is tested anew before each step.
  MARKL23 = 0;
  if (NU.nud != 0) udclio();
  if (NU.nud != 0) udwinf();
  if (NU.nud != 0) wtmud();
  if (CL23 != 0) {
    wrl23(casename);
    MARKL23 = 1;
  }
  serror();
  errlist_close();
  forwinlf(casename, convergent);

  finish(start);
}

}  // namespace lf

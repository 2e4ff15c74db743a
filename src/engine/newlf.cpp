#include "engine/newlf.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "casefile/readers.hpp"
#include "dcline/dcline.hpp"
#include "engine/channels.hpp"
#include "engine/errlist.hpp"
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

CaseName casename;
CaseName datalibname;
CaseName udlibname;
int32_t NLFAST = 0;
int32_t adjcount = 0;
int32_t adjflag = 0;

namespace {

constexpr int32_t kMaxAdjustments = 10;
// 0.01 held in single precision: hundredths of a second to seconds.
constexpr double kCentiseconds = 0.0099999997764825821;
// A magnetising impedance below this in both parts adds no branch.
constexpr double kNegligibleImpedance = 1e-11;

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
    if (adjflag != 1) return;
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

}  // namespace

void read_names() {
  casename = "LF";
  datalibname = "DATALIB";
  udlibname = "UDLIB";
  FreeReader in;
  if (!in.open("NAME.INC")) return;
  // Line 1 holds a number that nothing uses; lines 3 and 5 to 8 are not
  // looked at.  A name line missing from a short file keeps its default.
  std::string line;
  for (int n = 1; n <= 9 && in.line(line); ++n) {
    std::string_view first60 = std::string_view(line).substr(0, 60);
    if (n == 2) casename = first60;
    if (n == 4) datalibname = first60;
    if (n == 9) udlibname = first60;
  }
}

void newlf(int32_t& convergent) {
  convergent = 0;
  const int32_t start = timer();
  UPCLF = 0;
  errlist_open();
  read_names();

  // The case, from the database or from the case files.
  if (RTDBLSCMN.rtdbmode != 0) {
    rdrtlf();
  } else {
    rdlf(casename, datalibname);
  }

  // Network preparation.
  if (RMXMVALID != 0) dwrmxm();
  dwsubij();  // substations, merging, opened line ends and islands

  // User-defined models: their reader rudlf(casename, udlibname), then
  // fmlfar() and udopio() when it found any.  Without them the count stays 0.
  NU.nud = 0;
  NU.udout = 0;

  adjcount = 0;
  NEW.fill(0);
  fomy11();  // the ordering
  fomy12();  // the admittance matrix
  dcval();   // the DC lines

  if (LFINF.method > 4) LFINF.method = 0;
  iterate(convergent);

  // The results, converged or not, to the database or to the report files.
  if (RTDBLSCMN.rtdbmode != 0) {
    wtrtlf(convergent);
  } else {
    wtlf(convergent, casename);
  }

  // The model output (udclio, udwinf, wtmud while NU.nud stays nonzero)
  // belongs here.
  MARKL23 = 0;
  if (CL23 != 0) {
    wrl23(casename);
    MARKL23 = 1;
  }
  serror();
  errlist_close();
  // The model output's closing step: forwinlf(casename, convergent)

  print_elapsed(start);
  wstring("End of Program.  Please Close the Window....");
}

void dwrmxm() {
  const int32_t n = LFINF.nacline + LFINF.ntrans;
  NO.nbranch = n;
  if (LFINF.ntrans == 0) return;
  int32_t m = n;
  for (int32_t t = 1; t <= LFINF.ntrans; ++t) {
    const double rm = L3PP.Rm[t], xm = L3PP.Xm[t];
    if (std::fabs(rm) < kNegligibleImpedance && std::fabs(xm) < kNegligibleImpedance) continue;
    ++m;
    if (static_cast<std::size_t>(m) > IJB.I.size()) grow_branches(static_cast<std::size_t>(m));
    const int32_t bus = IJB.I[LFINF.nacline + t];
    IJB.I[m] = bus;
    IJB.J[m] = bus;
    IJB.No[m] = 0;
    RXB.R[m] = rm;
    RXB.X[m] = xm;
    RXB.B[m] = 0.0;
    RXB.T[m] = 1.0;
  }
  NO.nbranch = m;
}

// ---- wrl23 -----------------------------------------------------------------

namespace {

// One row of a branch file: integers and reals in the order of the file,
// the kinds given by a pattern such as "IIIIRRRIIIIIRRI".
struct BranchRow {
  std::vector<int32_t> ints;
  std::vector<double> reals;
};

struct BranchFile {
  const char* extension;
  const char* pattern;  // I: integer, R: real, in file order
  const int* widths;    // output width of each field; reals are F14.6
  std::vector<BranchRow> rows;
  std::size_t count = 0;  // rows of the last successful reading
};

constexpr int kL2Widths[] = {2, 4, 4, 4, 14, 14, 14, 2, 2, 2, 4, 4, 14, 14, 4};
constexpr int kL3Widths[] = {2, 4, 4, 4, 14, 14, 14, 14, 14, 3, 3,
                             3, 3, 4, 4, 14, 14, 14, 4,  2,  2, 2};
BranchFile l2{".L2", "IIIIRRRIIIIIRRI", kL2Widths, {}, 0};
BranchFile l3{".L3", "IIIIRRRRRIIIIIIRRRIIII", kL3Widths, {}, 0};

bool read_row(FreeReader& in, const std::string& pattern, BranchRow& row) {
  row.ints.assign(pattern.size(), 0);
  row.reals.assign(pattern.size(), 0.0);
  std::vector<ReadItem> items;
  for (std::size_t k = 0; k < pattern.size(); ++k) {
    items.push_back(pattern[k] == 'I' ? ReadItem::of(row.ints[k]) : ReadItem::of(row.reals[k]));
  }
  return in.read(items);
}

void read_branch_file(const std::string& stem, BranchFile& file) {
  FreeReader in;
  if (!in.open(stem + file.extension)) return;
  std::size_t n = 0;
  BranchRow row;
  while (read_row(in, file.pattern, row)) {
    if (n == file.rows.size()) file.rows.emplace_back();
    file.rows[n++] = row;
  }
  file.count = n;
}

// Writes the rows back, with R, X and the third real taken from the first
// branch of equal ends and number; `ends` turns a row's ends into the form
// that is compared.
template <typename Ends>
void write_branch_file(const std::string& stem, BranchFile& file, Ends ends, bool third_is_ratio) {
  std::map<std::tuple<int32_t, int32_t, int32_t>, int32_t> first;
  for (int32_t b = NO.nbranch; b >= 1; --b) first[{IJB.I[b], IJB.J[b], IJB.No[b]}] = b;
  std::FILE* out = std::fopen((stem + file.extension).c_str(), "w");
  if (!out) return;
  const std::string pattern = file.pattern;
  for (std::size_t r = 0; r < file.count; ++r) {
    BranchRow& row = file.rows[r];
    auto hit = first.find({ends(row.ints[1]), ends(row.ints[2]), row.ints[3]});
    if (hit != first.end()) {
      const int32_t b = hit->second;
      row.reals[4] = RXB.R[b];
      row.reals[5] = RXB.X[b];
      row.reals[6] = third_is_ratio ? RXB.T[b] : RXB.B[b];
    }
    std::string line = " ";
    for (std::size_t k = 0; k < pattern.size(); ++k) {
      line += pattern[k] == 'I' ? fmt_i(row.ints[k], file.widths[k])
                                : fmt_f(row.reals[k], file.widths[k], 6);
      line += ',';
    }
    line += '\n';
    std::fputs(line.c_str(), out);
  }
  std::fclose(out);
}

}  // namespace

void wrl23(const CaseName& name) {
  const std::string stem = name.trimmed();
  if (LFINF.nacline > 0) read_branch_file(stem, l2);
  if (LFINF.ntrans > 0) read_branch_file(stem, l3);
  if (l2.count > 0)
    write_branch_file(
        stem, l2, [](int32_t v) { return v; }, false);
  if (l3.count > 0)
    write_branch_file(
        stem, l3, [](int32_t v) { return std::abs(v); }, true);
}

}  // namespace lf

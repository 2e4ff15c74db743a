// Whole MATPOWER cases against MATPOWER's own solutions.  Each row of
// tests/data/validation.txt names a case, its reference solution and a
// method; the case is converted by mp2lf (tolerance 1e-8) into a scratch
// folder and solved by the driver.  Every bus voltage must then lie within
// 1e-6 per unit and 1e-4 degrees of the reference, every branch flow within
// 1e-5 per unit, and the iteration table must have the passes and rows the
// row gives.
//
// The examples with user-defined models (tests/data/models.txt) are solved by
// all five methods: (a) at convergence the controlled quantity meets its
// set-point, or stands at a limit of its model; (b) the final state is a true
// load flow of the final network: the values the models left, written into a
// plain case without models and solved by Newton's method, give the same
// voltages within 1e-6 per unit and 1e-4 degrees.  All methods reach the same
// state.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "common/files.hpp"
#include "common/lines.hpp"
#include "driver/newlf.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf::test {
namespace {

using cplx = std::complex<double>;
using Row = std::map<std::string, double>;

const fs::path kMatpower = fs::path(LF_TEST_DATA_DIR) / "matpower";

struct Case {
  std::string name, reference, qlim;  // qlim: "qlim" or "-"
  int method = 0, convergent = 0, passes = 0, rows = 0;
  std::string compare;  // "yes", "no" (only the table), or a bound on |dV| alone
};

// What a failing test prints for its row.
void PrintTo(const Case& c, std::ostream* out) {
  *out << c.name << " against " << c.reference << ", method " << c.method;
}

std::vector<Case> cases() {
  std::vector<Case> all;
  std::ifstream in(fs::path(LF_TEST_DATA_DIR) / "validation.txt");
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream f(line);
    Case c;
    f >> c.name >> c.reference >> c.method >> c.qlim >> c.convergent >> c.passes >> c.rows >>
        c.compare;
    all.push_back(c);
  }
  return all;
}

// A gzip-compressed CSV file with a header row: its rows by column name.
std::vector<Row> read_csv_gz(const fs::path& path) {
  std::vector<Row> rows;
  FILE* in = ::popen(("gzip -dc '" + path.string() + "'").c_str(), "r");
  if (in == nullptr) return rows;
  std::string text;
  char buf[65536];
  for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, in)) > 0;) text.append(buf, n);
  ::pclose(in);
  std::istringstream s(text);
  std::vector<std::string> head;
  for (std::string line; std::getline(s, line);) {
    std::vector<std::string> cells;
    std::istringstream fields(line);
    for (std::string c; std::getline(fields, c, ',');) cells.push_back(c);
    if (head.empty()) {
      head = cells;
      continue;
    }
    Row& r = rows.emplace_back();
    for (std::size_t k = 0; k < head.size() && k < cells.size(); ++k)
      r[head[k]] = std::strtod(cells[k].c_str(), nullptr);
  }
  return rows;
}

// The heading of the iteration table of each method.
const char* const kHeading[] = {
    "  P Q Decoupled Iterative Process", "  Newton Method (Power Equation) Iterative Process",
    "  Optimum Factor Iterative Process", "  Newton Method (Current Equation) Iterated Process",
    "  Newton Method Iterative Process"};

struct Deviation {
  double v = 0, deg = 0, flow = 0;
};

// The solved state against the reference: the case numbers the buses of the
// reference in order, leaving out the isolated ones (type 4); flows come from
// the engine's voltages on the reference's branch model (ratio at the from
// end, charging split in halves).
Deviation compare(const std::string& reference) {
  const fs::path dir = kMatpower / "solutions" / reference;
  std::map<int, int> internal;  // case bus -> internal number
  for (int r = 1; r <= NO.nnode; ++r)
    if (NEW[r] != 0) internal.emplace(NNTOON[r], NEW[r]);
  Deviation d;
  std::map<long, cplx> volt;  // by MATPOWER bus number
  int c = 0;
  for (const Row& b : read_csv_gz(dir / "bus.csv.gz")) {
    if (b.at("BUS_TYPE") == 4) continue;
    const auto it = internal.find(++c);
    if (it == internal.end()) {
      ADD_FAILURE() << "bus " << b.at("BUS_I") << " has no node";
      continue;
    }
    const int i = it->second;
    d.v = std::max(d.v, std::fabs(VPQ.V[i] - b.at("VM")));
    d.deg = std::max(d.deg, std::fabs(VPQ.TH[i] * 180 / M_PI - b.at("VA")));
    volt[static_cast<long>(b.at("BUS_I"))] = cplx(VPQ.E[i], VPQ.F[i]);
  }
  const double base = LFINF.base_mva;
  for (const Row& r : read_csv_gz(dir / "branch.csv.gz")) {
    if (r.at("BR_STATUS") <= 0) continue;
    const cplx vf = volt[static_cast<long>(r.at("F_BUS"))];
    const cplx vt = volt[static_cast<long>(r.at("T_BUS"))];
    const double tap = r.at("TAP") != 0 ? r.at("TAP") : 1.0;
    const cplx ys = 1.0 / cplx(r.at("BR_R"), r.at("BR_X")), ch(0, r.at("BR_B") / 2);
    const cplx sf = vf * std::conj((ys + ch) / (tap * tap) * vf - ys / tap * vt);
    const cplx st = vt * std::conj((ys + ch) * vt - ys / tap * vf);
    for (double x : {sf.real() - r.at("PF") / base, sf.imag() - r.at("QF") / base,
                     st.real() - r.at("PT") / base, st.imag() - r.at("QT") / base})
      d.flow = std::max(d.flow, std::fabs(x));
  }
  return d;
}

class Validation : public ::testing::TestWithParam<Case> {};

TEST_P(Validation, MatchesTheReference) {
  const Case& c = GetParam();
  ScratchFolder dir(true);
  const std::string cmd = std::string(LF_BINARY_DIR) + "/mp2lf '" +
                          (kMatpower / (c.name + ".m")).string() + "' CASE --method " +
                          std::to_string(c.method) + " --tolerance 1e-8 --iterations 50" +
                          (c.qlim == "qlim" ? " --qlim" : "") + " > mp2lf.out 2>&1";
  ASSERT_EQ(std::system(cmd.c_str()), 0) << read_file("mp2lf.out");
  write_file("NAME.INC", "1\nCASE\n");
  capture_printed();
  int32_t convergent = -1;
  newlf(convergent);
  stop_capture();

  EXPECT_EQ(convergent, c.convergent);
  EXPECT_EQ(count_printed(kHeading[c.method]), c.passes);
  EXPECT_EQ(std::count_if(printed.begin(), printed.end(), table_row), c.rows);
  if (c.compare == "no") return;
  const Deviation d = compare(c.reference);
  RecordProperty("worst_dv", std::to_string(d.v));
  if (c.compare != "yes") {  // a bound on the voltages alone
    EXPECT_LT(d.v, std::stod(c.compare));
    return;
  }
  EXPECT_LT(d.v, 1e-6);
  EXPECT_LT(d.deg, 1e-4);
  EXPECT_LT(d.flow, 1e-5);
}

INSTANTIATE_TEST_SUITE_P(Matpower, Validation, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case>& info) {
                           return info.param.reference + "_method" +
                                  std::to_string(info.param.method);
                         });

using Words = std::vector<std::string>;

Words words(const std::string& line, char sep = ' ') {
  std::istringstream in(line);
  Words f;
  for (std::string w; std::getline(in, w, sep);) {
    const auto a = w.find_first_not_of(' '), b = w.find_last_not_of(' ');
    if (a != std::string::npos)
      f.push_back(w.substr(a, b - a + 1));
    else if (sep != ' ')
      f.emplace_back();
  }
  return f;
}
std::string join(const Words& f) {
  std::string s;
  for (const auto& w : f) s += (s.empty() ? "" : " ") + w;
  return s;
}
void write_lines(const fs::path& p, const Words& lines) {
  std::string text;
  for (const auto& l : lines) text += l + "\n";
  write_file(p, text);
}
std::string num(double v) {
  std::ostringstream o;
  o.precision(17);
  o << v;
  return o.str();
}

// A quantity of the solved state: "V 4", "genQ 3", ... (see models.txt).
double value(const std::string& what, int32_t at) {
  const auto branch = [at] {
    for (int32_t k = 1; k <= NO.nbranch; ++k)
      if (IJB.No[k] == at) return k;
    return 0;
  };
  const auto flow = [&] {  // into the branch at its I end, from I to J
    const int32_t k = branch(), i = NEW[IJB.I[k]], j = NEW[IJB.J[k]];
    const cplx vi(VPQ.E[i], VPQ.F[i]), vj(VPQ.E[j], VPQ.F[j]);
    const cplx cur = (vi - vj / RXB.T[k]) / cplx(RXB.R[k], RXB.X[k]) + cplx(0, RXB.B[k]) * vi;
    return vi * std::conj(cur);
  };
  if (what == "V") return VPQ.V[NEW[at]];
  if (what == "P") return flow().real();
  if (what == "Q") return flow().imag();
  if (what == "ratio") return RXB.T[branch()];
  if (what == "X") return RXB.X[branch()];
  if (what == "genP") return L5.P[at];
  if (what == "genQ") return L5.Q[at];
  if (what == "genV") return L5.V[at];
  if (what == "loadP") return L6.P[at];
  if (what == "loadQ") return L6.Q[at];
  if (what == "injQ") return LFUDOT.UDQINJ[NEW[at]];
  if (what == "QGL") return VPQ.QG[NEW[at]] - VPQ.QL[NEW[at]];
  if (what == "droop") return LFUDOT.UDQINJ[NEW[at]] - 5 * (1.05 - VPQ.V[NEW[at]]);
  ADD_FAILURE() << "models.txt: no quantity " << what;
  return NAN;
}

struct Example {
  std::string name;
  Words where;             // folder, stem, and for a standard model the file and its row
  std::string controlled;  // the row under control, or empty
  Words target, limit;     // "V 4 = 1.025", "genV 3 at 1.1 0.9" (or empty)
};
void PrintTo(const Example& e, std::ostream* out) {
  *out << e.name;
}

std::vector<Example> examples() {
  std::vector<Example> all;
  for (const auto& line : file_lines(fs::path(LF_TEST_DATA_DIR) / "models.txt")) {
    if (line.empty() || line[0] == '#') continue;
    const Words f = words(line, '|');
    all.push_back(
        {f.at(0), words(f.at(1)), f.at(2), words(f.at(3)), f.size() > 4 ? words(f[4]) : Words{}});
  }
  return all;
}

struct State {
  std::vector<double> v, deg;  // by case bus
  int32_t convergent = 0;
};

// Solves the case in `dir` by `method`, the models switched on or off.
State solve(const fs::path& dir, const std::string& stem, int method, int models) {
  const fs::path l0 = dir / (stem + ".L0");
  auto lines = file_lines(l0);
  auto f = words(lines[1]);
  f[4] = std::to_string(method), f[5] = "200", f[7] = std::to_string(models);
  lines[1] = join(f);
  write_lines(l0, lines);
  write_file(dir / "NAME.INC", "1\n" + stem + "\n\nDATALIB\n\n\n\n\nUDLIB\n");
  const fs::path home = fs::current_path();
  fs::current_path(dir);
  capture_printed();
  State s;
  newlf(s.convergent);
  stop_capture();
  fs::current_path(home);
  for (int32_t b = 1; b <= LFINF.nbus; ++b) {
    s.v.push_back(VPQ.V[NEW[b]]);
    s.deg.push_back(VPQ.TH[NEW[b]] * 180 / M_PI);
  }
  return s;
}

// Rewrites the rows of file `ext` (L5 or L6) from `put`, by row of the store.
template <typename Put>
void rewrite(const fs::path& dir, const std::string& stem, const char* ext, Put put) {
  const fs::path file = dir / (stem + ext);
  auto lines = file_lines(file);
  int32_t row = 0;
  for (auto& l : lines) {
    auto f = words(l);
    if (f.empty() || std::stoi(f[0]) <= 0) continue;
    put(++row, f);
    l = join(f);
  }
  write_lines(file, lines);
}

// The final network of a model run as a plain case: generator P, Q and V and
// load P and Q as the models left them, the models' injections taken into the
// load rows; the branch files hold the final data already.
void freeze(const fs::path& dir, const std::string& stem) {
  rewrite(dir, stem, ".L5", [](int32_t g, Words& f) {
    f[3] = num(L5.P[g]), f[4] = num(L5.Q[g]), f[5] = num(L5.V[g]);
  });
  rewrite(dir, stem, ".L6", [](int32_t d, Words& f) {
    const int32_t i = NEW[std::stoi(f[1])];
    f[4] = num(L6.P[d] - LFUDOT.UDPINJ[i]), f[5] = num(L6.Q[d] - LFUDOT.UDQINJ[i]);
  });
  fs::remove(dir / (stem + ".L9"));
}

void expect_same(const State& a, const State& b, const std::string& what) {
  for (std::size_t k = 0; k < a.v.size(); ++k) {
    EXPECT_NEAR(a.v[k], b.v[k], 1e-6) << what << " bus " << k + 1;
    EXPECT_NEAR(a.deg[k], b.deg[k], 1e-4) << what << " bus " << k + 1;
  }
}

class ModelExamples : public ::testing::TestWithParam<Example> {};

TEST_P(ModelExamples, SetPointReachedByEveryMethodInATrueLoadFlow) {
  const Example& ex = GetParam();
  const std::string& stem = ex.where[1];
  std::vector<State> states;
  for (int method = 0; method <= 4; ++method) {
    const std::string run = ex.name + " method " + std::to_string(method);
    ScratchFolder dir;
    copy_folder("examples/" + ex.where[0], dir.path());
    if (!ex.controlled.empty()) {  // a standard model: its row and the library
      const fs::path file = dir.path() / (stem + "." + ex.where[2]);
      auto lines = file_lines(file);
      const std::string row = join(Words(ex.where.begin() + 3, ex.where.end()));
      const auto it = std::find(lines.begin(), lines.end(), row);
      ASSERT_NE(it, lines.end()) << run << ": no row " << row;
      *it = ex.controlled;
      write_lines(file, lines);
      copy_folder("lib", dir.path());
    }
    states.push_back(solve(dir.path(), stem, method, 1));
    ASSERT_EQ(states.back().convergent, 1) << run;
    const double got = value(ex.target[0], std::stoi(ex.target[1]));
    bool at_limit = false;
    if (!ex.limit.empty()) {
      const double lim = value(ex.limit[0], std::stoi(ex.limit[1]));
      for (std::size_t k = 3; k < ex.limit.size(); ++k)
        at_limit |= std::fabs(lim - std::stod(ex.limit[k])) < 1e-9;
    }
    EXPECT_TRUE(at_limit || std::fabs(got - std::stod(ex.target[3])) < 1e-4)
        << run << ": " << join(ex.target) << ", got " << got;
    if (method == 1) {  // (b): the plain case of the final network, by Newton
      freeze(dir.path(), stem);
      const State plain = solve(dir.path(), stem, 1, 0);
      ASSERT_EQ(plain.convergent, 1) << run << " plain";
      expect_same(plain, states.back(), run + " plain");
    }
  }
  for (int method = 0; method <= 4; ++method)
    expect_same(states[method], states[1], ex.name + " method " + std::to_string(method));
}

INSTANTIATE_TEST_SUITE_P(Examples, ModelExamples, ::testing::ValuesIn(examples()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace lf::test

// Whole MATPOWER cases against MATPOWER's own solutions.  Each row of
// tests/data/validation.txt names a case, its reference solution and a
// method; the case is converted by mp2lf (tolerance 1e-8) into a scratch
// folder and solved by the driver.  Every bus voltage must then lie within
// 1e-6 per unit and 1e-4 degrees of the reference, every branch flow within
// 1e-5 per unit, and the iteration table must have the passes and rows the
// row gives.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace lf::test

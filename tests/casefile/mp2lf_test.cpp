// The MATPOWER importer, run as a program: its files must read back through
// rdlf into the admittances that MATPOWER forms from the same data. (The
// bundled cases, converted and solved, are compared with MATPOWER's
// solutions by the validation tests.)
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <complex>
#include <cstdlib>
#include <map>
#include <sstream>

#include "casefile/readers.hpp"
#include "casefiles.hpp"

namespace lf {
namespace {

using test::CaseFiles;
using test::printed;
using ::testing::IsEmpty;
using cplx = std::complex<double>;
using Rows = std::vector<std::vector<double>>;
using Ybus = std::map<std::pair<int, int>, cplx>;

const std::string kData = std::string(LF_TEST_DATA_DIR) + "/matpower/";

// The numeric rows of "mpc.NAME = [ ... ];", comments taken out.
Rows matpower_rows(std::string text, const std::string& name) {
  // A row may go on in the next line behind "...".
  for (std::size_t c; (c = text.find("...")) != std::string::npos;)
    text.replace(c, text.find('\n', c) + 1 - c, 1, ' ');
  const std::size_t at = text.find(std::string("mpc.").append(name).append(" = ["));
  EXPECT_NE(at, std::string::npos) << name;
  std::istringstream in(text.substr(text.find('[', at) + 1));
  Rows rows;
  std::string line;
  while (std::getline(in, line)) {
    line = line.substr(0, line.find('%'));
    const bool last = line.find(']') != std::string::npos;
    line = line.substr(0, line.find(']'));
    std::istringstream fields(line.substr(0, line.find(';')));
    std::vector<double> row;
    for (double x; fields >> x;) row.push_back(x);
    if (!row.empty()) rows.push_back(row);
    if (last) break;
  }
  return rows;
}

// MATPOWER's bus admittance matrix without phase shift, upper triangle, in
// the numbering of the buses that are not of type 4.
Ybus matpower_ybus(const std::string& text) {
  const Rows bus = matpower_rows(text, "bus"), branch = matpower_rows(text, "branch");
  const double base = std::strtod(text.c_str() + text.find("mpc.baseMVA = ") + 14, nullptr);
  std::map<double, int> num;
  Ybus y;
  for (const auto& b : bus) {
    if (b[1] == 4) continue;
    const int n = static_cast<int>(num.size()) + 1;
    num[b[0]] = n;
    y[{n, n}] += cplx(b[4], b[5]) / base;
  }
  for (const auto& r : branch) {
    if (r[10] <= 0 || !num.count(r[0]) || !num.count(r[1])) continue;
    const int f = num[r[0]], t = num[r[1]];
    const cplx ys = 1.0 / cplx(r[2], r[3]), ych(0, r[4] / 2);
    const double tap = r[8] != 0 ? r[8] : 1.0;
    y[{t, t}] += ys + ych;
    y[{f, f}] += (ys + ych) / (tap * tap);
    y[{std::min(f, t), std::max(f, t)}] -= ys / tap;
  }
  return y;
}

// The admittances the engine assembles from the branch records.
Ybus engine_ybus() {
  Ybus y;
  for (int k = 1; k <= NO.nbranch; ++k) {
    const int i = IJB.I[k], j = IJB.J[k];
    const double r = RXB.R[k], x = RXB.X[k];
    const double z2 = std::max(r * r + x * x, 1e-20);
    const cplx g(r / z2, -x / z2);
    if (i == j) {
      y[{i, i}] += g;
      continue;
    }
    const double t = RXB.T[k] > 9.999999974752427e-07 ? RXB.T[k] : 1.0;
    y[{std::min(i, j), std::max(i, j)}] -= g / t;
    y[{i, i}] += g + cplx(0, RXB.B[k]);
    y[{j, j}] += g / (t * t) + cplx(0, RXB.B[k]);
  }
  return y;
}

class Mp2lf : public CaseFiles {
 protected:
  // Runs the importer; its summary line goes to out.
  int run(const std::string& args, std::string* out = nullptr) {
    const std::string log = (dir_ / "mp2lf.out");
    const int rc =
        std::system((std::string(LF_BINARY_DIR) + "/mp2lf " + args + " >" + log + " 2>&1").c_str());
    if (out) *out = test::read_file(log);
    return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
  }
  void convert_and_read(const std::string& m, const std::string& opts = "") {
    ASSERT_EQ(run(m + " " + stem() + " " + opts), 0);
    rdlf(name(), lib());
  }
  bool any_output() const {
    for (const char* ext : {".L0", ".L1", ".L2", ".L3", ".L5", ".L6", ".MAP"})
      if (std::filesystem::exists(dir_ / (std::string("CASE") + ext))) return true;
    return false;
  }
};

// A case with what the bundled ones lack: names with quotes, a bus of type
// 4, elements out of service, infinite limits, a line parallel to a
// transformer, a charged transformer, rows over two lines.
const char* kOdd = R"(function mpc = odd
% a hand-made case
mpc.version = '2';
mpc.baseMVA = 50;
mpc.bus = [
	10	3	0	0	0	0	1	1	5	110	1	1.1	0.9;
	20	2	20	10	0	5	1	1	0	110	1	1.1	0.9;  % a shunt
	30	4	0	0	0	0	1	1	0	110	1	1.1	0.9;
	40	1	30	-5	0	0	2	1	0	20	1	1.05	0.95;
];
mpc.gen = [
	10	0	0	Inf	-Inf	1.02	100	1	200	0;
	20	40	5	30	-30	1.01	100	1	Inf	0;
	20	40	5	30	-30	1.01	100	0	100	0;
	40	10	2	0	0	1	100	1	10	0;
	30	10	2	0	0	1	100	1	10	0;
];
mpc.branch = [
	10	20	0.01	0.1	0.02	0	0	0	0	0	1	-360	360;
	20	40	0.0	0.2	0.1	0	0	0	0.95	0	1	-360	360;
	40	20	0.02	0.3	0.04	0	0	0	0	0	1	-360	360;
	10	40	0.01	0.1	0.02	0	0	0	0	0	0	-360	360;
	20	30	0.01	0.1	0.02	0	0	0	0	0	1	-360	360;
	10	20	0.03	0.2 ...
	    0.0	0	0	0	0	0	1	-360	360;
];
mpc.bus_name = {
	'North''s';
	'Middle';
	'Dead';
	'A name longer than twenty';
};
)";

TEST_F(Mp2lf, FollowsTheConversionRules) {
  test::write_file(dir_ / "odd.m", kOdd);
  std::string summary;
  ASSERT_EQ(
      run((dir_ / "odd.m") + " " + stem() + " --qlim --method 0 --tolerance 1e-6 --iterations 20",
          &summary),
      0);
  EXPECT_EQ(summary,
            "mp2lf: wrote " + stem() +
                ".L0-.L6 and .MAP: 3 buses, 2 lines, 5 shunt rows, 2 transformers, 3 generators, "
                "2 loads; left out 1 isolated buses, 2 branches and 2 generators out of "
                "service or isolated\n");
  // The map gives each bus's MATPOWER number back.
  EXPECT_EQ(test::read_file(stem() + ".MAP"), "1 10\n2 20\n3 40\n");
  rdlf(name(), lib());
  EXPECT_THAT(printed, IsEmpty());
  EXPECT_EQ(LFINF.base_mva, 50.0);
  EXPECT_EQ(LFINF.tolerance, 1e-6);
  EXPECT_EQ(L1.busname[1].trimmed(), "North's");
  EXPECT_EQ(L1.busname[3].trimmed(), "A name longer than t");
  EXPECT_EQ(LL1.busarea[3], 2);
  EXPECT_DOUBLE_EQ(LL1.busvmax[3], 1.05);

  // Lines, shunts and transformers (ratio at the from bus) show in the
  // admittances below; what the file order adds: shunt rows after the lines.
  ASSERT_EQ(LFINF.nacline, 7);
  ASSERT_EQ(LFINF.ntrans, 2);
  for (int k = 3; k <= 7; ++k) EXPECT_EQ(IJB.I[k], IJB.J[k]);

  ASSERT_EQ(LFINF.ngenerat, 3);
  EXPECT_EQ(L5.mode_ctrl[1], 0);
  EXPECT_EQ(L5.Angle[1], 5.0);
  EXPECT_EQ(L5.V[1], 1.02);
  EXPECT_EQ(L5P.Qmax[1] * 0, 0.0);  // an infinite limit is written finite
  EXPECT_EQ(L5.mode_ctrl[2], -2);
  EXPECT_EQ(L5.P[2], 0.8);
  EXPECT_EQ(L5.mode_ctrl[3], 1);
  ASSERT_EQ(LFINF.nload, 2);
  EXPECT_EQ(L6.ibs[2], 3);
  EXPECT_EQ(L6.Q[2], -0.1);

  const Ybus want = matpower_ybus(kOdd), got = engine_ybus();
  for (const auto& [at, v] : want)
    EXPECT_LE(std::abs(got.at(at) - v), 1e-12 * std::max(1.0, std::abs(v)));
}

TEST_F(Mp2lf, RefusesWhatItCannotReadAndLeavesNoFiles) {
  const std::string m = (dir_ / "bad.m");
  const std::string good = kOdd;
  const std::pair<std::string, std::string> cases[] = {
      {good.substr(0, good.find("mpc.branch")), "no branch matrix"},
      {good.substr(0, good.find("0.95")), "no closing ']'"},
      {std::string(good).replace(good.find("0.95"), 4, "x.95"), "cannot read the matrix value"},
      {std::string(good).replace(good.find("mpc.baseMVA"), 4, "mpc.bus(1,2) = 3;\nmpc."),
       "expected '='"},
      {std::string(good).replace(good.find("\t40\t10\t2"), 3, "\t99"), "refers to bus 99"},
      {std::string(good).replace(good.find("'Dead';"), 7, ""), "bus_name"},
  };
  for (const auto& [text, why] : cases) {
    std::ofstream(m) << text;
    std::string out;
    EXPECT_EQ(run(m + " " + stem(), &out), 1) << why;
    EXPECT_THAT(out, ::testing::HasSubstr(why));
    EXPECT_THAT(out, ::testing::HasSubstr("nothing written"));
    EXPECT_FALSE(any_output()) << why;
  }
  EXPECT_EQ(run(m), 2);
  EXPECT_EQ(run(kData + "case9.m " + stem() + " --iterations x"), 2);
  EXPECT_EQ(run((dir_ / "none.m") + " " + stem()), 1);
  EXPECT_FALSE(any_output());
}

}  // namespace
}  // namespace lf

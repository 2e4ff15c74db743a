#include "report/reports.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <complex>
#include <regex>

#include "common/golden.hpp"
#include "report/fixture.hpp"

namespace lf {
namespace {

using test::file_lines;
using test::printed;
using testing::ElementsAre;
using cplx = std::complex<double>;

// Flows of a branch with the ratio t on its first end, from the textbook
// two-port: the series current (t Vi - Vj) / (z t) leaves the first end and
// arrives divided by t more at the second, with jB at each end.
struct Flows {
  cplx sij, sji;
};
Flows textbook(cplx vi, cplx vj, double r, double x, double b, double t) {
  const cplx z(r, x);
  const cplx is = (t * vi - vj) / (z * t);
  const cplx ii = is + cplx(0, b) * vi;
  const cplx ij = -is / t + cplx(0, b) * vj;
  return {vi * std::conj(ii), vj * std::conj(ij)};
}

TEST(BranchFlows, SeriesShuntAndCurrents) {
  test::reset_store();
  NEW[5] = 1;
  NEW[9] = 2;
  test::set_voltage(1, 1.04, 3.0);
  test::set_voltage(2, 0.97, -7.5);
  const cplx vi = std::polar(1.04, 3.0 * M_PI / 180), vj = std::polar(0.97, -7.5 * M_PI / 180);
  double pij, qij, pji, qji, ci, cj, ii, ij;

  // A tapped branch with charging; a ratio of 0 or below counts as 1.
  for (double t : {1.05, 0.0, -2.0}) {
    test::branch(1, 5, 9, 1, 0.02, 0.15, 0.04, t);
    brpq(1, pij, qij, pji, qji, ci, cj);
    const Flows f = textbook(vi, vj, 0.02, 0.15, 0.04, t > 0 ? t : 1.0);
    EXPECT_NEAR(std::abs(cplx(pij, qij) - f.sij), 0, 1e-12);
    EXPECT_NEAR(std::abs(cplx(pji, qji) - f.sji), 0, 1e-12);
    EXPECT_NEAR(ci, 1.04 * 1.04 * 0.04, 1e-14);
    EXPECT_NEAR(cj, 0.97 * 0.97 * 0.04, 1e-14);
    bracurrent(1, ii, ij);
    EXPECT_NEAR(ii, std::abs(f.sij / vi), 1e-12);
    EXPECT_NEAR(ij, std::abs(f.sji / vj), 1e-12);
  }

  // A shunt: the power of the impedance at the bus voltage, nothing else;
  // its "current" keeps the square of the voltage.
  test::branch(2, 9, 9, 0, 0.3, 0.4, 0.5, 1.0);
  brpq(2, pij, qij, pji, qji, ci, cj);
  EXPECT_NEAR(pij, 0.97 * 0.97 * 0.3 / 0.25, 1e-14);
  EXPECT_NEAR(qij, 0.97 * 0.97 * 0.4 / 0.25, 1e-14);
  EXPECT_EQ(pji, 0.0);
  EXPECT_EQ(qji, 0.0);
  EXPECT_EQ(ci, 0.0);
  EXPECT_EQ(cj, 0.0);
  bracurrent(2, ii, ij);
  EXPECT_NEAR(ii, 0.97 * 0.97 / 0.5, 1e-14);
  EXPECT_EQ(ij, 0.0);
}

// Three case buses; node 4 is a new node standing for case bus 3 (an opened
// line end).  The internal numbering differs from the reduced one.  All
// angles are 0 so that the flows can be worked out by hand.
class ReportCase : public testing::Test {
 protected:
  void SetUp() override {
    test::reset_store();
    casename = stem;
    L1.busname[1] = "NORTH", L1.busname[2] = "SOUTH", L1.busname[3] = "EAST";
    NNTOON.nbase = 3;
    NNTOON.nnode = 4;
    for (int32_t k = 1; k <= 3; ++k) NNTOON[k] = k;
    NNTOON[4] = 3;
    NEW[1] = 2, NEW[2] = 1, NEW[3] = 3, NEW[4] = 4;
    NO.nnode = 4;
    const double v[] = {0.9, 1.0, 1.0, 1.1};
    for (int32_t i = 1; i <= 4; ++i) test::set_voltage(i, v[i - 1], 0);

    LFINF.nacline = 3;
    LFINF.ntrans = 1;
    NO.nbranch = 4;
    test::branch(1, 1, 2, 1, 0.1, 0, 0, 1);    // a pure resistance
    test::branch(2, 2, 4, 1, 0, 0.5, 0.1, 0);  // ratio 0 reads as 1
    test::branch(3, 3, 3, 0, 0.5, -2, 0, 1);   // shunt
    test::branch(4, 3, 2, 2, 0, 0.1, 0, 1.1);  // transformer
    as_read(1, 2, 1, 1);                       // the other way round
    as_read(2, 2, 3, 1);
    as_read(3, 3, 3, 0);
    as_read(4, 3, 2, 2);
    L3PP.Rm[1] = 0.5;
    L3PP.Xm[1] = 2;
  }
  static void as_read(int32_t r, int32_t i, int32_t j, int32_t no) {
    IJOPEN.I[r] = i;
    IJOPEN.J[r] = j;
    IJOPEN.No[r] = no;
  }
  test::ScratchFolder dir;
  std::string stem = dir / "C";
  CaseName casename;
};

// The files each test writes stand in tests/data/golden/report/.
TEST_F(ReportCase, LineAndTransformerFiles) {
  wlp2(casename);
  std::string files = test::report_text(stem, ".LP2");
  // A model's control on the transformer takes the model injections out of
  // its flows; the magnetising branch is added at the first end.
  L3P.mode_ctrl[1] = 1;
  LFUDOT.UDPINJ[3] = 0.01;
  LFUDOT.UDQINJ[3] = 0.02;
  LFUDOT.UDPINJ[1] = 0.03;
  LFUDOT.UDQINJ[1] = 0.04;
  wlp3(casename);
  files += test::report_text(stem, ".LP3");
  // A row as read without a branch keeps its line, with zeros.
  IJOPEN.No[1] = 9;
  wlp2(casename);
  test::expect_golden(files + test::report_text(stem, ".LP2"), "report/lines.txt");
}

TEST_F(ReportCase, BusFileAndNewNodes) {
  LFINF.nload = 1;
  L6.ibs[1] = 4;
  L6.No[1] = 7;
  wlp1(1, casename);
  EXPECT_TRUE(std::regex_match(file_lines(stem + ".LP1")[0],
                               std::regex("  0,'LF Result File Created on \\d{8} at "
                                          "\\d\\d:\\d\\d:\\d\\d',")));
  std::string files = test::report_text(stem, ".LP1") + test::report_text(stem, ".LPD");
  // A merged load without a number of its own: one line for each load as read.
  LF93.loadshare = 1;
  L6.No[1] = 0;
  L6PP.nloadold = 3;
  L6PP.ibs[1] = 4, L6PP.No[1] = 11;
  L6PP.ibs[2] = 1, L6PP.No[2] = 12;
  L6PP.ibs[3] = 4, L6PP.No[3] = 13;
  test::branch(5, 4, 1, 3, 0, 0.1, 0, 1);  // a second branch at the new node
  NO.nbranch = 5;
  wlp1(1, casename);
  test::expect_golden(files + test::report_text(stem, ".LPD"), "report/new_nodes.txt");
  // Without new nodes the old .LPD goes and no new one is made.
  NNTOON.nnode = 3;
  wlp1(1, casename);
  EXPECT_FALSE(test::fs::exists(stem + ".LPD"));
}

// Angles beyond a full turn fold, a full turn itself does not; a new node
// keeps its angle unfolded; a voltage too wide for its field overflows.
TEST(BusFile, AngleFoldAndOverflow) {
  test::reset_store();
  test::ScratchFolder dir;
  const std::string stem = dir / "C";
  L1.busname[1] = "A";
  NNTOON.nbase = 4;
  NNTOON.nnode = 5;
  for (int32_t k = 1; k <= 4; ++k) NNTOON[k] = NEW[k] = k;
  NNTOON[5] = 1;
  NEW[5] = 5;
  NO.nnode = 5;
  NO.nbranch = 1;
  test::branch(1, 5, 2, 1, 0, 0.1, 0, 1);
  const double v[] = {1, 12345.6, 1, 1, 1}, deg[] = {400, -750, 359, 360, 400};
  for (int32_t i = 1; i <= 5; ++i) VPQ.V[i] = v[i - 1], VPQ.TH[i] = deg[i - 1] / 57.2957795;
  while (VPQ.TH[4] * 57.2957795 < 360) VPQ.TH[4] = std::nextafter(VPQ.TH[4], 7.0);
  while (VPQ.TH[4] * 57.2957795 > 360) VPQ.TH[4] = std::nextafter(VPQ.TH[4], 6.0);
  wlp1(0, CaseName(stem));  // not converged
  test::expect_golden(test::report_text(stem, ".LP1") + test::report_text(stem, ".LPD"),
                      "report/angles.txt");
}

TEST_F(ReportCase, GeneratorAndLoadFilesWithSlackTable) {
  test::capture_printed();
  // Generators as read: a slack, two shares of a merged voltage-controlled
  // row, a share of a merged P-Q row, and one on a bus without a branch.
  L5OLD.ngenold = 5;
  L5OLD.grow(5);
  const struct {
    int32_t ibs, map, merged;
    double share, p, q;
  } gens[] = {{1, 1, 0, 1.0, 0, 0},
              {3, 2, 1, 0.25, 0, 0},
              {3, 2, 1, 0.75, 0, 0},
              {2, 3, 1, 0.5, 0.3, 0.1},
              {5, 4, 0, 1.0, 0, 0}};
  for (int32_t r = 1; r <= 5; ++r) {
    const auto& g = gens[r - 1];
    L5OLD.ibs[r] = g.ibs, L5OLD.map[r] = g.map, L5OLD.merged[r] = g.merged;
    L5OLD.share[r] = g.share, L5OLD.P[r] = g.p, L5OLD.Q[r] = g.q;
  }
  L5.ibs[1] = 1;
  L5.mode_ctrl[1] = kTypeSlack, L5.mode_ctrl[2] = kTypePV,
  L5.mode_ctrl[3] = L5.mode_ctrl[4] = kTypePQ;
  VPQ.PG[2] = 1.5, VPQ.QG[2] = -0.25, GLP.IGEN[2] = 1;
  VPQ.PG[3] = 0.8, VPQ.QG[3] = 0.4, GLP.IGEN[3] = 2;
  wlp5(casename);
  // Loads: a slack load merged from three loads, and a voltage-controlled
  // load merged from two.
  LF93.loadshare = 1;
  LFINF.nload = 2;
  L6PP.nloadold = 5;
  const struct {
    int32_t ibs, no;
    double p, q;
  } old[] = {{2, 21, 0, 0}, {2, 22, 0, 0}, {2, 23, 0, 0}, {3, 24, 0.2, 0}, {3, 25, 0.3, 0}};
  for (int32_t q = 1; q <= 5; ++q)
    L6PP.ibs[q] = old[q - 1].ibs, L6PP.No[q] = old[q - 1].no, L6PP.P[q] = old[q - 1].p,
    L6PP.Q[q] = old[q - 1].q;
  L6.ibs[1] = 2, L6.No[1] = 0, L6.mode_ctrl[1] = kTypeSlack;
  L6.ibs[2] = 3, L6.No[2] = 0, L6.mode_ctrl[2] = kTypePV;
  VPQ.PL[1] = -0.9, VPQ.QL[1] = -0.3;
  VPQ.PL[3] = 0.5, VPQ.QL[3] = 0.25;
  wlp6(casename);
  // The same slack rows for the database mode's table.
  LFINF.ngenerat = 1;
  prnslackbuspq();
  std::string files = test::report_text(stem, ".LP5") + test::report_text(stem, ".LP6");
  for (const std::string& l : printed) files += l + "\n";
  test::expect_golden(files, "report/units.txt");
}

// Which files the writing makes, with the first line of each, and the
// slack table printed: tests/data/golden/report/written_files.txt.  Area
// control off: an earlier .LP7 is left alone, as is an earlier .LP4.
TEST_F(ReportCase, DriverWritesWhatTheCaseHas) {
  test::capture_printed();
  test::write_file(stem + ".LP4", "earlier\n");
  test::write_file(stem + ".LP7", "earlier\n");
  LFINF.narea = 1;
  wtlf(0, casename);
  std::string files;
  for (const char* ext : {".LP1", ".LP2", ".LP3", ".LP4", ".LP5", ".LP6", ".LP7", ".nP4"}) {
    const bool made = test::fs::exists(stem + ext);
    files += ext + (made ? ": " + file_lines(stem + ext)[0].substr(0, 20) : ": none") + "\n";
  }
  for (const std::string& l : printed) files += l + "\n";
  test::expect_golden(files, "report/written_files.txt");
}

TEST(ModelInjections, TakenOutOfTheNodeResults) {
  test::reset_store();
  NO.nnode = 4;
  GLP.IGEN[1] = 1, L5.mode_ctrl[1] = kTypeSlack;
  GLP.IGEN[2] = 2, L5.mode_ctrl[2] = kTypePV;
  GLP.ILOAD[3] = 1, L6.mode_ctrl[1] = kTypeSlack;
  GLP.IGEN[4] = 3, L5.mode_ctrl[3] = kTypeSlack;
  for (int32_t i = 1; i <= 4; ++i) {
    VPQ.PG[i] = VPQ.QG[i] = VPQ.PL[i] = VPQ.QL[i] = 1;
    LFUDOT.UDPINJ[i] = 0.25;
    LFUDOT.UDQINJ[i] = 0.5;
  }
  LFUDOT.UDPINJ[4] = LFUDOT.UDQINJ[4] = 4e-8;  // too small to count
  dwirii();
  EXPECT_THAT((std::vector<double>{VPQ.PG[1], VPQ.QG[1], VPQ.PG[2], VPQ.QG[2], VPQ.PL[3], VPQ.QL[3],
                                   VPQ.PG[4], VPQ.QG[4]}),
              ElementsAre(0.75, 0.5, 1, 0.5, 0.75, 0.5, 1, 1));
}

}  // namespace
}  // namespace lf

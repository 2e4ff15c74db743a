// The bundled examples solved from their case files by the driver, from
// reading to the report files.  What each run prints and every report file it
// writes stand in tests/data/golden/examples/<example>.txt, byte for byte but
// for the clock (the elapsed time and the stamps of the report files).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "common/golden.hpp"
#include "control/dcline.hpp"
#include "driver/newlf.hpp"
#include "report/area.hpp"
#include "report/fixture.hpp"

namespace lf {
namespace {

using test::printed;

// Copies an example into the (entered) scratch folder, names it in NAME.INC
// and runs the driver there; `l7` replaces the area schedules.
int32_t solve_example(const std::string& folder, const std::string& stem,
                      const std::string& l7 = "") {
  test::copy_folder("examples/" + folder, test::fs::current_path());
  test::write_file("NAME.INC", "1\n" + stem + "\n");
  if (!l7.empty()) test::write_file(stem + ".L7", l7);
  test::capture_printed();
  int32_t convergent = -1;
  newlf(convergent);
  test::stop_capture();
  return convergent;
}

// The printed lines, then each file the run of an example wrote, in name
// order.
std::string run_record(const std::string& folder) {
  std::set<std::string> inputs{"NAME.INC"};
  for (const auto& f :
       test::fs::directory_iterator(test::fs::path(LF_TEST_DATA_DIR) / "../../examples" / folder))
    inputs.insert(f.path().filename());
  std::string all;
  for (const std::string& l : printed)
    if (l.rfind(" elapsed", 0) != 0) all += l + "\n";
  std::set<std::string> written;
  for (const auto& f : test::fs::directory_iterator("."))
    if (!inputs.count(f.path().filename())) written.insert(f.path().filename());
  for (const std::string& name : written) {
    const std::size_t dot = name.rfind('.');
    all += test::report_text(name.substr(0, dot), name.substr(dot));
  }
  return all;
}

struct Bundled {
  const char *folder, *stem;
};
void PrintTo(const Bundled& b, std::ostream* out) {
  *out << b.folder;
}

class Example : public testing::TestWithParam<Bundled> {};

TEST_P(Example, WritesWhatItWroteBefore) {
  const auto [folder, stem] = GetParam();
  test::ScratchFolder dir(true);
  solve_example(folder, stem);
  test::expect_golden(run_record(folder), std::string("examples/") + folder + ".txt");
}

INSTANTIATE_TEST_SUITE_P(Bundled, Example,
                         testing::Values(Bundled{"areas", "AREAS"}, Bundled{"dclink", "DCLINK"},
                                         Bundled{"ieee14", "IEEE14"}, Bundled{"ieee118", "IEEE118"},
                                         Bundled{"substation", "SUBST"}),
                         [](const auto& info) { return std::string(info.param.folder); });

TEST(WholeCase, DcLinkBalancesAtBothEnds) {
  test::ScratchFolder dir(true);
  ASSERT_EQ(solve_example("dclink", "DCLINK"), 1);
  ASSERT_EQ(LFINF.ndcline, 2);
  const DCLFOPRec& op = DCLFOP;
  const int32_t a = NEW[NL4.I[1]], b = NEW[NL4.J[1]];
  // Both lines run from the same pair of buses: their injections add up.
  EXPECT_NEAR(VPQ.PDC[a], op.pd1i[1] + op.pd1i[2] + op.pd2i[2], 1e-12);
  EXPECT_NEAR(VPQ.PDC[b], op.pd1j[1] + op.pd1j[2] + op.pd2j[2], 1e-12);
  EXPECT_NEAR(VPQ.QDC[a],
              op.qd1i[1] + DCLFPU.qcip[1] + op.qd1i[2] + op.qd2i[2] + 2 * DCLFPU.qcip[2], 1e-12);
  // Each pole: the rectifier draws Vd Id, the inverter gives back less the
  // loss in the DC circuit; the current is the one ordered.
  const double rdc[] = {
      0, NL4.rpi_ohm[1] + NL4.rl_ohm[1] + NL4.rpj_ohm[1] + NL4.rei_ohm[1] + NL4.rej_ohm[1],
      NL4.rl_ohm[2]};
  for (int32_t k = 1; k <= 2; ++k) {
    const double id = op.id10[k];
    EXPECT_NEAR(id, k == 1 ? 3.0 : 2.0, 1e-12);
    EXPECT_NEAR(op.pd1i[k], -id * op.vd10i[k], 1e-9);
    EXPECT_NEAR(op.pd1j[k], id * op.vd10j[k], 1e-9);
    EXPECT_NEAR(op.pd1i[k] + op.pd1j[k], -id * id * rdc[k], 1e-9);
    EXPECT_EQ(op.vaci[k], VPQ.V[a]);  // the last point follows the solution
  }
  EXPECT_EQ(op.pd2i[2], op.pd1i[2]);  // equal pole data: two equal poles
}

TEST(WholeCase, AreasReachTheirSchedules) {
  test::ScratchFolder dir(true);
  ASSERT_EQ(solve_example("areas", "AREAS"), 1);
  EXPECT_EQ(adjflag, 0);
  for (int32_t i = 2; i <= 3; ++i)
    EXPECT_LE(std::fabs(LL7.p_schedule[i] - AREA.PACT[LL7.area_no[i]]), LL7.tolerance[i]);
  EXPECT_GT(L5.P[regulating_generator(2)], 1.0);  // east's generator moved up to export
}

TEST(WholeCase, MissingRegulatingGeneratorEndsAtTheLimit) {
  test::ScratchFolder dir(true);
  EXPECT_EQ(solve_example("areas", "AREAS",
                          "1 1 'WEST' 2 -1.0 10.0 4.0\n"
                          "1 2 'EAST' 3 0.5 0.005 4.0\n"
                          "1 3 'HILLS' 6 0.5 0.005 4.0\n"),
            1);
  EXPECT_EQ(test::count_printed("  P Q Decoupled Iterative Process"), 11);
  EXPECT_EQ(test::count_printed("               ***** AREA  INTERCHANGE RESULTS *****"), 10);
  EXPECT_EQ(test::count_printed("   Area No.=  3   Regulating GeneratorHILL-LOAD             "
                                "Is not Exist !"),
            10);
  const auto limit =
      std::find(printed.begin(), printed.end(), "The Number Of Area Adjustment Hit Its Limit");
  ASSERT_NE(limit, printed.end());
  EXPECT_EQ(*(limit + 1), "Area Interchange Will Not Be Readjusted");
}

}  // namespace
}  // namespace lf

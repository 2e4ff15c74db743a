// The bundled DC and area examples solved from their case files by the
// driver, from reading to the report files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "control/dcline.hpp"
#include "driver/newlf.hpp"
#include "report/area.hpp"
#include "report/fixture.hpp"

namespace lf {
namespace {

namespace fs = std::filesystem;

// Copies an example into a fresh directory, names it in NAME.INC and runs
// the driver there.
int32_t solve_example(const std::string& folder, const std::string& stem, fs::path& dir,
                      const std::string& l7 = "") {
  dir = fs::path(test::temp_stem()).parent_path();
  for (const auto& f :
       fs::directory_iterator(fs::path(LF_TEST_DATA_DIR) / "../../examples" / folder))
    fs::copy_file(f.path(), dir / f.path().filename());
  test::write_file((dir / "NAME.INC").string(), "1\n" + stem + "\n");
  if (!l7.empty()) test::write_file((dir / (stem + ".L7")).string(), l7);
  const fs::path here = fs::current_path();
  fs::current_path(dir);
  test::capture_printing();
  int32_t convergent = -1;
  newlf(convergent);
  fs::current_path(here);
  return convergent;
}

TEST(WholeCase, DcLinkBalancesAtBothEnds) {
  fs::path dir;
  ASSERT_EQ(solve_example("dclink", "DCLINK", dir), 1);
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
  EXPECT_EQ(test::file_lines((dir / "DCLINK.LP4").string()).size(), 10u);
  EXPECT_EQ(test::file_lines((dir / "DCLINK.nP4").string()).size(), 20u);
}

TEST(WholeCase, AreasReachTheirSchedules) {
  fs::path dir;
  ASSERT_EQ(solve_example("areas", "AREAS", dir), 1);
  const auto tables = std::count(test::printed.begin(), test::printed.end(),
                                 "               ***** AREA  INTERCHANGE RESULTS *****");
  EXPECT_GE(tables, 2);
  EXPECT_LE(tables, 10);
  EXPECT_EQ(adjflag, 0);
  for (int32_t i = 2; i <= 3; ++i)
    EXPECT_LE(std::fabs(LL7.p_schedule[i] - AREA.PACT[LL7.area_no[i]]), LL7.tolerance[i]);
  EXPECT_GT(L5.P[regulating_generator(2)], 1.0);  // east's generator moved up to export
  EXPECT_EQ(test::file_lines((dir / "AREAS.LP7").string()).size(), 3u);
}

TEST(WholeCase, MissingRegulatingGeneratorEndsAtTheLimit) {
  fs::path dir;
  const int32_t convergent = solve_example("areas", "AREAS", dir,
                                           "1 1 'WEST' 2 -1.0 10.0 4.0\n"
                                           "1 2 'EAST' 3 0.5 0.005 4.0\n"
                                           "1 3 'HILLS' 6 0.5 0.005 4.0\n");
  EXPECT_EQ(convergent, 1);
  const auto& p = test::printed;
  EXPECT_EQ(std::count(p.begin(), p.end(), "  P Q Decoupled Iterative Process"), 11);
  EXPECT_EQ(std::count(p.begin(), p.end(), "               ***** AREA  INTERCHANGE RESULTS *****"),
            10);
  EXPECT_EQ(std::count(p.begin(), p.end(),
                       "   Area No.=  3   Regulating GeneratorHILL-LOAD        "
                       "     Is not Exist !"),
            10);
  const auto limit = std::find(p.begin(), p.end(), "The Number Of Area Adjustment Hit Its Limit");
  ASSERT_NE(limit, p.end());
  EXPECT_EQ(*(limit + 1), "Area Interchange Will Not Be Readjusted");
}

}  // namespace
}  // namespace lf

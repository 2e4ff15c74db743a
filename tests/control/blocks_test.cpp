// The 52 blocks against their definitions, in the steady-state form (mode 1)
// and, where it differs, the time-step form: most of them as rows of
// tests/data/blocks.txt, sequences, state and warnings here.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "common/files.hpp"
#include "control/blockbench.hpp"

namespace lf::test {
namespace {

// Each row of tests/data/blocks.txt runs the block once on a fresh bench.
TEST(Blocks, OutputAndDerivativeOfEveryRow) {
  for (const std::string& line : file_lines(fs::path(LF_TEST_DATA_DIR) / "blocks.txt")) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream row(line);
    std::string what, field;
    std::getline(row, what, '|');
    int32_t type = 0, mode = 0;
    double dt = 0, y = 0, dy = 0;
    std::getline(row, field, '|');
    std::istringstream(field) >> type >> mode >> dt;
    std::getline(row, field, '|');
    std::vector<double> par;
    std::istringstream pars(field);
    for (double v; pars >> v;) par.push_back(v);
    std::getline(row, field, '|');
    Io io;
    std::istringstream ios(field);
    for (std::string kv; ios >> kv;) {
      const std::string k = kv.substr(0, kv.find('='));
      const double v = std::stod(kv.substr(kv.find('=') + 1));
      double* const slot[] = {&io.x1, &io.x2, &io.dx1, &io.dx2, &io.y, &io.yo, &io.dyo};
      const char* const names[] = {"x1", "x2", "dx1", "dx2", "y", "yo", "dyo"};
      for (int n = 0; n < 7; ++n)
        if (k == names[n]) *slot[n] = v;
    }
    std::getline(row, field);
    std::istringstream(field) >> y >> dy;
    bench_reset();
    COMM7.DT = dt;
    NOST1.KSTEP = dt > 0 ? 1 : 0;
    const auto [got_y, got_dy] = run_block(type, mode, par, io);
    EXPECT_NEAR(got_y, y, 1e-6) << what;
    EXPECT_NEAR(got_dy, dy, 1e-6) << what;
    EXPECT_EQ(UDXY.X1[2], got_y) << what << ": the output reaches the linked block";
  }
}

TEST(Blocks, StateKeptForTheNextPass) {
  // HOLD keeps its input for the next pass; FILT keeps y' and y''.
  bench_reset();
  run_block(49, 1, {}, {.x1 = 0.3, .dx2 = 0.2, .yo = 0.7});
  EXPECT_EQ(UDXY.YO[1], 0.3);
  EXPECT_EQ(UDXY.DYO[1], 0.2);
  bench_reset();
  COMM7.DT = 0.2;
  run_block(51, 0, {1, 1, 1}, {.x1 = 1});
  EXPECT_NEAR(NU1.FS1N[1], 0.1 / 1.11, 1e-12);
  EXPECT_NEAR(NU1.FS2N[1], (1 - 0.1 / 1.11) - 0.01 / 1.11, 1e-12);
  // In a predictor step a comparing block hands on what it holds.
  bench_reset();
  NNU1.IPRED = 1;
  EXPECT_EQ(run_block(12, 1, {}, {.x1 = 1, .x2 = 2, .y = 7}).first, 7);
}

TEST(Blocks, TimersAndLatches) {
  struct Seq {
    const char* what;
    int32_t type;
    std::vector<double> par;
    Io io;
    std::vector<double> y;  // the output of three passes in a row
  };
  const std::vector<Seq> seqs = {
      {"TDLY", 21, {0.3}, {.x1 = 1}, {0, 0, 1}},
      {"PULS", 27, {0.2}, {.x1 = 1}, {1, 1, 0}},
      {"TON", 43, {0.2}, {.x1 = 1}, {0, 0, 1}},
      {"TMAX", 52, {}, {.x1 = 1, .x2 = 0.15}, {0, 0, 1}},
  };
  for (const Seq& s : seqs) {
    bench_reset();
    COMM7.DT = 0.1;
    NOST1.KSTEP = 1;
    for (double want : s.y) EXPECT_EQ(run_block(s.type, 0, s.par, s.io).first, want) << s.what;
  }
  // TON resets when its input falls.
  run_block(43, 0, {0.2}, {.x1 = 0});
  EXPECT_EQ(NU1.LATCH[1], 0);
  // CNT counts a pulse before the time A in the time-step form, nothing in
  // the steady state.
  bench_reset();
  COMM7.DT = 0.1;
  EXPECT_EQ(run_block(47, 0, {1, 5}, {.x1 = 1, .x2 = 0.5}).first, 1);
  EXPECT_EQ(run_block(47, 1, {1, 5}, {.x1 = 1, .x2 = 0.5}).first, 0);
}

TEST(Blocks, AngleOfAPoint) {
  struct {
    double x, y, ang;
  } const angles[] = {{-1, 0, 3.1415926535},
                      {1, -1, std::atan(-1.0) + 6.283185307},
                      {0, -1, 4.71238898025},
                      {0, 1, 1.57079632675},
                      {0, 0, 0}};
  for (const auto& a : angles) {
    double ang = -9;
    dger(a.x, a.y, ang);
    EXPECT_DOUBLE_EQ(ang, a.ang) << a.x << " " << a.y;
  }
}

// The table's parameter counts, the step after block 41 and a type outside
// the table, which runs as block 1 and skips 7 parameters.
TEST(Blocks, ParameterCountsAndSteps) {
  const struct {
    int32_t type, npa, step;
  } rows[] = {{1, 7, 7},  {3, 4, 4},  {7, 2, 2},  {9, 0, 0},  {17, 3, 3}, {31, 6, 6},
              {33, 5, 5}, {41, 3, 2}, {51, 3, 3}, {52, 0, 0}, {0, 0, 7},  {53, 0, 7}};
  for (const auto& r : rows) {
    bench_reset();
    EXPECT_EQ(blknpa(r.type), r.npa) << r.type;
    int32_t p = 1, nt = 0, nf = 0;
    blrun(r.type, 1, p, 1, nt, nf);
    EXPECT_EQ(p, 1 + r.step) << r.type;
  }
  EXPECT_EQ(blkslots(0), "A");
  // Type 60 evaluates as DY1.
  bench_reset();
  EXPECT_EQ(run_block(60, 1, {2, 0, 4, 1, 3, 10, -10}, {.x1 = 1}).first, 1.5);
}

TEST(Blocks, OutputHeldSignedAndOnPorts) {
  bench_reset();
  UDB.LNKCNT[1] = 2;
  UDB.LNKX1[1] = -2;  // inverted into X1 of block 2
  UDB.LNKX2[2] = 3;   // as it is into X2 of block 3
  blsub(1, 0.5, 0.25, 1);
  EXPECT_EQ(UDXY.X1[2], -0.5);
  EXPECT_EQ(UDXY.DX1[2], -0.25);
  EXPECT_EQ(UDXY.X2[3], 0.5);
  EXPECT_EQ(UDXY.DX2[3], 0.25);
  // A held block keeps and passes on its initial value in the load flow,
  // but stores the derivative; the time-step form is not held.
  UDB.BLKHLD[1] = 1;
  UDXY.Y[1] = 2;
  blsub(1, 9, 0.5, 1);
  EXPECT_EQ(UDXY.Y[1], 2);
  EXPECT_EQ(UDXY.DY[1], 0.5);
  EXPECT_EQ(UDXY.X2[3], 2);
  blsub(0, 9, 0.5, 1);
  EXPECT_EQ(UDXY.Y[1], 9);
}

// The rows of tests/data/block_warnings.txt.
TEST(Blocks, WarningsOnTheErrorList) {
  for (const std::string& row : file_lines(fs::path(LF_TEST_DATA_DIR) / "block_warnings.txt")) {
    if (row.empty() || row[0] == '#') continue;
    std::istringstream fields(row);
    std::string head, pars, x, text;
    std::getline(fields, head, '|'), std::getline(fields, pars, '|');
    std::getline(fields, x, '|'), std::getline(fields, text, '|');
    int32_t type = 0, mode = 0;
    std::istringstream(head) >> type >> mode;
    std::vector<double> par;
    std::istringstream in(pars);
    for (double v; in >> v;) par.push_back(v);
    bench_reset();
    errlist_open();
    COMM7.DT = 0.1;
    run_block(type, mode, par, {.x1 = std::stod(x)});
    run_block(type, mode, par, {.x1 = std::stod(x)});  // written at every pass
    errlist_close();
    EXPECT_EQ(read_file("LFERR.LIS"),
              " ****** Operation Error Information ******\n" + text + "\n" + text + "\n")
        << row;
  }
  // The filter warns in the time-step form only; a guarded RAMP still
  // gives its limits.
  bench_reset();
  errlist_open();
  run_block(51, 1, {0, 1, 1}, {.x1 = 1});
  errlist_close();
  EXPECT_EQ(read_file("LFERR.LIS"), " ****** Operation Error Information ******\n");
}

TEST(Blocks, CompactTextOfAReal) {
  const struct {
    int32_t n;
    double v;
    const char* text;
  } rows[] = {{8, 1.5, "     1.5"},     {8, 0.5, "      .5"},        {8, -0.5, "     -.5"},
              {8, 0, "      0."},       {8, 123.456789, "123.4568"}, {8, 1e12, "99999999"},
              {8, -1e12, "-9999999"},   {8, 12345678, "12345678"},   {4, 1.0, "  1."},
              {8, 1.040877, "1.040877"}};
  for (const auto& r : rows) EXPECT_EQ(rtoa(r.n, r.v), r.text) << r.v;
}

}  // namespace
}  // namespace lf::test

// The 52 blocks against their definitions, family by family, in the
// steady-state form (mode 1) and, where it differs, the time-step form.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "common/files.hpp"
#include "control/blockbench.hpp"

namespace lf::test {
namespace {

struct Case {
  const char* what;
  int32_t type, mode;
  std::vector<double> par;
  Io io;
  double y, dy;
  double dt = 0;
};

void check(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    bench_reset();
    COMM7.DT = c.dt;
    NOST1.KSTEP = c.dt > 0 ? 1 : 0;
    const auto [y, dy] = run_block(c.type, c.mode, c.par, c.io);
    EXPECT_NEAR(y, c.y, 1e-6) << c.what;
    EXPECT_NEAR(dy, c.dy, 1e-6) << c.what;
    EXPECT_EQ(UDXY.X1[2], y) << c.what << ": the output reaches the linked block";
  }
}

TEST(Blocks, Dynamic) {
  check({
      {"DY1 static gain A E / C", 1, 1, {2, 0, 4, 1, 3, 10, -10}, {.x1 = 1}, 1.5, 0},
      {"DY1 without C integrates", 1, 1, {2, 0, 0, 4, 3, 10, -10}, {.x1 = 1, .y = 0.5}, 2.0, 0},
      {"DY1 clamped at F", 1, 1, {2, 0, 4, 1, 3, 1, -10}, {.x1 = 1}, 1.0, 0},
      {"DY1 time step",
       1,
       0,
       {1, 0, 1, 1, 1, 10, -10},
       {.x1 = 1},
       0.05 / 1.05,
       1 - 0.05 / 1.05,
       0.1},
      {"DIFF steady", 2, 1, {2}, {.dx1 = 0.5}, 0, 0},
      {"DIFF time step", 2, 0, {2}, {.dx1 = 0.5, .yo = 0.3}, 1.0, 7.0, 0.1},
      {"INTG adds E X", 3, 1, {5, 0.5, 10, -10}, {.x1 = 2, .y = 1}, 2.0, 0},
      {"INTG stops at F", 3, 1, {5, 0.5, 1.5, -10}, {.x1 = 2, .y = 1}, 1.5, 0},
      {"INTG zero input", 3, 1, {5, 0.5, 10, -10}, {.y = 0.7}, 0.7, 0},
      {"INTG time step", 3, 0, {5, 0.5, 10, -10}, {.x1 = 2, .yo = 0.3, .dyo = 1}, 0.42, 0.2, 0.2},
      {"DY2 gain", 4, 1, {2, 3, 10, -10}, {.x1 = 1}, 3, 0},
      {"DY2 time step",
       4,
       0,
       {2, 3, 10, -10},
       {.x1 = 1},
       0.15 / 1.05,
       1.5 - 0.5 * 0.15 / 1.05,
       0.2},
      {"HOLD gives the last pass", 49, 1, {}, {.x1 = 0.3, .yo = 0.7, .dyo = 0.1}, 0.7, 0.1},
      {"FILT steady", 51, 1, {1, 1, 2}, {.x1 = 1.5}, 3, 0},
      {"FILT time step", 51, 0, {1, 1, 1}, {.x1 = 1}, 0.01 / 1.11, 0.1 / 1.11, 0.2},
  });
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
}

TEST(Blocks, StaticArithmetic) {
  const double e = std::exp(1.0);
  check({
      {"BIAS", 5, 1, {0.5}, {.x1 = 2, .dx1 = 1}, 1.5, 1},
      {"EXPF", 6, 1, {2, 0.5}, {.x1 = 2, .dx1 = 1}, 2 * e, e},
      {"LIMT keeps DX at the limit", 7, 1, {1, -1}, {.x1 = 2, .dx1 = 0.5}, 1, 0.5},
      {"CONS", 8, 1, {4}, {.x1 = 9}, 4, 0},
      {"DIVD", 9, 1, {}, {.x1 = 3, .x2 = 2, .dx1 = 1}, 1.5, 0.5},
      {"DIVD by a tiny X2", 9, 1, {}, {.x1 = 3, .x2 = 1e-22}, 0, 0},
      {"SUMK", 10, 1, {2, 3}, {.x1 = 1, .x2 = 2, .dx1 = 1, .dx2 = 1}, 8, 5},
      {"MULT", 11, 1, {2}, {.x1 = 3, .x2 = 4, .dx1 = 1}, 24, 8},
      {"RAMP middle", 14, 1, {0, 2, 10, -10}, {.x1 = 1, .dx1 = 1}, 0, 10},
      {"RAMP below A", 14, 1, {0, 2, 10, -10}, {.x1 = -1}, -10, 0},
      {"RAMP above B", 14, 1, {0, 2, 10, -10}, {.x1 = 3}, 10, 0},
      {"TSWT before the time", 15, 1, {1}, {.x1 = 1, .x2 = 2}, 1, 0},
      {"TSWT at the time", 15, 1, {0}, {.x1 = 1, .x2 = 2}, 2, 0},
      {"PSWT A >= 0", 16, 1, {0}, {.x1 = 1, .x2 = 2}, 2, 0},
      {"PSWT A < 0", 16, 1, {-1}, {.x1 = 1, .x2 = 2}, 1, 0},
      {"POWR", 17, 1, {1, 1, 2}, {.x1 = 1, .x2 = 2, .dx1 = 1}, 9, 6},
      {"SINF", 18, 1, {}, {.x1 = 0.5, .dx1 = 2}, std::sin(0.5), 2 * std::cos(0.5)},
      {"COSF", 19, 1, {}, {.x1 = 0.5, .dx1 = 2}, std::cos(0.5), -2 * std::sin(0.5)},
      {"ACOS", 20, 1, {}, {.x1 = 0.5, .dx1 = 1}, std::acos(0.5), -1 / std::sqrt(0.75)},
      {"ACOS cut to 1", 20, 1, {}, {.x1 = 2}, 0, 0},
      {"MAGN", 22, 1, {}, {.x1 = 3, .x2 = 4, .dx1 = 1, .dx2 = 1}, 5, 7.0 / 5},
      {"SQR1 of X1 only", 28, 1, {}, {.x1 = 0.6, .x2 = 5, .dx1 = 1}, 0.8, -0.75},
      {"SQUA", 29, 1, {}, {.x1 = 3, .dx1 = 1}, 9, 6},
      {"LINE inside", 30, 1, {0, 2, 1, 3}, {.x1 = 1, .dx1 = 1}, 2, 1},
      {"LINE outside", 30, 1, {0, 2, 1, 3}, {.x1 = 3}, 0, 0},
      {"ML negative", 31, 1, {1, 2, 3, 1, 3, 4}, {.x1 = -1}, 0, 0},
      {"ML first segment", 31, 1, {1, 2, 3, 1, 3, 4}, {.x1 = 0.5, .dx1 = 1}, 0.5, 1},
      {"ML second segment", 31, 1, {1, 2, 3, 1, 3, 4}, {.x1 = 1.5, .dx1 = 1}, 2, 2},
      {"ML break point: the later segment", 31, 1, {1, 2, 3, 1, 3, 4}, {.x1 = 2, .dx1 = 1}, 3, 1},
      {"ML flat behind C", 31, 1, {1, 2, 3, 1, 3, 4}, {.x1 = 4}, 4, 0},
      {"FEX first", 33, 1, {0.2, 0.8, 0.5, 1, 2}, {.x1 = 0.1, .dx1 = 1}, 0.95, -0.5},
      {"FEX middle lacks DX1", 33, 1, {0.2, 0.8, 0.5, 1, 2}, {.x1 = 0.6, .dx1 = 3}, 0.8, -0.75},
      {"FEX last", 33, 1, {0.2, 0.8, 0.5, 1, 2}, {.x1 = 0.9}, 0.2, -2},
      {"ATAN", 45, 1, {}, {.x1 = 0.5, .dx1 = 1}, std::atan(0.5), 1 / 0.75},
      {"SQRT", 50, 1, {1, 2}, {.x1 = 1, .x2 = 4, .dx1 = 1, .dx2 = 1}, 3, 0.5},
  });
}

TEST(Blocks, LogicWithHold) {
  check({
      {"MAXV", 12, 1, {}, {.x1 = 1, .x2 = 2, .dx2 = 3}, 2, 3},
      {"MINV", 13, 1, {}, {.x1 = 1, .x2 = 2, .dx1 = 3}, 1, 3},
      {"GATE open", 23, 1, {0, 1}, {.x1 = 4, .x2 = 0.5, .dx1 = 1}, 4, 1},
      {"GATE shut at B", 23, 1, {0, 1}, {.x1 = 4, .x2 = 1}, 0, 0},
      {"NGAT shut", 24, 1, {0, 1}, {.x1 = 4, .x2 = 0.5}, 0, 0},
      {"NGAT open", 24, 1, {0, 1}, {.x1 = 4, .x2 = 2}, 4, 0},
      {"AND2", 25, 1, {1, 1}, {.x1 = 1, .x2 = 0}, 0, 0},
      {"OR2", 26, 1, {1, 1}, {.x1 = 1, .x2 = 0}, 1, 0},
      {"LNLO", 34, 1, {0, 1}, {.x1 = 2, .x2 = 1}, 1, 0},
      {"LNHI", 35, 1, {0, 1}, {.x1 = 2, .x2 = 1}, 0, 0},
      {"LNLX", 36, 1, {0, 1}, {.x1 = 2, .x2 = 1}, 0, 0},
      {"LNHX", 37, 1, {0, 1}, {.x1 = 2, .x2 = 1}, 1, 0},
      {"BAND inside", 38, 1, {1, 1, -1, 1}, {.x1 = 0.5, .x2 = 0}, 1, 0},
      {"BAND outside", 38, 1, {1, 1, -1, 1}, {.x1 = 0.5, .x2 = 2}, 0, 0},
      {"BANX inside", 39, 1, {1, 1, -1, 1}, {.x1 = 0, .x2 = 0.5}, 1, 0},
      {"CMPR equal", 42, 1, {}, {.x1 = 1, .x2 = 1}, 1, 0},
      {"DEAD inside the band", 44, 1, {1, 0.1}, {.x1 = 1.05, .dx1 = 1}, 0, 0},
      {"DEAD above", 44, 1, {1, 0.1}, {.x1 = 1.5, .dx1 = 1}, 0.4, 1},
      {"DEAD below", 44, 1, {1, 0.1}, {.x1 = 0.5, .dx1 = 1}, -0.4, 1},
  });
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

TEST(Blocks, Geometry) {
  check({
      {"PACK", 46, 1, {}, {.x1 = 3, .x2 = 4}, 500000 + 0.1 * std::atan(4.0 / 3), 0},
      {"CMPV of a packed phasor",
       32,
       1,
       {1, 0, 0, 0},
       {.x1 = 100000 + 0.1 * std::atan(0.8 / 0.6)},
       1,
       0},
      {"MHO inside", 40, 1, {2, 0}, {.x1 = 1, .x2 = 0.5}, 1, 0},
      {"MHO outside", 40, 1, {2, 0}, {.x1 = 3, .x2 = 0}, 0, 0},
      {"CIRC inside", 41, 1, {2, 5, 5}, {.x1 = 5.5, .x2 = 5}, 1, 0},
      {"CIRC outside", 41, 1, {2, 5, 5}, {.x1 = 7, .x2 = 5}, 0, 0},
      {"ANGL X1 < 0, X2 = 0 gives 0", 48, 1, {}, {.x1 = -1, .x2 = 0}, 0, 0},
      {"ANGL second quadrant", 48, 1, {}, {.x1 = -1, .x2 = 1}, std::atan(-1.0) + 3.14159265, 0},
      {"ANGL on the axis", 48, 1, {}, {.x1 = 0, .x2 = -1}, -1.570796327, 0},
  });
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

TEST(Blocks, WarningsOnTheErrorList) {
  const struct {
    int32_t type, mode;
    std::vector<double> par;
    double x;
    const char* text;
  } rows[] = {
      {1, 1, {1, 0, 1, 0, 1, 9, -9}, 1, "  Warning: Block DY1 Para. D=0 "},
      {3, 1, {0, 1, 9, -9}, 1, "  Warning: Block INTG Para. D=0 "},
      {4, 1, {0, 1, 9, -9}, 1, "  Warning: Block DY2 Para. D=0 "},
      {14, 1, {1, 1, 1, 0}, 5, "  Warning: Block RAMP Para. A=B "},
      {30, 1, {1, 1, 1, 0}, 5, "  Warning: Block LINE Para. A=B "},
      {31, 1, {0, 1, 2, 1, 1, 1}, 5, "  Warning: Block ML Para. A=0 "},
      {31, 1, {1, 1, 2, 1, 1, 1}, 5, "  Warning: Block ML Para. A=B "},
      {31, 1, {1, 2, 2, 1, 1, 1}, 5, "  Warning: Block ML Para. B=C "},
      {33, 1, {0, 1, 0, 0.25, 0}, 0.5, "  Warning: Block FEX Para. D=X*X "},
      {51, 0, {0, 1, 1}, 1, "  Warning: Block FILT Para. A=0 "},
  };
  for (const auto& r : rows) {
    bench_reset();
    errlist_open();
    COMM7.DT = 0.1;
    run_block(r.type, r.mode, r.par, {.x1 = r.x});
    run_block(r.type, r.mode, r.par, {.x1 = r.x});  // written at every pass
    errlist_close();
    const std::string line = std::string(r.text) + "\n";
    EXPECT_EQ(read_file("LFERR.LIS"), " ****** Operation Error Information ******\n" + line + line)
        << r.text;
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

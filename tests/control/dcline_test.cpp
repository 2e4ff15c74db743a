#include "control/dcline.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "common/golden.hpp"
#include "report/dcreports.hpp"
#include "report/fixture.hpp"

namespace lf {
namespace {

constexpr double kPi = 3.14159265358979323846;

// A 1000 MW, 500 kV line between a 230 kV and a 345 kV bus, resistances in
// ohm: pole 1 + 10 line + 1 pole + 0.5 and 0.5 electrodes.
void set_line(int32_t k, int32_t op_mode, int32_t i = 1, int32_t j = 2) {
  Arr<int32_t>* const cols[] = {&NL4.I,        &NL4.J,        &NL4.No,     &NL4.LOSSAREA,
                                &NL4.i_bridge, &NL4.j_bridge, &NL4.op_mode};
  const int32_t vals[] = {i, j, k, 3, 2, 2, op_mode};
  for (int n = 0; n < 7; ++n) (*cols[n])[k] = vals[n];
  for (auto [a, v] : {std::pair{&NL4.rpi_ohm, 1.0}, {&NL4.lpi_mh, 10.0},     {&NL4.rpj_ohm, 1.0},
                      {&NL4.lpj_mh, 10.0},          {&NL4.rl_ohm, 10.0},     {&NL4.ll_mh, 500.0},
                      {&NL4.rei_ohm, 0.5},          {&NL4.rej_ohm, 0.5},     {&NL4.lsi_mh, 100.0},
                      {&NL4.lsj_mh, 100.0},         {&NL4.vdrate_kv, 500.0}, {&NL4.vhi_kv, 230.0},
                      {&NL4.vli_kv, 200.0},         {&NL4.sti_mva, 600.0},   {&NL4.xti_perc, 15.0},
                      {&NL4.vtimax_kv, 253.0},      {&NL4.vtimin_kv, 207.0}, {&NL4.vhj_kv, 345.0},
                      {&NL4.vlj_kv, 200.0},         {&NL4.stj_mva, 600.0},   {&NL4.xtj_perc, 15.0},
                      {&NL4.vtjmax_kv, 379.5},      {&NL4.vtjmin_kv, 310.5}, {&NL4.qci_mvar, 300.0},
                      {&NL4.qcj_mvar, 250.0},       {&NL4.pd1_mw, 1000.0},   {&NL4.vd1_kv, 500.0},
                      {&NL4.a1min_d, 5.0},          {&NL4.a10_d, 15.0},      {&NL4.gam1min_d, 15.0},
                      {&NL4.gam10_d, 18.0},         {&NL4.pd2_mw, 0.0},      {&NL4.vd2_kv, 0.0},
                      {&NL4.a2min_d, 0.0},          {&NL4.a20_d, 0.0},       {&NL4.gam2min_d, 0.0},
                      {&NL4.gam20_d, 0.0}})
    (*a)[k] = v;
}

void start_case(int32_t nlines) {
  test::reset_store();
  LFINF.base_mva = 100;
  LFINF.ndcline = nlines;
  for (int32_t b = 1; b <= 4; ++b) {
    NEW[b] = b;
    test::set_voltage(b, b == 2 ? 0.98 : 1.0, 0);
  }
  for (Arr<double>* a : {&DCLFOP.id20, &DCLFOP.vd10i, &DCLFOP.vd10j, &DCLFOP.vd20i, &DCLFOP.vd20j,
                         &DCLFOP.a10r_d, &DCLFOP.a20r_d, &DCLFOP.vaci, &DCLFOP.vacj})
    a->fill(0);
}

// One line of mode 10 with the given tap voltage ranges, solved once.
void solve_limited(double timax, double timin, double tjmax, double tjmin) {
  start_case(1);
  set_line(1, 10);
  NL4.vtimax_kv[1] = timax;
  NL4.vtimin_kv[1] = timin;
  NL4.vtjmax_kv[1] = tjmax;
  NL4.vtjmin_kv[1] = tjmin;
  dcval();
  dctran();
}

// The converter of one pole from its textbook relations: the rectifier
// holds its DC voltage and firing angle, the inverter its extinction angle;
// each end's AC power equals its DC power, and its reactive power follows
// from the power factor Vd / E of a bridge with commutating reactance.
struct Pole {
  double tki, tkj, vdi, vdj, pi, qi, pj, qj;
};
Pole textbook(double vdi, double id, double alpha, double gamma, double rdc, double xc) {
  Pole p;
  const double ei = (3 / kPi * xc * id + vdi) / std::cos(alpha * kPi / 180);
  p.vdi = vdi;
  p.vdj = vdi - id * rdc;
  const double ej = (3 / kPi * xc * id + p.vdj) / std::cos(gamma * kPi / 180);
  p.tki = 1.0 / ei;
  p.tkj = 1.0 / ej;
  p.pi = -id * p.vdi;
  p.pj = id * p.vdj;
  p.qi = -id * p.vdi * std::tan(std::acos(p.vdi / ei));
  p.qj = -id * p.vdj * std::tan(std::acos(p.vdj / ej));
  return p;
}

// The remaining per-unit data show in the full dump of the report test.
TEST(DcLine, AcBaseVoltageByTheClassOfTheTransformersHighVoltage) {
  for (auto [kv, base] : {std::pair{40.0, 37.0},
                          {40.5, 115.0},
                          {150.0, 115.0},
                          {230.0, 230.0},
                          {370.0, 345.0},
                          {440.0, 400.0},
                          {550.0, 525.0},
                          {850.0, 765.0},
                          {851.0, 1150.0}}) {
    start_case(1);
    set_line(1, 10);
    NL4.vhi_kv[1] = kv;
    dcval();
    EXPECT_EQ(DCBASE.vbi[1], base) << kv;
  }
}

TEST(DcLine, ConverterAndBalanceByMode) {
  const double r_pole = 1.0 / 2500, r_line = 10.0 / 2500, r_earth = 0.5 / 2500;
  const struct {
    int32_t mode;
    double rdc;
  } modes[] = {{10, r_pole + r_line + r_pole + 2 * r_earth},
               {11, 2 * r_line},
               {12, 0.5 * r_line + 2 * r_pole + 2 * r_earth},
               {20, r_line}};
  for (const auto& m : modes) {
    SCOPED_TRACE(m.mode);
    start_case(1);
    test::set_voltage(2, 1.0, 0);  // both taps inside their ranges in every mode
    set_line(1, m.mode);
    if (m.mode == 20) {  // a second pole of its own: 600 MW at 480 kV
      NL4.pd2_mw[1] = 600;
      NL4.vd2_kv[1] = 480;
      NL4.a20_d[1] = 16;
      NL4.gam20_d[1] = 19;
    }
    dcval();
    dctran();
    const Pole p = textbook(1.0, 10, 15, 18, m.rdc, 0.016);
    const double got[] = {DCLFOP.tk1i[1], DCLFOP.tk1j[1], DCLFOP.vd10i[1], DCLFOP.vd10j[1],
                          DCLFOP.pd1i[1], DCLFOP.qd1i[1], DCLFOP.pd1j[1],  DCLFOP.qd1j[1]};
    const double want[] = {p.tki, p.tkj, p.vdi, p.vdj, p.pi, p.qi, p.pj, p.qj};
    for (int n = 0; n < 8; ++n) EXPECT_NEAR(got[n], want[n], 1e-8) << n;
    double pa = p.pi, qa = p.qi + 3, pb = p.pj, qb = p.qj + 2.5, loss = 100 * m.rdc;
    if (m.mode == 20) {
      const Pole p2 = textbook(0.96, 6 / 0.96, 16, 19, m.rdc, 0.016);
      EXPECT_NEAR(DCLFOP.vd20j[1], p2.vdj, 1e-8);
      EXPECT_NEAR(DCLFOP.qd2j[1], p2.qj, 1e-8);
      pa += p2.pi;
      qa += p2.qi + 3;  // one filter per pole
      pb += p2.pj;
      qb += p2.qj + 2.5;
      loss += (6 / 0.96) * (6 / 0.96) * m.rdc;
    } else {
      EXPECT_EQ(DCLFOP.pd2i[1], 0);
    }
    EXPECT_NEAR(VPQ.PDC[1], pa, 1e-8);
    EXPECT_NEAR(VPQ.QDC[1], qa, 1e-8);
    EXPECT_NEAR(VPQ.PDC[2], pb, 1e-8);
    EXPECT_NEAR(VPQ.QDC[2], qb, 1e-8);
    // What the rectifier draws, the inverter delivers less the I^2 R loss.
    EXPECT_NEAR(VPQ.PDC[1] + VPQ.PDC[2], -loss, 1e-8);
  }
}

TEST(DcLine, TapLimits) {
  const double rdc = 13.0 / 2500, c = 3 / kPi * 0.016 * 10;
  const double ca = std::cos(15 * kPi / 180), cg = std::cos(18 * kPi / 180);

  // Rectifier on its upper limit: its DC voltage gives, the inverter follows.
  solve_limited(200, 150, 379.5, 250);
  EXPECT_EQ(DCLFOP.tk1i[1], DCLFPU.tkimax[1]);
  double vdi = 1.0 / DCLFPU.tkimax[1] * ca - c;
  EXPECT_NEAR(DCLFOP.vd10i[1], vdi, 1e-8);
  EXPECT_NEAR(DCLFOP.tk1j[1], 0.98 / ((c + vdi - 10 * rdc) / cg), 1e-8);
  EXPECT_EQ(DCLFOP.a10r_d[1], 15);

  // Inverter on its upper limit: its DC voltage gives, the rectifier follows.
  solve_limited(253, 150, 300, 200);
  EXPECT_EQ(DCLFOP.tk1j[1], DCLFPU.tkjmax[1]);
  double vdj = 0.98 / DCLFPU.tkjmax[1] * cg - c;
  EXPECT_NEAR(DCLFOP.vd10j[1], vdj, 1e-8);
  EXPECT_NEAR(DCLFOP.tk1i[1], 1.0 / ((c + vdj + 10 * rdc) / ca), 1e-8);

  // Both on limits: the firing angle gives, and returns on the next call.
  solve_limited(200, 150, 300, 200);
  EXPECT_EQ(DCLFOP.tk1i[1], DCLFPU.tkimax[1]);
  EXPECT_EQ(DCLFOP.tk1j[1], DCLFPU.tkjmax[1]);
  vdj = 0.98 / DCLFPU.tkjmax[1] * cg - c;
  vdi = vdj + 10 * rdc;
  const double alpha = std::acos((c + vdi) / (1.0 / DCLFPU.tkimax[1])) * 180 / kPi;
  EXPECT_NEAR(DCLFOP.a10r_d[1], alpha, 1e-6);
  EXPECT_GT(std::fabs(DCLFOP.a10r_d[1] - 15), 1);
  EXPECT_NEAR(DCLFOP.pd1i[1], -10 * vdi, 1e-8);
  DCLFPU.tkimax[1] = DCLFPU.tkjmax[1] = 2;
  dctran();
  EXPECT_EQ(DCLFOP.a10r_d[1], 15);
}

TEST(DcLine, VoltageWindowAndSharedBus) {
  start_case(2);
  set_line(1, 10);
  set_line(2, 11, 1, 3);  // a second line from the same rectifier bus
  dcval();
  dctran();
  const double p = DCLFOP.pd1i[1] + DCLFOP.pd1i[2];
  EXPECT_NEAR(VPQ.PDC[1], p, 1e-8);
  EXPECT_NEAR(VPQ.PDC[3], DCLFOP.pd1j[2], 1e-8);

  // Outside 0.8 to 1.2 the last operating point stands; 1.2 in single
  // precision still counts as inside.
  for (double v : {0.79, 1.2000001, 1.2000000476837158}) {
    test::set_voltage(1, v, 0);
    dctran();
    EXPECT_EQ(DCLFOP.vaci[1], v == 1.2000000476837158 ? v : 1.0) << v;
  }
}

TEST(DcLine, ReportFiles) {
  start_case(2);
  set_line(1, 10);
  set_line(2, 30, 3, 4);  // a mode outside the table carries the line before's values
  NL4.LOSSAREA[2] = 0;
  NL4.pd1_mw[2] = 500;
  NL4.vhi_kv[2] = 500;
  NL4.vhj_kv[2] = 120;
  NL4.vtimax_kv[2] = 600;
  NL4.vtimin_kv[2] = 400;
  NL4.vtjmax_kv[2] = 140;
  NL4.vtjmin_kv[2] = 100;
  test::set_voltage(3, 1.02, 0);
  dcval();
  dctran();
  // The report files stand in control/dclines.nP4 and .LP4.
  test::ScratchFolder dir;
  const CaseName stem(dir / "C");
  nwlp4(stem);
  wlp4_new(stem);
  test::expect_golden(test::read_file(dir / "C.nP4"), "control/dclines.nP4");
  test::expect_golden(test::read_file(dir / "C.LP4"), "control/dclines.LP4");
}

}  // namespace
}  // namespace lf

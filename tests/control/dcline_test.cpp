#include "control/dcline.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "common/golden.hpp"
#include "report/dcreports.hpp"
#include "report/fixture.hpp"

namespace lf {
namespace {

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

// The operating point of line 1 and the DC injections at buses 1 and 2,
// under a heading.
std::string operating_point(const std::string& what) {
  const std::pair<const char*, Arr<double>*> cols[] = {
      {"tk1i", &DCLFOP.tk1i},   {"tk1j", &DCLFOP.tk1j},   {"vd10i", &DCLFOP.vd10i},
      {"vd10j", &DCLFOP.vd10j}, {"vd20j", &DCLFOP.vd20j}, {"pd1i", &DCLFOP.pd1i},
      {"qd1i", &DCLFOP.qd1i},   {"pd1j", &DCLFOP.pd1j},   {"qd1j", &DCLFOP.qd1j},
      {"pd2i", &DCLFOP.pd2i},   {"qd2j", &DCLFOP.qd2j},   {"a10r_d", &DCLFOP.a10r_d}};
  std::string text = what + "\n";
  char buf[64];
  for (const auto& [name, a] : cols) {
    std::snprintf(buf, sizeof buf, "  %-7s %.12g\n", name, (*a)[1]);
    text += buf;
  }
  for (int32_t b = 1; b <= 2; ++b) {
    std::snprintf(buf, sizeof buf, "  bus %d  P %.12g Q %.12g\n", b, VPQ.PDC[b], VPQ.QDC[b]);
    text += buf;
  }
  return text;
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

// The converters of one pole follow their textbook relations: the rectifier
// holds its DC voltage and firing angle, the inverter its extinction angle,
// each end's AC power equals its DC power and its reactive power follows from
// the power factor Vd / E of a bridge with commutating reactance; what the
// rectifier draws, the inverter delivers less the I^2 R loss of the mode's
// resistance.  A tap on its limit gives up its end's DC voltage; both on
// their limits give up the firing angle, which returns when the limits
// widen.  The operating points stand in control/dcline_points.txt.
TEST(DcLine, OperatingPointByModeAndTapLimit) {
  std::string text;
  for (int32_t mode : {10, 11, 12, 20}) {
    start_case(1);
    test::set_voltage(2, 1.0, 0);  // both taps inside their ranges in every mode
    set_line(1, mode);
    if (mode == 20) {  // a second pole of its own: 600 MW at 480 kV
      NL4.pd2_mw[1] = 600;
      NL4.vd2_kv[1] = 480;
      NL4.a20_d[1] = 16;
      NL4.gam20_d[1] = 19;
    }
    dcval();
    dctran();
    text += operating_point("mode " + std::to_string(mode));
  }
  const struct {
    const char* what;
    double timax, timin, tjmax, tjmin;
  } limits[] = {{"rectifier tap on its upper limit", 200, 150, 379.5, 250},
                {"inverter tap on its upper limit", 253, 150, 300, 200},
                {"both taps on their upper limits", 200, 150, 300, 200}};
  for (const auto& l : limits) {
    start_case(1);
    set_line(1, 10);
    NL4.vtimax_kv[1] = l.timax, NL4.vtimin_kv[1] = l.timin;
    NL4.vtjmax_kv[1] = l.tjmax, NL4.vtjmin_kv[1] = l.tjmin;
    dcval();
    dctran();
    text += operating_point(l.what);
  }
  DCLFPU.tkimax[1] = DCLFPU.tkjmax[1] = 2;
  dctran();
  text += operating_point("both limits widened");
  test::expect_golden(text, "control/dcline_points.txt");
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

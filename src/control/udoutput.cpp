// Model output during and right after the iterations: the raw samples of
// the recorded blocks, their index, and the interface variables.
#include <cstdio>
#include <string>
#include <vector>

#include "control/blocks.hpp"
#include "control/models.hpp"
#include "control/udblock.hpp"
#include "control/udeval.hpp"
#include "control/udmodel.hpp"
#include "control/udoutfile.hpp"
#include "sparse/ymatrix.hpp"
#include "support/fmt.hpp"
#include "support/units.hpp"

namespace lf {

namespace {

// Values recorded per instance and iteration at most.
constexpr int32_t kMaxSamples = 8;

}  // namespace

void make_new(int unit, const std::string& path, FileForm form) {
  if (unit_open(unit, path, FileStatus::Old, form)) unit_close(unit, true);
  unit_open(unit, path, FileStatus::New, form);
}

void udopio() {
  if (NU.udout != 0) make_new(kSampleUnit, kSampleFile, FileForm::Stream);
}

void udclio() {
  if (NU.udout != 0) unit_close(kSampleUnit);
}

void udlpex() {
  if (NU.udout == 0) return;
  float sample[kMaxSamples];
  for (int32_t i = 1; i <= NU.nud; ++i) {
    int32_t n = YP.YPCNT[i];
    if (n == 0) continue;
    if (n > kMaxSamples) YP.YPCNT[i] = n = kMaxSamples;
    for (int32_t k = 1; k <= n; ++k)
      sample[k - 1] = static_cast<float>(UDXY.Y[YP.YPBLK[YP.YPFST[i] + k - 1]]);
    unit_write_bytes(kSampleUnit, sample, sizeof(float) * static_cast<std::size_t>(n));
  }
}

void udwinf() {
  make_new(kTempUnit, "LFUDOUT.INF", FileForm::Unformatted);
  std::vector<unsigned char> rec;
  put_i4(rec, NU.nud);
  put_i4(rec, NU.udout);
  unit_write_record(kTempUnit, rec);
  if (NU.udout != 0) {
    for (const Arr<int32_t>* a : {&YP.YPLOC, &YP.YPCNT, &YP.YPFST, &UDR.UDTYPE}) {
      rec.clear();
      for (int32_t i = 1; i <= NU.nud; ++i) put_i4(rec, (*a)[i]);
      unit_write_record(kTempUnit, rec);
    }
    rec.clear();
    for (int32_t i = 1; i <= NU.nud; ++i)
      for (int32_t k = 0; k < YP.YPCNT[i]; ++k) put_text(rec, YP.YPNAM[YP.YPFST[i] + k].view());
    unit_write_record(kTempUnit, rec);
  }
  unit_close(kTempUnit);
}

void wtmud() {
  const int32_t count = TMPUD.count;
  if (count == 0) return;
  Arr<int32_t>& bus = TMPUD.TMPBUS;
  Arr<int32_t>& code = TMPUD.TMPCOD;
  // One value a bus and code: later duplicates are cleared.
  for (int32_t a = 1; a < count; ++a) {
    if (bus[a] == 0) continue;
    for (int32_t b = a + 1; b <= count; ++b)
      if (bus[b] == bus[a] && code[b] == code[a]) bus[b] = code[b] = 0;
  }
  make_new(kTempUnit, "TMUD.DAT", FileForm::Formatted);
  const auto value = [&](int32_t a) {
    const int32_t i =
        bus[a] >= 1 && static_cast<std::size_t>(bus[a]) <= NEW.size() ? NEW[bus[a]] : 0;
    return BINTFA[code[a] >= 1 && code[a] <= 10 ? code[a] - 1 : 0][i];
  };
  for (int32_t a = 1; a <= count; ++a) {
    if (bus[a] == 0) continue;
    double v[10] = {};
    const int32_t b0 = bus[a];
    for (int32_t b = a; b <= count; ++b) {
      if (bus[b] != b0) continue;
      v[code[b] >= 1 && code[b] <= 10 ? code[b] - 1 : 0] = value(b);
      bus[b] = code[b] = 0;
    }
    std::string line(1, ' ');
    line.append(fmt_i(b0, 3)).append(",");
    for (double x : v) line += rtoa(8, x) + ",";
    unit_write_line(kTempUnit, line);
  }
  unit_close(kTempUnit);
}

}  // namespace lf

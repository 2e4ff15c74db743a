// Model output after the calculation: the text tables of the recorded
// values with their index, and the calculation's summary for the programs
// that display or continue it.
#include <cmath>
#include <ctime>
#include <string>
#include <vector>

#include "control/blocks.hpp"
#include "control/models.hpp"
#include "control/udeval.hpp"
#include "control/udmodel.hpp"
#include "control/udoutfile.hpp"
#include "io/errlist.hpp"
#include "support/fmt.hpp"

namespace lf {

namespace {

// Values a line of an FL<n>.DAT file holds.
constexpr int32_t kValuesPerTable = 40;

void wudlfinf() {
  if (NU.udout == 0) return;
  make_new(kTempUnit, "FUDLF.INF", FileForm::Formatted);
  for (int32_t i = 1; i <= NU.nud; ++i) {
    const int32_t n = YP.YPCNT[i];
    if (n == 0) continue;
    const int32_t l = YP.YPLOC[i];
    int32_t first = l, second = l, line = 0;
    if (l < 0) {
      line = -l;
      const int32_t b = find_line(line);
      if (b == 0) {
        errlist_write("Warning: No branch" + fmt_i(line, 6) + " in network !");
        continue;
      }
      first = IJB.I[b];
      second = IJB.J[b];
    }
    std::string text = " ";
    for (int32_t v : {i, UDR.UDTYPE[i], first, second, line, n}) text += fmt_i(v, 6) + ",";
    for (int32_t k = 0; k < 8; ++k)
      text += (k < n ? YP.YPNAM[YP.YPFST[i] + k].str() : std::string(10, ' ')) + ",";
    unit_write_line(kTempUnit, text);
  }
  unit_close(kTempUnit);
}

int32_t nudvar() {
  int32_t n = 0;
  for (int32_t i = 1; i <= NU.nud; ++i) n += YP.YPCNT[i];
  return n;
}

void inifudlf(int32_t n) {
  if (n == 0) return;
  // A table file holds 40 variables: a fortieth of a file per variable,
  // rounded up to whole files, in single precision as designed.
  constexpr float kFilesPerVariable = 0.025F;
  constexpr float kRoundUp = 1.0001F;
  const auto f = static_cast<int32_t>(kFilesPerVariable * static_cast<float>(n) + kRoundUp);
  if (IFUDLF > f) return;
  FUDLF.grow(static_cast<std::size_t>(IFUDLF + f));
  for (int32_t k = IFUDLF + 1; k <= IFUDLF + f; ++k) FUDLF[k] = "FL" + std::to_string(k) + ".DAT";
  IFUDLF += f;
}

void openfl() {
  for (int32_t k = 1; k <= IFUDLF; ++k)
    make_new(kFirstTableUnit + k - 1, FUDLF[k].trimmed(), FileForm::Formatted);
}

void closefl() {
  for (int32_t k = 1; k <= IFUDLF; ++k) unit_close(kFirstTableUnit + k - 1);
}

void wudlfdat(int32_t n) {
  if (n == 0) return;
  std::vector<float> set(static_cast<std::size_t>(n));
  if (!unit_open(kSampleUnit, kSampleFile, FileStatus::Old, FileForm::Stream)) {
    errlist_write("File LFUDOUT.DDD Not Found!");
    return;
  }
  while (unit_read_bytes(kSampleUnit, set.data(), sizeof(float) * set.size())) {
    int32_t file = 0;
    for (int32_t k = 0; k < n; k += kValuesPerTable) {
      std::string line = " ";
      for (int32_t v = k; v < n && v < k + kValuesPerTable; ++v)
        line += rtoa(8, static_cast<double>(set[static_cast<std::size_t>(v)])) + ",";
      unit_write_line(kFirstTableUnit + file++, line);
    }
  }
  unit_close(kSampleUnit);
}

void endlfinf(const CaseName& casename, int32_t convergent) {
  const std::string stem = casename.trimmed();
  make_new(kTempUnit, stem + ".CAL", FileForm::Formatted);
  std::string line(1, ' ');
  line.append(fmt_i(convergent == 1 ? 1 : -1, 2)).append(",").append(fmt_i(MARKL23, 2)).append(",");
  unit_write_line(kTempUnit, line);
  std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, " %04d%02d%02d,%02d%02d%02d,", tm.tm_year + 1900,
                tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
  unit_write_line(kTempUnit, stamp);
  line.assign(1, ' ').append(fmt_i(NU.nud, 4)).append(",").append(fmt_i(0, 2)).append(",");
  unit_write_line(kTempUnit, line);
  std::string counts = " ";
  for (int32_t v :
       {LFINF.nbus, LFINF.ngenerat, LFINF.nload, LFINF.nacline, LFINF.ndcline, LFINF.ntrans})
    counts += fmt_i(v, 6) + ",";
  unit_write_line(kTempUnit, counts);
  unit_close(kTempUnit);
  if (NU.nud == 0) NU.udout = 0;
  make_new(kTempUnit, stem + ".UDP", FileForm::Formatted);
  unit_write_line(kTempUnit, fmt_i(NU.udout, 12));
  unit_close(kTempUnit);
}

}  // namespace

void forwinlf(const CaseName& casename, int32_t convergent) {
  if (NU.udout != 0) {
    wudlfinf();
    const int32_t n = nudvar();
    inifudlf(n);
    openfl();
    wudlfdat(n);
    closefl();
  }
  endlfinf(casename, convergent);
}

}  // namespace lf

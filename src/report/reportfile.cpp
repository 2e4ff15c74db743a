#include "report/reportfile.hpp"

#include "support/fmt.hpp"
#include "support/stop.hpp"

namespace lf {

ReportFile::ReportFile(const std::string& path, Mode mode) {
  if (mode == kNew) std::remove(path.c_str());
  f_ = std::fopen(path.c_str(), "w");
  if (!f_ && mode == kNew) stop_run("Can't open file " + path);
}

ReportFile::~ReportFile() {
  if (f_) std::fclose(f_);
}

void ReportFile::put(const std::string& line) {
  std::fputs(line.c_str(), f_);
  std::fputc('\n', f_);
}

std::string csv_i(std::initializer_list<long long> v, int w) {
  std::string s;
  for (long long x : v) {
    put_i(s, x, w);
    s += ',';
  }
  return s;
}

std::string csv_f(std::initializer_list<double> v, int w, int d) {
  std::string s;
  for (double x : v) {
    put_f(s, x, w, d);
    s += ',';
  }
  return s;
}

}  // namespace lf

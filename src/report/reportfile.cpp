#include "report/reportfile.hpp"

#include <algorithm>

#include "support/fmt.hpp"
#include "support/stop.hpp"

namespace lf {

ReportFile::ReportFile(const std::string& path, Mode mode) {
  if (mode == kNew) std::remove(path.c_str());
  f_ = std::fopen(path.c_str(), "w");
  if (!f_ && mode == kNew) stop_run("Can't open file " + path);
  // A large buffer: a report of a big network goes out in a few writes.
  if (f_) std::setvbuf(f_, nullptr, _IOFBF, 1 << 18);
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
  s.reserve(v.size() * (static_cast<std::size_t>(std::max(w, 0)) + 1));
  for (long long x : v) {
    put_i(s, x, w);
    s += ',';
  }
  return s;
}

std::string csv_f(std::initializer_list<double> v, int w, int d) {
  std::string s;
  s.reserve(v.size() * (static_cast<std::size_t>(std::max(w, 0)) + 1));
  for (double x : v) {
    put_f(s, x, w, d);
    s += ',';
  }
  return s;
}

}  // namespace lf

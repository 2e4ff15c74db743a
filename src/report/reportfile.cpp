#include "report/reportfile.hpp"

#include <algorithm>

#include "support/fmt.hpp"
#include "support/stop.hpp"

namespace lf {

namespace {

// The buffer goes out when it holds this much.
constexpr std::size_t kFlushAt = std::size_t{1} << 18;

}  // namespace

ReportFile::ReportFile(const std::string& path, Mode mode) {
  if (mode == kNew) std::remove(path.c_str());
  f_ = std::fopen(path.c_str(), "w");
  if (!f_ && mode == kNew) stop_run("Can't open file " + path);
  buf_.reserve(kFlushAt + 512);
}

ReportFile::~ReportFile() {
  if (!f_) return;
  std::fwrite(buf_.data(), 1, buf_.size(), f_);
  std::fclose(f_);
}

void ReportFile::put(std::string_view line) {
  buf_ += line;
  end_line();
}

void ReportFile::ints(std::initializer_list<long long> v, int w) {
  add_i(buf_, v, w);
}

void ReportFile::reals(std::initializer_list<double> v, int w, int d) {
  add_f(buf_, v, w, d);
}

void ReportFile::end_line() {
  buf_ += '\n';
  if (buf_.size() < kFlushAt) return;
  if (f_) std::fwrite(buf_.data(), 1, buf_.size(), f_);
  buf_.clear();
}

void add_i(std::string& out, std::initializer_list<long long> v, int w) {
  for (long long x : v) {
    put_i(out, x, w);
    out += ',';
  }
}

void add_f(std::string& out, std::initializer_list<double> v, int w, int d) {
  for (double x : v) {
    put_f(out, x, w, d);
    out += ',';
  }
}

std::string csv_i(std::initializer_list<long long> v, int w) {
  std::string s;
  add_i(s, v, w);
  return s;
}

std::string csv_f(std::initializer_list<double> v, int w, int d) {
  std::string s;
  add_f(s, v, w, d);
  return s;
}

}  // namespace lf

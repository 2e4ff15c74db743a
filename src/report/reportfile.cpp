#include "report/reportfile.hpp"

#include <algorithm>
#include <cstring>

#include "support/fmt.hpp"
#include "support/stop.hpp"

namespace lf {

namespace {

// The buffer goes out when it holds this much.
constexpr std::size_t kFlushAt = std::size_t{1} << 18;

}  // namespace

ReportFile::ReportFile(const std::string& path, Mode mode)
    : buf_(new char[kFlushAt + 512]), capacity_(kFlushAt + 512) {
  // An old file is deleted in either mode before the new one is made (to
  // replace is to delete and create): truncated and written again instead,
  // it would be written out at once by file systems that guard against
  // losing its contents.
  std::remove(path.c_str());
  f_ = std::fopen(path.c_str(), "w");
  if (!f_ && mode == kNew) stop_run("Can't open file " + path);
  // The lines go out from buf_ in large pieces: a buffer of the stream's
  // own would only split each piece in two writes.
  if (f_) std::setvbuf(f_, nullptr, _IONBF, 0);
}

ReportFile::~ReportFile() {
  if (!f_) return;
  std::fwrite(buf_.get(), 1, used_, f_);
  std::fclose(f_);
}

char* ReportFile::grow(std::size_t n) {
  const std::size_t grown = std::max(2 * capacity_, used_ + n);
  std::unique_ptr<char[]> more(new char[grown]);
  std::memcpy(more.get(), buf_.get(), used_);
  buf_ = std::move(more);
  capacity_ = grown;
  return buf_.get() + used_;
}

void ReportFile::put(std::string_view line) {
  text(line);
  end_line();
}

void ReportFile::text(std::string_view s) {
  std::memcpy(room(s.size()), s.data(), s.size());
  used_ += s.size();
}

void ReportFile::ints(std::initializer_list<long long> v, int w) {
  char* p = put_i(room(v.size() * (static_cast<std::size_t>(std::max(w, 0)) + 1)), v, w, ',');
  used_ = static_cast<std::size_t>(p - buf_.get());
}

void ReportFile::reals(std::initializer_list<double> v, int w, int d) {
  char* p = put_f(room(v.size() * (static_cast<std::size_t>(std::max(w, 0)) + 1)), v, w, d, ',');
  used_ = static_cast<std::size_t>(p - buf_.get());
}

void ReportFile::end_line() {
  *room(1) = '\n';
  if (++used_ < kFlushAt) return;
  if (f_) std::fwrite(buf_.get(), 1, used_, f_);
  used_ = 0;
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

// A report file written line by line.  A report is made anew each time: an
// old file of the same name goes first.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>

namespace lf {

class ReportFile {
 public:
  enum Mode {
    kNew,      // delete an old file, create the new one; failure stops the run
    kReplace,  // overwrite; failure leaves the file closed and ok() false
  };
  explicit ReportFile(const std::string& path, Mode mode = kNew);
  ~ReportFile();
  ReportFile(const ReportFile&) = delete;
  ReportFile& operator=(const ReportFile&) = delete;

  bool ok() const { return f_ != nullptr; }
  void put(const std::string& line);

 private:
  std::FILE* f_ = nullptr;
};

// Fields of a report line: each one closed by a comma.
std::string csv_i(std::initializer_list<long long> v, int w);      // Iw,
std::string csv_f(std::initializer_list<double> v, int w, int d);  // Fw.d,

}  // namespace lf

// A report file written line by line.  A report is made anew each time: an
// old file of the same name goes first.  Lines are built in place in one
// buffer, field by field, which goes out in large writes.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace lf {

class ReportFile {
 public:
  enum Mode {
    kNew,      // delete an old file, create the new one; failure stops the run
    kReplace,  // delete an old file, create the new one; failure leaves the file
               // closed and ok() false
  };
  explicit ReportFile(const std::string& path, Mode mode = kNew);
  ~ReportFile();
  ReportFile(const ReportFile&) = delete;
  ReportFile& operator=(const ReportFile&) = delete;

  bool ok() const { return f_ != nullptr; }
  // A whole line.
  void put(std::string_view line);
  // Fields of the line being built, each closed by a comma, and text as it stands.
  void ints(std::initializer_list<long long> v, int w);       // Iw,
  void reals(std::initializer_list<double> v, int w, int d);  // Fw.d,
  void text(std::string_view s);
  // Ends the line being built.
  void end_line();

 private:
  // Where n more characters go, with room made for them.
  char* room(std::size_t n) { return used_ + n <= capacity_ ? buf_.get() + used_ : grow(n); }
  // room when the buffer must grow first.
  char* grow(std::size_t n);
  std::FILE* f_ = nullptr;
  std::unique_ptr<char[]> buf_;  // lines not yet written
  std::size_t capacity_ = 0;     // characters buf_ has room for
  std::size_t used_ = 0;         // characters in buf_
};

// Fields of a report line: each one closed by a comma.
void add_i(std::string& out, std::initializer_list<long long> v, int w);      // Iw,
void add_f(std::string& out, std::initializer_list<double> v, int w, int d);  // Fw.d,
std::string csv_i(std::initializer_list<long long> v, int w);
std::string csv_f(std::initializer_list<double> v, int w, int d);

}  // namespace lf

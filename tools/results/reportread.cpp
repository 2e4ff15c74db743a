// Reading the case files and the report files of a case into CaseResults.
#include <algorithm>
#include <bit>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <numeric>
#include <string_view>
#include <vector>

#include "results.hpp"
#include "summary.hpp"
#include "support/freeread.hpp"
#include "support/numparse.hpp"
#include "support/wholefile.hpp"

namespace lfres {
namespace {

constexpr double kNoBaseKv = 1e-4;  // a base voltage at most this is none
constexpr double kNoLimit = 1e-3;   // a per-unit limit at most this is none

// A field as a number, as strtod takes it, the whole field used.  The plain
// decimal forms of the reports convert without a copy.
bool number(std::string_view text, double& v) {
  if (text.empty()) return false;
  const char* end = text.data() + text.size();
  if (lf::quick_real(text.data(), end, v) == end) return true;
  if (auto [p, ec] = std::from_chars(text.data(), end, v); ec == std::errc() && p == end)
    return true;
  const std::string copy(text);
  char* stop = nullptr;
  v = std::strtod(copy.c_str(), &stop);
  return *stop == '\0';
}

bool integer(std::string_view text, int& v) {
  const char* end = text.data() + text.size();
  if (lf::quick_int(text.data(), end, v) == end) return true;
  if (auto [p, ec] = std::from_chars(text.data(), end, v); ec == std::errc() && p == end)
    return true;
  double d = 0;
  if (!number(text, d) || d != std::floor(d)) return false;
  v = static_cast<int>(d);
  return true;
}

// The first character from p on that is no blank, or end; eight at a time
// while eight are left (the fields of the reports stand right-aligned behind
// runs of blanks).
const char* past_blanks(const char* p, const char* end) {
  constexpr uint64_t kBlanks = 0x2020202020202020u;
  constexpr bool kLowFirst = std::endian::native == std::endian::little;  // byte order
  for (; kLowFirst && end - p >= 8; p += 8) {
    uint64_t word = 0;
    std::memcpy(&word, p, sizeof word);
    if (const uint64_t other = word ^ kBlanks; other != 0)
      return p + std::countr_zero(other) / 8;  // the first byte that differs
  }
  while (p != end && *p == ' ') ++p;
  return p;
}

// The first comma from p on, or end; eight characters at a time while
// eight are left.
const char* next_comma(const char* p, const char* end) {
  constexpr uint64_t kCommas = 0x2c2c2c2c2c2c2c2cu, kOnes = 0x0101010101010101u;
  constexpr uint64_t kHighs = 0x8080808080808080u;
  constexpr bool kLowFirst = std::endian::native == std::endian::little;  // byte order
  for (; kLowFirst && end - p >= 8; p += 8) {
    uint64_t word = 0;
    std::memcpy(&word, p, sizeof word);
    const uint64_t x = word ^ kCommas;  // a zero byte where a comma stands
    if (const uint64_t zero = (x - kOnes) & ~x & kHighs; zero != 0)
      return p + std::countr_zero(zero) / 8;
  }
  while (p != end && *p != ',') ++p;
  return p;
}

// The value of the eight digits at p, when all eight are digits.
bool eight_digits(const char* p, uint64_t& value) {
  constexpr uint64_t kZeros = 0x3030303030303030u, kHighNibbles = 0xF0F0F0F0F0F0F0F0u;
  constexpr uint64_t kToNextTen =
      0x0606060606060606u;  // carries a byte above '9' out of its nibble
  uint64_t w = 0;
  std::memcpy(&w, p, sizeof w);
  if ((w & kHighNibbles) != kZeros || ((w + kToNextTen) & kHighNibbles) != kZeros) return false;
  w -= kZeros;                                      // digit values, the first in the lowest byte
  w = w * 10 + (w >> 8);                            // pairs of digits, in every other byte
  constexpr uint64_t kPairs = 0x000000FF000000FFu;  // the first and third pair of each half
  value = ((w & kPairs) * (100 + (uint64_t{1000000} << 32)) +
           ((w >> 16) & kPairs) * (1 + (uint64_t{10000} << 32))) >>
          32;
  return true;
}

// A plain decimal as the reports write it (a sign, digits, a point,
// digits) converted with its decimals taken eight at a time, to the value
// quick_real gives: digits that form an integer of at most 2^53, divided by
// an exact power of ten.  nullptr for any other text (no point, an
// exponent, more digits), which quick_real takes.
const char* report_decimal(const char* p, const char* end, double& value) {
  constexpr std::ptrdiff_t kMostDigits = 19;
  const bool negative = p != end && *p == '-';
  if (negative) ++p;
  const char* start = p;
  uint64_t w = 0, eight = 0;
  p = lf::numparse::digits_into(p, end, w);
  if (p == end || *p != '.') return nullptr;
  const char* fraction = ++p;
  for (; end - p >= 8 && eight_digits(p, eight); p += 8) w = w * 100'000'000 + eight;
  if (p - start > kMostDigits) return nullptr;  // w may have overflowed
  p = lf::numparse::digits_into(p, end, w);
  const std::ptrdiff_t places = p - fraction;
  if (p - start - 1 > kMostDigits || p - start == 1 || places > lf::numparse::kMostPow10 ||
      w > lf::numparse::kExact || (p != end && (*p == 'e' || *p == 'E')))
    return nullptr;
  const double x = static_cast<double>(w) / lf::numparse::kPow10[places];
  value = negative ? -x : x;
  return p;
}

// Whether [p, end) holds no byte from 0x40 on: neither a letter, which
// could make a field a number of another form (an exponent, a hexadecimal
// number, an infinity), nor a byte outside ASCII.
bool no_letters(const char* p, const char* end) {
  constexpr uint64_t kHighBits = 0xC0C0C0C0C0C0C0C0u;  // set in every byte from 0x40 on
  uint64_t any = 0;
  for (; end - p >= 8; p += 8) {
    uint64_t word = 0;
    std::memcpy(&word, p, sizeof word);
    any |= word;
  }
  for (; p != end; ++p) any |= static_cast<unsigned char>(*p);
  return (any & kHighBits) == 0;
}

// More than the magnitude of the field from p on, read from its start
// alone, when the field holds no letter: its whole part plus one, when it
// starts (after blanks and a sign) with a digit or a point; such a field
// is a number only as a plain decimal.  Infinity when it starts otherwise.
// p moves past the field's comma.
double magnitude_bound(const char*& p, const char* end) {
  constexpr int kMostWholeDigits = 15;  // whole parts exact in a double
  p = past_blanks(p, end);
  if (p != end && (*p == '-' || *p == '+')) ++p;
  const char* first = p;
  uint64_t whole = 0;
  p = lf::numparse::digits_into(p, end, whole);
  const bool plain = p - first <= kMostWholeDigits && p != end && (p != first || *p == '.');
  p = next_comma(p, end);
  if (p != end) ++p;
  return plain ? static_cast<double>(whole + 1) : HUGE_VAL;
}

// Whether the loading of a branch report line (the fourth to seventh fields
// the powers at its two ends) may reach `least`: false only when the text
// of the powers shows that both ends stay below it.
bool may_reach(std::string_view line, double least) {
  constexpr double kMargin = 1e-9;  // for the rounding of the squares
  const char *p = line.data(), *end = p + line.size();
  for (int k = 0; k < 3; ++k) {
    p = next_comma(p, end);
    if (p == end) return true;
    ++p;
  }
  if (!no_letters(p, end)) return true;
  double b[4];
  for (double& x : b) x = magnitude_bound(p, end);
  const double limit = least * least * (1 - kMargin);
  return !(b[0] * b[0] + b[1] * b[1] < limit && b[2] * b[2] + b[3] * b[3] < limit);
}

// A report file read a piece at a time and handed out a line at a time,
// each line split into its fields: the text between commas outside quotes,
// without the quotes, carriage returns and the blanks at either end.  The
// text after the last comma is no field.  A field of asterisks (a value too
// wide for it) stays as it is.  No file reads as no lines.  The fields are
// found when first asked for by place, or taken one after another from the
// first (take), which converts a plain number where it stands.  One buffer
// of a fixed size serves the whole file (it grows only for a longer line),
// so that a large report touches little memory.
class ReportLines {
 public:
  explicit ReportLines(const std::string& path)
      : file_(std::fopen(path.c_str(), "rb")), buf_(new char[kPiece]), size_(kPiece) {
    // The file is read in large pieces straight into buf_, not through a
    // buffer of the stream's own.
    if (file_) std::setvbuf(file_, nullptr, _IONBF, 0);
  }
  ~ReportLines() {
    if (file_) std::fclose(file_);
  }
  ReportLines(const ReportLines&) = delete;
  ReportLines& operator=(const ReportLines&) = delete;

  // Takes the next line; false at the end of the file.
  bool next() {
    const char* stop = nullptr;
    while (!(pos_ < end_ && (stop = static_cast<const char*>(
                                 std::memchr(buf_.get() + pos_, '\n', end_ - pos_)))) &&
           fill()) {
    }
    if (pos_ >= end_) return false;
    const char* line = buf_.get() + pos_;
    const std::size_t end = stop ? static_cast<std::size_t>(stop - buf_.get()) : end_;
    const std::string_view plain(line, end - pos_);
    const bool clean = static_cast<std::ptrdiff_t>(pos_) >= plain_from_ ||
                       plain.find_first_of("'\r") == plain.npos;
    pos_ = end + 1;
    bounds_.clear();
    taken_ = 0;
    split_ = !clean;
    if (clean) {  // the fields as they stand
      line_ = plain;
      return true;
    }
    clean_.clear();
    std::size_t start = 0;
    bool quoted = false;
    for (const char c : plain) {
      if (c == '\'') {
        quoted = !quoted;
      } else if (c == ',' && !quoted) {
        bounds_.emplace_back(start, clean_.size());
        start = clean_.size();
      } else if (c != '\r') {
        clean_ += c;
      }
    }
    line_ = clean_;
    return true;
  }

  std::size_t size() {
    split();
    return bounds_.size();
  }
  // The present line when it stands as in the file (no quotes nor carriage
  // returns to take out), else empty.
  std::string_view plain() const { return split_ ? std::string_view() : line_; }
  std::vector<std::string> fields() {
    std::vector<std::string> out;
    for (std::size_t k = 0; k < size(); ++k) out.emplace_back((*this)[k]);
    return out;
  }
  std::string_view operator[](std::size_t k) {
    split();
    return trimmed(bounds_[k].first, bounds_[k].second);
  }

  // The next field as a number (ok: it reads as one, as number() says) or
  // as an integer (as integer() says); false when the line has no further
  // field.
  bool take(double& v, bool& ok) {
    return take(
        v, ok,
        [](const char* p, const char* e, double& x) {
          const char* end = report_decimal(p, e, x);
          return end ? end : lf::quick_real(p, e, x);
        },
        number);
  }
  bool take(int& v, bool& ok) { return take(v, ok, lf::quick_int, integer); }
  // The next field as it is (what operator[] gives for it); false when the
  // line has no further field.
  bool take(std::string_view& text) {
    if (split_) {
      if (taken_ == bounds_.size()) return false;
      text = trimmed(bounds_[taken_].first, bounds_[taken_].second);
      ++taken_;
      return true;
    }
    const std::size_t comma = line_.find(',', taken_);
    if (comma == line_.npos) return false;
    text = trimmed(taken_, comma);
    taken_ = comma + 1;
    return true;
  }

 private:
  std::string_view trimmed(std::size_t from, std::size_t to) const {
    const char* first = past_blanks(line_.data() + from, line_.data() + to);
    std::string_view f(first, static_cast<std::size_t>(line_.data() + to - first));
    while (!f.empty() && f.back() == ' ') f.remove_suffix(1);
    return f;
  }

  // Finds the fields of a line as it stands.
  void split() {
    if (split_) return;
    for (std::size_t start = 0, comma; (comma = line_.find(',', start)) != line_.npos;
         start = comma + 1)
      bounds_.emplace_back(start, comma);
    split_ = true;
  }

  // In a line as it stands, a plain number with blanks around it and a
  // comma after converts where it stands; any other field as a whole
  // through convert.
  template <typename T, typename Quick>
  bool take(T& v, bool& ok, Quick quick, bool (*convert)(std::string_view, T&)) {
    if (split_) {
      if (taken_ == bounds_.size()) return false;
      ok = convert(trimmed(bounds_[taken_].first, bounds_[taken_].second), v);
      ++taken_;
      return true;
    }
    const char* end = line_.data() + line_.size();
    const char* p = past_blanks(line_.data() + taken_, end);
    if (const char* q = quick(p, end, v)) {
      while (q != end && *q == ' ') ++q;
      if (q != end && *q == ',') {
        taken_ = static_cast<std::size_t>(q - line_.data()) + 1;
        return ok = true;
      }
    }
    const std::size_t comma = line_.find(',', taken_);
    if (comma == line_.npos) return false;
    ok = convert(trimmed(taken_, comma), v);
    taken_ = comma + 1;
    return true;
  }

  // Keeps the unread rest of the buffer, moved to its front, and reads the
  // next piece of the file behind it; false when the file has no more.
  bool fill() {
    if (!file_) return false;
    if (pos_ > 0) {
      std::memmove(buf_.get(), buf_.get() + pos_, end_ - pos_);
      end_ -= pos_;
      plain_from_ = std::max<std::ptrdiff_t>(plain_from_ - static_cast<std::ptrdiff_t>(pos_), 0);
      pos_ = 0;
    }
    if (end_ == size_) {  // a line longer than the buffer
      std::unique_ptr<char[]> more(new char[2 * size_]);
      std::memcpy(more.get(), buf_.get(), end_);
      buf_ = std::move(more);
      size_ *= 2;
    }
    const std::size_t wanted = size_ - end_;
    const std::size_t n = std::fread(buf_.get() + end_, 1, wanted, file_);
    if (n < wanted) {  // the end of the file (or an error): nothing more to ask for
      std::fclose(file_);
      file_ = nullptr;
    }
    if (n == 0) return false;
    // Quotes and carriage returns are rare (the first line of the bus
    // report): lines after the last of them need no cleaning.
    for (const char c : {'\'', '\r'}) {
      if (const void* last = memrchr(buf_.get() + end_, c, n))
        plain_from_ = std::max(plain_from_, static_cast<const char*>(last) - buf_.get() + 1);
    }
    end_ += n;
    return true;
  }

  static constexpr std::size_t kPiece = std::size_t{1} << 16;  // bytes read at a time

  std::FILE* file_;                // the file, until it has been read to its end
  std::unique_ptr<char[]> buf_;    // the lines of the file not yet handed out, and more
  std::size_t size_;               // bytes of buf_
  std::size_t end_ = 0;            // end of what buf_ holds of the file
  std::size_t pos_ = 0;            // start of the next line in buf_
  std::ptrdiff_t plain_from_ = 0;  // no quote nor carriage return from here on in buf_
  std::string clean_;              // the present line without quotes, where it has any
  std::string_view line_;          // the present line: in buf_, or clean_
  bool split_ = false;             // bounds_ holds the fields of line_
  std::vector<std::pair<std::size_t, std::size_t>> bounds_;  // the fields in line_
  // Fields taken: in a line as it stands (split_ false) where the next one
  // starts, else how many.
  std::size_t taken_ = 0;
};

class Reader {
 public:
  Reader(const std::string& stem, CaseResults& r, const SummaryOnly& only)
      : stem_(stem), r_(r), only_(only) {}

  bool run() {
    if (!read_control()) return false;
    // Room for the records that the control file counts, as far as the
    // files can hold them: growth would copy them over and over.
    make_room(r_.buses, counts_[0], {".L1"});
    if (only_.branches == 0)
      make_room(r_.branches, static_cast<long long>(counts_[1]) + counts_[2], {".LP2", ".LP3"});
    make_room(r_.generators, counts_[4], {".LP5"});
    make_room(r_.loads, counts_[5], {".LP6"});
    read_buses();
    read_case_rows();
    read_map();
    if (!read_bus_report()) return false;
    read_branches(".LP2", false);
    read_branches(".LP3", true);
    if (only_.branches != 0) keep_most_loaded();
    read_generators();
    read_loads();
    read_dclines();
    read_areas();
    return true;
  }

 private:
  // Reserves room for n elements, at most one for every 16 bytes of the
  // files with the given extensions (a hint only: no record is that short).
  template <typename T>
  void make_room(std::vector<T>& v, long long n, std::initializer_list<const char*> files) {
    std::uintmax_t bytes = 0;
    for (const char* ext : files) {
      std::error_code ec;
      const std::uintmax_t size = std::filesystem::file_size(stem_ + ext, ec);
      if (!ec) bytes += size;
    }
    if (n > 0) v.reserve(static_cast<std::size_t>(std::min<std::uintmax_t>(n, bytes / 16)));
  }

  void problem(const std::string& file, const std::string& what) {
    r_.problems.push_back(stem_ + file + ": " + what);
  }

  bool read_control() {
    lf::FreeReader in;
    if (!in.open(stem_ + ".L0")) {
      problem(".L0", "cannot be read");
      return false;
    }
    in(counts_[0], counts_[1], counts_[2], counts_[3], counts_[4], counts_[5], counts_[6]);
    in(r_.base_mva, vmax_, vmin_, tolerance_, r_.method);
    return true;
  }

  void read_buses() {
    if (only_.bus_names) {
      for (std::size_t k = 0; k < only_.bus_names->size(); ++k) {
        Bus& b = r_.buses.emplace_back();
        b.number = static_cast<int>(k) + 1;
        const std::string_view name = (*only_.bus_names)[k];
        b.name.assign(name.substr(0, name.find_last_not_of(' ') + 1));
      }
      return;
    }
    lf::FreeReader in;
    if (!in.open(stem_ + ".L1")) return;
    for (;;) {
      Bus b;
      double vmax_kv = 0, vmin_kv = 0;
      if (!in(b.name, b.base_kv, b.area, vmax_kv, vmin_kv)) break;
      b.number = static_cast<int>(r_.buses.size()) + 1;
      b.name.erase(b.name.find_last_not_of(' ') + 1);
      const bool base = b.base_kv > kNoBaseKv;
      b.vmax = base ? vmax_kv / b.base_kv : vmax_;
      b.vmin = base ? vmin_kv / b.base_kv : vmin_;
      if (b.vmax <= kNoLimit) b.vmax = vmax_;
      if (b.vmin <= kNoLimit) b.vmin = vmin_;
      if (b.vmax < b.vmin) b.vmax = vmax_, b.vmin = vmin_;
      r_.buses.push_back(b);
    }
  }

  // The generator rows as read: their types and limits.
  void read_case_rows() {
    if (counts_[4] == 0) return;
    lf::FreeReader in;
    if (!in.open(stem_ + ".L5")) return;
    for (;;) {
      int mark = 0, bus = 0, type = 0;
      double p, q, v, a, qmax = 0, qmin = 0;
      if (!in(mark, bus, type, p, q, v, a, qmax, qmin)) break;
      if (mark <= 0) continue;
      Generator g;
      g.bus = bus, g.type = type, g.qmax = qmax, g.qmin = qmin;
      case_generators_.push_back(g);
    }
  }

  // Which buses are at an end of a branch in service (the bus report leaves
  // out the others), by the branch files as read.
  void read_connected() {
    connected_.assign(r_.buses.size() + 1, false);
    if (counts_[1] != 0) read_branch_ends(false);
    if (counts_[2] != 0) read_branch_ends(true);
  }

  void read_branch_ends(bool transformer) {
    lf::FreeReader in;
    if (!in.open(stem_ + (transformer ? ".L3" : ".L2"))) return;
    for (;;) {
      int mark = 0, i = 0, j = 0, no = 0;
      double r, x, t;
      if (!in(mark, i, j, no, r, x, t)) break;
      if (mark <= 0) continue;
      for (const int end : {std::abs(i), std::abs(j)})
        if (end >= 0 && end < static_cast<int>(connected_.size()))
          connected_[static_cast<std::size_t>(end)] = true;
    }
  }

  // Pairs of numbers, case bus and source bus, as long as both read as
  // integers.
  void read_map() {
    std::string text;
    if (!lf::read_whole_file(stem_ + ".MAP", text)) return;
    const char *p = text.data(), *end = p + text.size();
    const auto next = [&](int& v) {
      while (p != end && std::isspace(static_cast<unsigned char>(*p))) ++p;
      p = lf::quick_int(p, end, v);
      return p != nullptr;
    };
    for (int bus = 0, original = 0; next(bus) && next(original);) {
      if (bus >= 1 && bus <= static_cast<int>(r_.buses.size()))
        r_.buses[bus - 1].original = original;
    }
  }

  // The bus report: a first line with the status and the time, then one
  // line per solved bus in ascending order.  A bus number too wide for its
  // field is the next bus after the last that has a branch.
  bool read_bus_report() {
    ReportLines f(stem_ + ".LP1");
    if (!f.next() || f.size() < 2) {
      problem(".LP1", "missing or without its first line");
      return false;
    }
    int status = 1;
    integer(f[0], status);
    r_.converged = status == 0;
    r_.stamp = f[1];
    int last = 0;
    for (std::size_t k = 1; f.next(); ++k) {
      int bus = 0;
      double v = 0, angle = 0;
      bool read[3];
      if (!f.take(bus, read[0]) || !f.take(v, read[1]) || !f.take(angle, read[2])) continue;
      if (!read[0]) {
        if (connected_.empty()) read_connected();
        bus = last + 1;
        while (bus <= static_cast<int>(r_.buses.size()) &&
               !connected_[static_cast<std::size_t>(bus)])
          ++bus;
      }
      last = bus;
      if (bus < 1 || bus > static_cast<int>(r_.buses.size())) {
        problem(".LP1", "line " + std::to_string(k + 1) + " names no bus of the case");
        continue;
      }
      Bus& b = r_.buses[static_cast<std::size_t>(bus - 1)];
      b.solved = read[1] && read[2];
      if (b.solved) b.v = v, b.angle = angle;
    }
    return true;
  }

  // Lines of nine fields or more, the first three integers; a power that
  // does not read is no number.
  void read_branches(const char* ext, bool transformer) {
    for (ReportLines f(stem_ + ext); f.next();) {
      if (least_ > 0 && !may_reach(f.plain(), least_)) continue;  // cannot be ranked first
      Branch b;
      b.transformer = transformer;
      bool fields = true, ends = true, powers[6];
      for (int* n : {&b.i, &b.j, &b.no}) {
        bool read = false;
        fields = fields && f.take(*n, read);
        ends = ends && read;
      }
      double* v[] = {&b.pij, &b.qij, &b.pji, &b.qji, &b.extra_p, &b.extra_q};
      for (std::size_t k = 0; k < 6 && fields; ++k) fields = f.take(*v[k], powers[k]);
      if (!fields || !ends) continue;
      for (std::size_t k = 0; k < 6; ++k) {
        if (!powers[k]) *v[k] = std::nan("");
      }
      keep(b);
    }
  }

  // Keeps a branch read: every one, or, with only_.branches above 0, enough
  // of them for the most loaded ones.  The branches gather in batches of
  // kBatch, and each full batch is cut to those that by_loading ranks first.
  void keep(const Branch& b) {
    r_.branches.push_back(b);
    if (only_.branches != 0 && r_.branches.size() >= only_.branches + kBatch) keep_most_loaded();
  }

  // Cuts the branches kept to the only_.branches that by_loading ranks
  // first, in the order of the reports, so that it ranks them the same way
  // again later.
  void keep_most_loaded() {
    std::vector<bool> ranked(r_.branches.size(), false);
    for (const Branch* b : by_loading(r_, only_.branches))
      ranked[static_cast<std::size_t>(b - r_.branches.data())] = true;
    std::size_t n = 0;
    for (std::size_t k = 0; k < r_.branches.size(); ++k)
      if (ranked[k]) r_.branches[n++] = r_.branches[k];
    r_.branches.resize(n);
    if (n < only_.branches) return;
    least_ = HUGE_VAL;
    for (const Branch& b : r_.branches) least_ = std::min(least_, b.loading());
  }

  // Generator report lines stand in the order of the rows as read, without
  // the rows of buses left out; each takes its type and limits from the
  // next row as read at the same bus.
  void read_generators() {
    // The rows as read, by bus and within a bus in their order.
    std::vector<std::size_t> rows(case_generators_.size());
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) {
      return case_generators_[a].bus < case_generators_[b].bus;
    });
    // By the first place in rows of a bus: how many of its rows have been taken.
    std::vector<std::size_t> taken(rows.size() + 1, 0);
    for (ReportLines f(stem_ + ".LP5"); f.next();) {
      Generator g;
      bool read[4];
      if (!f.take(g.bus, read[0]) || !f.take(g.p, read[1]) || !f.take(g.q, read[2]) ||
          !f.take(g.merged, read[3]) || !read[1] || !read[2])
        continue;
      if (!read[0]) g.bus = 0;
      const std::size_t first =
          static_cast<std::size_t>(std::lower_bound(rows.begin(), rows.end(), g.bus,
                                                    [&](std::size_t row, int bus) {
                                                      return case_generators_[row].bus < bus;
                                                    }) -
                                   rows.begin());
      if (const std::size_t k = first + taken[first];
          k < rows.size() && case_generators_[rows[k]].bus == g.bus) {
        const Generator& row = case_generators_[rows[k]];
        g.type = row.type, g.qmin = row.qmin, g.qmax = row.qmax;
        ++taken[first];
      }
      r_.generators.push_back(g);
    }
  }

  void read_loads() {
    for (ReportLines f(stem_ + ".LP6"); f.next();) {
      Load l;
      bool read[4];
      if (!f.take(l.bus, read[0]) || !f.take(l.no, read[1]) || !f.take(l.p, read[2]) ||
          !f.take(l.q, read[3]) || !read[2] || !read[3])
        continue;
      if (!read[0]) l.bus = 0;
      r_.loads.push_back(l);
    }
  }

  void read_dclines() {
    // Five lines a DC line; the first two hold what the summary shows.
    ReportLines b(stem_ + ".LP4");
    std::vector<std::string> a;  // the first line of the present DC line
    for (std::size_t k = 0; b.next(); ++k) {
      if (k % 5 == 0) a = b.fields();
      if (k % 5 != 1) continue;
      DcLine d;
      if (a.size() < 9 || b.size() < 3 || !integer(a[0], d.i) || !integer(a[1], d.j) ||
          !integer(a[2], d.no))
        continue;
      double* v[] = {&d.p_i, &d.q_i, &d.p_j, &d.q_j, &d.ratio_i, &d.ratio_j};
      for (std::size_t n = 0; n < 6; ++n) number(a[3 + n], *v[n]);
      number(b[0], d.vdc_i), number(b[1], d.vdc_j), number(b[2], d.firing_angle);
      r_.dclines.push_back(d);
    }
  }

  void read_areas() {
    std::map<int, Area> schedules;
    lf::FreeReader in;
    if (counts_[6] != 0 && in.open(stem_ + ".L7")) {
      for (;;) {
        int mark = 0, area = 0, unit = 0;
        std::string name;
        double schedule = 0;
        if (!in(mark, area, name, unit, schedule)) break;
        if (mark <= 0) continue;
        name.erase(name.find_last_not_of(' ') + 1);
        schedules[area] = Area{area, name, schedule, 0, 0};
      }
    }
    for (ReportLines f(stem_ + ".LP7"); f.next();) {
      Area a;
      if (f.size() < 3 || !integer(f[0], a.number)) continue;
      if (auto it = schedules.find(a.number); it != schedules.end()) a = it->second;
      number(f[1], a.actual), number(f[2], a.regulating);
      r_.areas.push_back(a);
    }
  }

  std::string stem_;
  CaseResults& r_;
  static constexpr std::size_t kBatch = 32;  // branches kept between two cuts
  // With only_.branches above 0 and that many kept: the least loading among
  // them, which a further branch must reach to be kept.  0 before.
  double least_ = 0;
  const SummaryOnly& only_;  // what the caller lets the reading leave out
  int counts_[7] = {};  // buses, lines, transformers, DC lines, generators, loads, areas of .L0
  double vmax_ = 0, vmin_ = 0, tolerance_ = 0;
  std::vector<bool> connected_;  // by case bus: at an end of a branch in service; read when needed
  std::vector<Generator> case_generators_;  // generator rows as read, without output
};

}  // namespace

double Branch::loading() const {
  return std::max(std::hypot(pij, qij), std::hypot(pji, qji));
}

bool Generator::at_limit() const {
  constexpr double kOnLimit = 1e-6;  // per unit: a report rounds to ten decimals
  return type == -2 && (q >= qmax - kOnLimit || q <= qmin + kOnLimit);
}

const Bus* CaseResults::bus(int number) const {
  if (number < 1 || number > static_cast<int>(buses.size())) return nullptr;
  return &buses[static_cast<std::size_t>(number - 1)];
}

std::string CaseResults::bus_name(int number) const {
  const Bus* b = bus(number);
  return b ? b->name : std::string();
}

int CaseResults::shown_number(int number) const {
  const Bus* b = bus(number);
  return b && b->original != 0 ? b->original : number;
}

bool read_file_results(const std::string& stem, CaseResults& r, const SummaryOnly& only) {
  r = CaseResults{};
  r.stem = stem;
  return Reader(stem, r, only).run();
}

}  // namespace lfres

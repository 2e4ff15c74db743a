#include "support/freeread.hpp"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace lf {

bool FreeReader::open(const std::string& path) {
  close();
  f_ = std::fopen(path.c_str(), "rb");
  lineno_ = 0;
  eof_ = false;
  return f_ != nullptr;
}

void FreeReader::close() {
  if (f_) std::fclose(f_);
  f_ = nullptr;
}

bool FreeReader::next_line(std::string& out) {
  out.clear();
  if (!f_) return false;
  int c;
  bool any = false;
  while ((c = std::fgetc(f_)) != EOF) {
    any = true;
    if (c == '\n') break;
    out += static_cast<char>(c);
  }
  if (!any) {
    eof_ = true;
    return false;
  }
  if (!out.empty() && out.back() == '\r') out.pop_back();
  ++lineno_;
  return true;
}

bool FreeReader::skip() {
  std::string s;
  return next_line(s);
}

bool FreeReader::line(std::string& out) {
  return next_line(out);
}

namespace {

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}
bool ends_value(char c) {
  return is_blank(c) || c == ',' || c == '/';
}

bool to_int(const std::string& t, int32_t& out) {
  if (t.empty()) return false;
  std::size_t i = (t[0] == '+' || t[0] == '-') ? 1 : 0;
  if (i == t.size()) return false;
  for (std::size_t k = i; k < t.size(); ++k)
    if (t[k] < '0' || t[k] > '9') return false;
  errno = 0;
  long long v = std::strtoll(t.c_str(), nullptr, 10);
  if (errno == ERANGE || v > INT32_MAX || v < INT32_MIN) return false;
  out = static_cast<int32_t>(v);
  return true;
}

bool to_real(std::string t, double& out) {
  if (t.empty()) return false;
  // Only digits, signs, a point and an exponent letter make a number; the
  // exponent may be written with D as well as E.
  for (char& c : t) {
    if (c == 'd' || c == 'D') c = 'E';
    if (!((c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E'))
      return false;
  }
  char* end = nullptr;
  errno = 0;
  double v = std::strtod(t.c_str(), &end);
  if (end != t.c_str() + t.size() || errno == ERANGE || !std::isfinite(v)) return false;
  out = v;
  return true;
}

// Stores one value into one item; false when the value does not suit it.
bool store(const ReadItem& it, const std::string& text, bool quoted) {
  switch (it.kind) {
    case ReadItem::Kind::Int:
      return !quoted && to_int(text, *static_cast<int32_t*>(it.p));
    case ReadItem::Kind::Real:
      return !quoted && to_real(text, *static_cast<double*>(it.p));
    case ReadItem::Kind::String:
      *static_cast<std::string*>(it.p) = text;
      return true;
    case ReadItem::Kind::Chars: {
      char* dst = static_cast<char*>(it.p);
      std::size_t n = std::min(text.size(), it.n);
      std::memcpy(dst, text.data(), n);
      std::memset(dst + n, ' ', it.n - n);
      return true;
    }
  }
  return false;
}

}  // namespace

bool FreeReader::read(std::span<const ReadItem> items) {
  if (!f_) return false;
  std::string buf;
  std::size_t pos = 0;
  if (!next_line(buf)) return false;

  // Moves to the next non-blank character, taking further lines as needed.
  auto skip_blanks = [&]() -> bool {
    for (;;) {
      while (pos < buf.size() && is_blank(buf[pos])) ++pos;
      if (pos < buf.size()) return true;
      if (!next_line(buf)) return false;
      pos = 0;
    }
  };

  std::string value;
  bool quoted = false, null = false;
  long repeat = 0;  // values still to hand out from the last r*value
  for (const ReadItem& it : items) {
    if (repeat == 0) {
      if (!skip_blanks()) return false;
      char c = buf[pos];
      if (c == '/') return true;
      quoted = false;
      null = false;
      repeat = 1;
      // r*value or r*: a repeat count in front of a star.
      std::size_t k = pos;
      while (k < buf.size() && buf[k] >= '0' && buf[k] <= '9') ++k;
      if (k > pos && k < buf.size() && buf[k] == '*') {
        errno = 0;
        repeat = std::strtol(buf.c_str() + pos, nullptr, 10);
        if (repeat < 1 || errno == ERANGE) return false;
        pos = k + 1;
        if (pos >= buf.size() || ends_value(buf[pos])) null = true;
      } else if (c == ',') {
        null = true;
      }
      if (!null) {
        value.clear();
        char q = buf[pos];
        if (q == '\'' || q == '"') {
          quoted = true;
          ++pos;
          for (;;) {
            if (pos >= buf.size()) {  // a quoted text may go on in the next line
              if (!next_line(buf)) return false;
              pos = 0;
              continue;
            }
            if (buf[pos] == q) {
              if (pos + 1 < buf.size() && buf[pos + 1] == q) {
                value += q;
                pos += 2;
                continue;
              }
              ++pos;
              break;
            }
            value += buf[pos++];
          }
        } else {
          while (pos < buf.size() && !ends_value(buf[pos])) value += buf[pos++];
        }
      }
      // The separator behind the value: blanks and at most one comma, on this line.
      while (pos < buf.size() && is_blank(buf[pos])) ++pos;
      if (pos < buf.size() && buf[pos] == ',') {
        ++pos;
      }
    }
    --repeat;
    if (!null && !store(it, value, quoted)) return false;
  }
  return true;
}

}  // namespace lf

#include "support/freeread.hpp"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "support/numparse.hpp"
#include "support/wholefile.hpp"

namespace lf {

bool FreeReader::open(const std::string& path) {
  close();
  if (!read_whole_file(path, data_)) return false;
  open_ = true;
  // A UTF-8 byte-order mark in front of the first line is no part of it.
  if (data_.compare(0, 3, "\xEF\xBB\xBF") == 0) pos_ = 3;
  return true;
}

void FreeReader::close() {
  data_.clear();
  pos_ = 0;
  lineno_ = 0;
  eof_ = false;
  open_ = false;
}

bool FreeReader::next_line(std::string_view& out) {
  out = {};
  if (!open_) return false;
  if (pos_ >= data_.size()) {
    eof_ = true;
    return false;
  }
  std::size_t end = data_.find('\n', pos_);
  if (end == std::string::npos) end = data_.size();
  out = std::string_view(data_).substr(pos_, end - pos_);
  pos_ = end + 1;
  if (!out.empty() && out.back() == '\r') out.remove_suffix(1);
  ++lineno_;
  return true;
}

bool FreeReader::skip() {
  std::string_view s;
  return next_line(s);
}

bool FreeReader::line(std::string& out) {
  std::string_view s;
  const bool got = next_line(s);
  out.assign(s);
  return got;
}

namespace {

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}
bool ends_value(char c) {
  return is_blank(c) || c == ',' || c == '/';
}
bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool to_int(std::string_view t, int32_t& out) {
  const char* last = t.data() + t.size();
  int32_t v = 0;
  if (quick_int(t.data(), last, v) != last) return false;
  out = v;
  return true;
}

bool to_real(std::string_view t, double& out) {
  if (t.empty()) return false;
  {
    const char* last = t.data() + t.size();
    double v = 0;
    if (quick_real(t.data(), last, v, Exponents::EorD) == last) {
      out = v;
      return true;
    }
  }
  // Only digits, signs, a point and an exponent letter make a number; the
  // exponent may be written with D as well as E.
  bool d_exponent = false;
  for (char c : t) {
    if (c == 'd' || c == 'D')
      d_exponent = true;
    else if (!(is_digit(c) || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E'))
      return false;
  }
  std::string text;
  if (d_exponent) {
    text.assign(t);
    for (char& c : text)
      if (c == 'd' || c == 'D') c = 'E';
    t = text;
  }
  // A whole token that gives a normal number converts the same, correctly
  // rounded, either way, and so does one whose digits before the exponent
  // are all zero; tiny and huge values (range errors) and anything the quick
  // conversion does not take are left to strtod.
  const char* first = t.data();
  const char* last = first + t.size();
  if (*first == '+' && t.size() > 1 && first[1] != '+' && first[1] != '-') ++first;
  double v = 0;
  const auto quick = std::from_chars(first, last, v);
  if (quick.ec == std::errc() && quick.ptr == last &&
      (std::isnormal(v) || (v == 0 && t.find_first_of("123456789") >= t.find_first_of("eE")))) {
    out = v;
    return true;
  }
  if (text.empty()) text.assign(t);
  char* end = nullptr;
  errno = 0;
  v = std::strtod(text.c_str(), &end);
  if (end != text.c_str() + text.size() || errno == ERANGE || !std::isfinite(v)) return false;
  out = v;
  return true;
}

// Stores one value into one item; false when the value does not suit it.
bool store(const ReadItem& it, std::string_view text, bool quoted) {
  switch (it.kind) {
    case ReadItem::Kind::Int:
      return !quoted && to_int(text, *static_cast<int32_t*>(it.p));
    case ReadItem::Kind::Real:
      return !quoted && to_real(text, *static_cast<double*>(it.p));
    case ReadItem::Kind::String:
      static_cast<std::string*>(it.p)->assign(text);
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

constexpr std::size_t kNotPlain = std::string_view::npos;

// Takes the plain value at buf[pos] (not blank) into its item: a number that
// converts quickly, or a text without quote or star, either up to a
// separator or the line's end.  Gives the position after it, or kNotPlain
// when the value is not of that kind and the item is left alone.
std::size_t plain(const ReadItem& it, std::string_view buf, std::size_t pos) {
  const char* first = buf.data() + pos;
  const char* last = buf.data() + buf.size();
  const auto ends = [&](const char* p) { return p != nullptr && (p == last || ends_value(*p)); };
  switch (it.kind) {
    case ReadItem::Kind::Int: {
      int32_t v = 0;
      const char* p = quick_int(first, last, v);
      if (!ends(p)) return kNotPlain;
      *static_cast<int32_t*>(it.p) = v;
      return static_cast<std::size_t>(p - buf.data());
    }
    case ReadItem::Kind::Real: {
      double v = 0;
      const char* p = quick_real(first, last, v, Exponents::EorD);
      if (!ends(p)) return kNotPlain;
      *static_cast<double*>(it.p) = v;
      return static_cast<std::size_t>(p - buf.data());
    }
    case ReadItem::Kind::Chars:
    case ReadItem::Kind::String:
      if (*first == '\'' || *first == '"' || *first == ',') return kNotPlain;
      const char* p = first;
      for (; p != last && !ends_value(*p); ++p)
        if (*p == '*') return kNotPlain;
      store(it, std::string_view(first, static_cast<std::size_t>(p - first)), false);
      return static_cast<std::size_t>(p - buf.data());
  }
  return kNotPlain;
}

}  // namespace

bool FreeReader::read(std::span<const ReadItem> items) {
  std::string_view buf;
  std::size_t pos = 0;
  item_ = 0;
  bad_text_.clear();
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

  std::string_view value;
  std::string quoted_text;  // a quoted value, its doubled quotes made single
  bool quoted = false, null = false;
  long repeat = 0;  // values still to hand out from the last r*value
  for (const ReadItem& it : items) {
    ++item_;
    if (repeat == 0) {
      if (!skip_blanks()) return false;
      char c = buf[pos];
      if (c == '/') return true;
      quoted = false;
      null = false;
      repeat = 1;
      // A plain value, the common case, taken in one scan: a number
      // converted as its end is found, or a text up to the next separator.
      // A quote, a null, a star or a number that needs the full conversion
      // leaves it to the rules below.
      if (const std::size_t end = plain(it, buf, pos); end != kNotPlain) {
        pos = end;
        while (pos < buf.size() && is_blank(buf[pos])) ++pos;
        if (pos < buf.size() && buf[pos] == ',') ++pos;
        --repeat;
        continue;
      }
      // r*value or r*: a repeat count in front of a star.
      std::size_t k = pos;
      while (k < buf.size() && is_digit(buf[k])) ++k;
      if (k > pos && k < buf.size() && buf[k] == '*') {
        const auto count = std::from_chars(buf.data() + pos, buf.data() + k, repeat);
        if (count.ec != std::errc() || repeat < 1) {
          bad_text_.assign(buf.substr(pos, k + 1 - pos));
          return false;
        }
        pos = k + 1;
        if (pos >= buf.size() || ends_value(buf[pos])) null = true;
      } else if (c == ',') {
        null = true;
      }
      if (!null) {
        char q = buf[pos];
        const bool is_quote = q == '\'' || q == '"';
        const std::size_t close = is_quote ? buf.find(q, pos + 1) : std::string_view::npos;
        if (close != std::string_view::npos && (close + 1 == buf.size() || buf[close + 1] != q)) {
          // A quoted text on one line without doubled quotes: as it stands.
          quoted = true;
          value = buf.substr(pos + 1, close - pos - 1);
          pos = close + 1;
        } else if (is_quote) {
          quoted = true;
          quoted_text.clear();
          ++pos;
          for (;;) {
            if (pos >= buf.size()) {  // a quoted text may go on in the next line
              if (!next_line(buf)) return false;
              pos = 0;
              continue;
            }
            if (buf[pos] == q) {
              if (pos + 1 < buf.size() && buf[pos + 1] == q) {
                quoted_text += q;
                pos += 2;
                continue;
              }
              ++pos;
              break;
            }
            quoted_text += buf[pos++];
          }
          value = quoted_text;
        } else {
          const std::size_t start = pos;
          while (pos < buf.size() && !ends_value(buf[pos])) ++pos;
          value = buf.substr(start, pos - start);
        }
      }
      // The separator behind the value: blanks and at most one comma, on this line.
      while (pos < buf.size() && is_blank(buf[pos])) ++pos;
      if (pos < buf.size() && buf[pos] == ',') {
        ++pos;
      }
    }
    --repeat;
    if (!null && !store(it, value, quoted)) {
      bad_text_.assign(value);
      return false;
    }
  }
  return true;
}

}  // namespace lf

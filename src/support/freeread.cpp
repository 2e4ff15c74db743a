#include "support/freeread.hpp"

#include <array>
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
  if (!file_.load(path)) return false;
  open_ = true;
  // A UTF-8 byte-order mark in front of the first line is no part of it.
  if (file_.text().starts_with("\xEF\xBB\xBF")) pos_ = 3;
  return true;
}

void FreeReader::close() {
  file_.clear();
  pos_ = 0;
  lineno_ = 0;
  eof_ = false;
  open_ = false;
}

inline bool FreeReader::next_line(std::string_view& out) {
  const std::string_view text = file_.text();
  if (!open_) return false;
  if (pos_ >= text.size()) {
    eof_ = true;
    return false;
  }
  const char* first = text.data() + pos_;
  const auto left = text.size() - pos_;
  const auto* newline = static_cast<const char*>(std::memchr(first, '\n', left));
  std::size_t n = newline != nullptr ? static_cast<std::size_t>(newline - first) : left;
  pos_ += n + 1;
  if (n != 0 && first[n - 1] == '\r') --n;
  out = std::string_view(first, n);
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

// What a character is to the reader, one bit each: a blank (space, tab),
// any character that ends a value (a blank, a comma, a slash), and a star,
// which ends the repeat count in front of a value.
constexpr unsigned char kBlank = 1, kEnds = 2, kStar = 4;
constexpr std::array<unsigned char, 256> kClass = [] {
  std::array<unsigned char, 256> c{};
  c[' '] = c['\t'] = kBlank | kEnds;
  c[','] = c['/'] = kEnds;
  c['*'] = kStar;
  return c;
}();

bool is_blank(char c) {
  return (kClass[static_cast<unsigned char>(c)] & kBlank) != 0;
}
bool ends_value(char c) {
  return (kClass[static_cast<unsigned char>(c)] & kEnds) != 0;
}
// Where a plain text stops: at the end of the value or at a star.
bool ends_text(char c) {
  return (kClass[static_cast<unsigned char>(c)] & (kEnds | kStar)) != 0;
}
bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// Where the library's conversion starts: past a leading plus sign, which it
// does not take, unless another sign follows (that is no number).
const char* past_plus(const char* first, const char* last) {
  return first + (*first == '+' && first + 1 != last && first[1] != '+' && first[1] != '-');
}

bool to_int(std::string_view t, int32_t& out) {
  const char* last = t.data() + t.size();
  int32_t v = 0;
  if (quick_int(t.data(), last, v) != last) return false;
  out = v;
  return true;
}

// A real value the full way: one that is not plain (repeated, or beyond the
// quick conversion).
bool to_real(std::string_view t, double& out) {
  if (t.empty()) return false;
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
  // are all zero; tiny and huge values (range errors) and anything from_chars
  // does not take are left to strtod.
  const char* last = t.data() + t.size();
  const char* first = past_plus(t.data(), last);
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

// The separator behind a value at p: blanks and at most one comma, on this
// line, and the blanks behind the comma; gives where the next value starts,
// or the end of the line.  The byte at the line's end may be read: it is a
// line end or a zero, never a blank.
[[gnu::always_inline]] inline const char* past_separator(const char* p, const char* end) {
  if (*p == ' ' && !ends_value(p[1])) return p + 1;  // one blank, the common case
  while (p != end && is_blank(*p)) ++p;
  if (p != end && *p == ',') {
    ++p;
    while (p != end && is_blank(*p)) ++p;
  }
  return p;
}

// Takes the plain value at p (not blank; at the line's end there is none)
// into its item: a number that converts quickly; or for a text item a text
// without star that does not start with a slash or comma, up to a separator
// or the line's end, or a text between quotes on this line without doubled
// quotes.  Gives where the next value starts, past the separator, or
// nullptr when the value is not of that kind and the item is left alone.
// Inlined into both of the reader's loops, which spend most of their time
// in it.
[[gnu::always_inline]] inline const char* plain(const ReadItem& it, const char* p,
                                                const char* last) {
  // Where the next value starts when a number ends at q, or nullptr when
  // neither a separator nor the line's end follows it.
  const auto next = [last](const char* q) -> const char* {
    // One blank, the common case, is tested ahead of the line's end as well
    // as inside past_separator: a number's end then needs one test, which
    // the compiler does not arrange by itself.
    if (*q == ' ' && !ends_value(q[1])) return q + 1;
    if (q != last && !ends_value(*q)) return nullptr;
    return past_separator(q, last);
  };
  // One digit alone, most numbers of a case, needs no conversion.
  const unsigned digit = static_cast<unsigned char>(*p) - unsigned{'0'};
  switch (it.kind) {
    case ReadItem::Kind::Int: {
      if (digit <= 9) {
        if (const char* n = next(p + 1)) {
          *static_cast<int32_t*>(it.p) = static_cast<int32_t>(digit);
          return n;
        }
      }
      int32_t v = 0;
      const char* q = quick_int_padded(p, last, v);
      const char* n = q != nullptr ? next(q) : nullptr;
      if (n != nullptr) *static_cast<int32_t*>(it.p) = v;
      return n;
    }
    case ReadItem::Kind::Real: {
      if (digit <= 9) {
        if (const char* n = next(p + 1)) {
          *static_cast<double*>(it.p) = digit;
          return n;
        }
      }
      // A number of many digits converts in the C++ library's correctly
      // rounded way when the value is a normal one.
      double v = 0;
      const char* q = quick_real_padded(p, last, v, Exponents::EorD);
      if (q == nullptr) {
        const auto [ptr, ec] = std::from_chars(past_plus(p, last), last, v);
        q = ec == std::errc() && std::isnormal(v) ? ptr : nullptr;
      }
      const char* n = q != nullptr ? next(q) : nullptr;
      if (n != nullptr) *static_cast<double*>(it.p) = v;
      return n;
    }
    case ReadItem::Kind::Chars:
    case ReadItem::Kind::String: {
      const char quote = *p;
      if (quote == '\'' || quote == '"') {
        const auto* close = static_cast<const char*>(
            std::memchr(p + 1, quote, static_cast<std::size_t>(last - p - 1)));
        if (close == nullptr || (close + 1 != last && close[1] == quote)) return nullptr;
        store(it, std::string_view(p + 1, static_cast<std::size_t>(close - p - 1)), true);
        return past_separator(close + 1, last);
      }
      if (quote == ',' || quote == '/') return nullptr;
      const char* q = p;
      for (; q != last && !ends_text(*q); ++q) {
      }
      if (q == p || (q != last && *q == '*')) return nullptr;
      store(it, std::string_view(p, static_cast<std::size_t>(q - p)), false);
      return past_separator(q, last);
    }
  }
  return nullptr;
}

}  // namespace

bool FreeReader::read(std::span<const ReadItem> items) {
  item_ = 0;
  bad_text_.clear();
  std::string_view line;
  if (!next_line(line)) return false;
  const char* p = line.data();
  const char* const end = p + line.size();
  // The common statement: plain values on one line, taken one after the
  // other while they last; the first one that is not (or the end of the
  // line) leaves the rest to every rule.
  while (p != end && is_blank(*p)) ++p;
  const std::size_t n = items.size();
  std::size_t k = 0;
  for (; k != n; ++k) {
    const char* next = plain(items[k], p, end);
    if (next == nullptr) break;
    p = next;
  }
  item_ = k;
  return k == n || read_rest(items, p, end);
}

bool FreeReader::read_rest(std::span<const ReadItem> items, const char* p, const char* end) {
  std::string_view line;
  const auto take_line = [&] {
    if (!next_line(line)) return false;
    p = line.data();
    end = p + line.size();
    return true;
  };
  // Moves to the next non-blank character, taking further lines as needed.
  const auto skip_blanks = [&] {
    for (;;) {
      while (p != end && is_blank(*p)) ++p;
      if (p != end) return true;
      if (!take_line()) return false;
    }
  };

  std::string_view value;
  std::string quoted_text;  // a quoted value, its doubled quotes made single
  bool quoted = false, null = false;
  long repeat = 0;  // values still to hand out from the last r*value
  for (const ReadItem& it : items.subspan(item_)) {
    ++item_;
    if (repeat == 0) {
      if ((p == end || is_blank(*p)) && !skip_blanks()) return false;
      // A plain value, the common case, taken in one scan: a number
      // converted as its end is found, or a text up to the next separator.
      // A slash, a quote, a null, a star or a number that needs the full
      // conversion leaves it to the rules below.
      if (const char* next = plain(it, p, end)) {
        p = next;
        continue;
      }
      if (*p == '/') return true;
      quoted = false;
      null = false;
      repeat = 1;
      // r*value or r*: a repeat count in front of a star.
      const char* k = p;
      while (k != end && is_digit(*k)) ++k;
      if (k != p && k != end && *k == '*') {
        const auto count = std::from_chars(p, k, repeat);
        if (count.ec != std::errc() || repeat < 1) {
          bad_text_.assign(p, k + 1);
          return false;
        }
        p = k + 1;
        if (p == end || ends_value(*p)) null = true;
      } else if (*p == ',') {
        null = true;
      }
      if (!null) {
        const char q = *p;
        const char* close = nullptr;
        if (q == '\'' || q == '"') {
          quoted = true;
          close = static_cast<const char*>(
              std::memchr(p + 1, q, static_cast<std::size_t>(end - p - 1)));
        }
        if (close != nullptr && (close + 1 == end || close[1] != q)) {
          // A quoted text on one line without doubled quotes: as it stands.
          value = std::string_view(p + 1, static_cast<std::size_t>(close - p - 1));
          p = close + 1;
        } else if (quoted) {
          quoted_text.clear();
          ++p;
          for (;;) {
            if (p == end) {  // a quoted text may go on in the next line
              if (!take_line()) return false;
              continue;
            }
            if (*p == q) {
              if (p + 1 != end && p[1] == q) {
                quoted_text += q;
                p += 2;
                continue;
              }
              ++p;
              break;
            }
            quoted_text += *p++;
          }
          value = quoted_text;
        } else {
          const char* start = p;
          while (p != end && !ends_value(*p)) ++p;
          value = std::string_view(start, static_cast<std::size_t>(p - start));
        }
      }
      p = past_separator(p, end);
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

#include "support/fmt.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace lf {

namespace {

// Puts the text of the field starting at out[at] right-justified in w
// columns, or w asterisks when it is longer.
void justify(std::string& out, std::size_t at, int w) {
  const std::size_t n = out.size() - at, width = static_cast<std::size_t>(std::max(w, 0));
  if (n > width) {
    out.resize(at);
    out.append(width, '*');
  } else {
    out.insert(at, width - n, ' ');
  }
}

// Drops the zero in front of the point of the field starting at out[at]
// ("0.5" -> ".5", "-0.5" -> "-.5") when the field is wider than w with it.
void drop_leading_zero(std::string& out, std::size_t at, int w) {
  if (static_cast<int>(out.size() - at) <= w) return;
  const std::size_t z = at + ((out[at] == '-' || out[at] == '+') ? 1 : 0);
  if (out.size() > z + 1 && out[z] == '0' && out[z + 1] == '.') out.erase(z, 1);
}

bool not_finite(std::string& out, double v, int w) {
  if (std::isfinite(v)) return false;
  const std::size_t at = out.size();
  out += std::isnan(v) ? "NaN" : v < 0 ? "-Infinity" : "Infinity";
  justify(out, at, w);
  return true;
}

// 10^k for k = 0..19, all that fit in 64 bits.
constexpr auto kPow10 = [] {
  std::array<uint64_t, 20> t{};
  uint64_t p = 1;
  for (uint64_t& x : t) {
    x = p;
    p *= 10;
  }
  return t;
}();

// The two digits of each number 0..99, in order.
constexpr auto kDigitPairs = [] {
  std::array<char, 200> t{};
  for (int k = 0; k < 100; ++k) {
    t[2 * k] = static_cast<char>('0' + k / 10);
    t[2 * k + 1] = static_cast<char>('0' + k % 10);
  }
  return t;
}();

// Writes the last n decimal digits of x (leading zeros included) to the n
// characters before p, two at a time; returns where they begin.
char* digits_before(char* p, uint64_t x, int n) {
  for (; n >= 2; n -= 2, x /= 100) {
    p -= 2;
    std::memcpy(p, &kDigitPairs[2 * (x % 100)], 2);
  }
  if (n == 1) *--p = static_cast<char>('0' + x % 10);
  return p;
}

// v * 10^d correctly rounded (ties to even) to an integer, when v is not
// huge, d <= 19 and the result fits in 64 bits: v = m * 2^e exactly, so
// m * 10^d fits in 128 bits and the bits shifted out decide the rounding.
bool scaled_round(double v, int d, uint64_t& q) {
  const uint64_t bits = std::bit_cast<uint64_t>(v) & ~(uint64_t{1} << 63);
  const int biased = static_cast<int>(bits >> 52);
  const uint64_t frac = bits & ((uint64_t{1} << 52) - 1);
  const uint64_t m = biased == 0 ? frac : frac | (uint64_t{1} << 52);
  const int shift = biased == 0 ? 1074 : 1075 - biased;
  if (shift <= 0 || d > 19) return false;
  if (shift >= 128) {  // below 2^-75: m * 10^d * 2^-shift < 1/2
    q = 0;
    return true;
  }
  using u128 = unsigned __int128;
  const u128 p = static_cast<u128>(m) * kPow10[d];
  // The result truncated with the first bit below it: up when that bit is
  // set and either a later bit is (above the half) or the result is odd.
  const u128 r2 = p >> (shift - 1);
  u128 r = r2 >> 1;
  if ((r2 & 1) != 0 && ((r & 1) != 0 || (r2 << (shift - 1)) != p)) ++r;
  if (r > UINT64_MAX) return false;
  q = static_cast<uint64_t>(r);
  return true;
}

// The eight decimal digits of x < 10^8, leading zeros included, as the
// bytes of a word, the first digit in the lowest byte, each byte the
// digit's value 0..9: all at once by splitting the word into halves,
// quarters and eighths, each step a multiplication by a reciprocal.  Below
// 10^4 (short numbers are common) the first half is known to be zeros.
[[gnu::always_inline]] inline uint64_t eight_digits(uint32_t x) {
  if (x < 10000) {
    const uint64_t hundreds = (x * uint64_t{5243}) >> 19;             // x / 100
    const uint64_t quarters = hundreds | (x - 100 * hundreds) << 16;  // below 100
    const uint64_t tens = ((quarters * 103) >> 10) & 0x000F000Fu;     // each quarter / 10
    return (tens | (quarters - 10 * tens) << 8) << 32;
  }
  const uint64_t halves = x / 10000 | static_cast<uint64_t>(x % 10000) << 32;  // below 10^4
  const uint64_t hundreds = ((halves * 10486) >> 20) & 0x0000007F0000007Fu;    // each half / 100
  const uint64_t quarters = hundreds | (halves - 100 * hundreds) << 16;        // below 100
  const uint64_t tens = ((quarters * 103) >> 10) & 0x000F000F000F000Fu;        // each quarter / 10
  return tens | (quarters - 10 * tens) << 8;
}

constexpr uint64_t kZeros = 0x3030303030303030u;   // '0' in each byte: digit values to text
constexpr uint64_t kBlanks = 0x2020202020202020u;  // ' ' in each byte

// Copies the first and the last N of the n characters at from to f.
template <std::size_t N>
void ends_of(char* f, const char* from, int n) {
  std::memcpy(f, from, N);
  std::memcpy(f + n - static_cast<int>(N), from + n - static_cast<int>(N), N);
}

// Copies n <= 32 characters from `from` to f by a few fixed-size moves.
void copy_short(char* f, const char* from, int n) {
  if (n >= 16) {
    ends_of<16>(f, from, n);
  } else if (n >= 8) {
    ends_of<8>(f, from, n);
  } else if (n >= 4) {
    ends_of<4>(f, from, n);
  } else {
    for (int k = 0; k < n; ++k) f[k] = from[k];
  }
}

// Fields this wide or narrower, of a value with at most sixteen digits and
// 1..15 decimals, are built in a small buffer from whole words of digits.
constexpr int kShortField = 32;
constexpr int kMostShortPlaces = 15;
constexpr uint64_t kEightDigits = 100'000'000;
constexpr uint64_t kSixteenDigits = kEightDigits * kEightDigits;

// 10^k for k = 0..kMostShortPlaces as doubles, all exact.
constexpr auto kPow10Real = [] {
  std::array<double, kMostShortPlaces + 1> t{};
  double p = 1;
  for (double& x : t) {
    x = p;
    p *= 10;
  }
  return t;
}();

// |v| * 10^d rounded to an integer by the product in double precision,
// where that product decides it: below 2^44 its own rounding error is at
// most 2^-9, so a fraction further than kTieMargin from one half rounds
// the same way as the exact product's.  False for anything else (near a
// tie, large, not finite), which the exact rounding takes.
constexpr double kQuickLimit = 0x1p44;
static_assert(kQuickLimit < static_cast<double>(kSixteenDigits), "a quick result is short");
constexpr double kTieMargin = 0x1p-8;
bool quick_scaled_round(double v, int d, uint64_t& q) {
  const double x = std::fabs(v) * kPow10Real[static_cast<std::size_t>(d)];
  if (!(x < kQuickLimit)) return false;
  const auto whole = static_cast<int64_t>(x);
  const double frac = x - static_cast<double>(whole);  // exact
  if (std::fabs(frac - 0.5) < kTieMargin) return false;
  q = static_cast<uint64_t>(whole) + (frac > 0.5 ? 1 : 0);
  return true;
}

char* stars(char* f, int width) {
  for (int k = 0; k < width; ++k) *f++ = '*';
  return f;
}

// The end of Fw.d in the short case: the digits placed in the buffer t
// with the point and the decimals behind it, the field to end at t[kEnd]:
// blanks and the sign in front of the int_len whole digits (or stars when
// they do not fit), all copied to f.
constexpr int kEnd = 56;  // the field's end in the buffer
[[gnu::always_inline]] inline char* finish_short(char* f, char* t, bool neg, int int_len,
                                                 bool zero_int, int w, int d) {
  const int sign = neg ? 1 : 0;
  if (zero_int && sign + 2 + d > w) int_len = 0;  // the lone zero goes
  if (sign + int_len + 1 + d > w) return stars(f, w);
  const int start = kEnd - 1 - d - int_len - sign;
  const uint64_t blanks[4] = {kBlanks, kBlanks, kBlanks, kBlanks};
  std::memcpy(t + start - 32, blanks, 32);
  if (neg) t[start] = '-';
  copy_short(f, t + kEnd - w, w);
  return f + w;
}

// Fw.d of q * 10^-d for w <= kShortField, 1 <= d <= kMostShortPlaces and
// q < kSixteenDigits.  The digits of q, leading zeros included, are the
// bytes of words, the first digit lowest: eight in one word when they and
// the point fit, else sixteen in two.  They go into a buffer whole, each
// word where its whole-part digits belong and again, shifted, where its
// decimals do, one place on behind the point.
[[gnu::always_inline]] inline char* put_f_short(char* f, uint64_t q, bool neg, int w, int d) {
  const bool zero_int = q < kPow10[static_cast<std::size_t>(d)];
  alignas(16) char t[kEnd + 8];
  if (q < kEightDigits && d < 8) {
    const uint64_t digits = eight_digits(static_cast<uint32_t>(q));
    const int zeros = digits != 0 ? std::countr_zero(digits) / 8 : 8;
    const uint64_t text = digits + kZeros;
    std::memcpy(t + kEnd - 9, &text, 8);
    t[kEnd - 1 - d] = '.';
    const uint64_t decimals = text >> (8 * (8 - d));
    std::memcpy(t + kEnd - d, &decimals, 8);
    return finish_short(f, t, neg, std::max(8 - d - zeros, 1), zero_int, w, d);
  }
  const uint64_t high =
      q >= kEightDigits ? eight_digits(static_cast<uint32_t>(q / kEightDigits)) : 0;
  const uint64_t low = eight_digits(static_cast<uint32_t>(q % kEightDigits));
  const int zeros = high != 0  ? std::countr_zero(high) / 8
                    : low != 0 ? 8 + std::countr_zero(low) / 8
                               : 16;
  const uint64_t first = high + kZeros, last = low + kZeros;
  std::memcpy(t + kEnd - 17, &first, 8);
  if (d >= 8) {  // the last eight digits all decimals, the first 16 - d of them whole
    t[kEnd - 1 - d] = '.';
    const uint64_t decimals = (first >> (8 * (15 - d))) >> 8;
    std::memcpy(t + kEnd - d, &decimals, 8);
    std::memcpy(t + kEnd - 8, &last, 8);
  } else {  // the first eight all whole, d of the last decimals
    std::memcpy(t + kEnd - 9, &last, 8);
    t[kEnd - 1 - d] = '.';
    const uint64_t decimals = last >> (8 * (8 - d));
    std::memcpy(t + kEnd - d, &decimals, 8);
  }
  return finish_short(f, t, neg, std::max(16 - d - zeros, 1), zero_int, w, d);
}

// Fw.d for what the exact rounding does not take (not finite, huge, more
// than 19 decimals), appended to out: exactly max(w, 0) characters.
void put_f_slow(std::string& out, double v, int w, int d) {
  if (not_finite(out, v, w)) return;
  // Room for the field, a zero to drop and a point to add: a text that does
  // not fit in it overflows the field anyway.
  const std::size_t at = out.size(), room = static_cast<std::size_t>(std::max(w, 0)) + 2;
  out.resize(at + room + 1);
  char* first = out.data() + at;
  const auto [end, ec] = std::to_chars(first, first + room, v, std::chars_format::fixed, d);
  if (ec != std::errc()) {
    out.resize(at);
    out.append(room - 2, '*');
    return;
  }
  std::size_t n = static_cast<std::size_t>(end - first);
  if (d == 0) first[n++] = '.';
  out.resize(at + n);
  drop_leading_zero(out, at, w);
  justify(out, at, w);
}

// Fw.d, what the quick rounding leaves: the exact rounding, and the general
// writing where it does not fit the short case.
[[gnu::noinline]] char* put_f_exact(char* f, double v, int w, int d) {
  const int width = std::max(w, 0);
  if (d < 0) d = 0;
  uint64_t q;
  if (!std::isfinite(v) || !scaled_round(v, d, q)) {
    std::string s;
    put_f_slow(s, v, w, d);
    std::memcpy(f, s.data(), static_cast<std::size_t>(width));
    return f + width;
  }
  const bool neg = std::signbit(v);
  if (w <= kShortField && d >= 1 && d <= kMostShortPlaces && q < kSixteenDigits)
    return put_f_short(f, q, neg, width, d);
  // The digits of q with the point d places from the right; a lone zero in
  // front of the point goes when the field is too narrow for it.  Written
  // from the right end of the field.
  const uint64_t int_part = q / kPow10[static_cast<std::size_t>(d)];
  int int_len = 1;
  for (uint64_t r = int_part; r >= 10; r /= 10) ++int_len;
  const bool zero_int = int_part == 0;
  int len = (neg ? 1 : 0) + int_len + 1 + d;
  const bool drop = zero_int && len > w;
  if (drop) --len;
  if (len > w) return stars(f, width);
  char* p = digits_before(f + w, q % kPow10[static_cast<std::size_t>(d)], d);
  *--p = '.';
  if (!drop) p = digits_before(p, int_part, int_len);
  if (neg) *--p = '-';
  while (p != f) *--p = ' ';
  return f + w;
}

// Fw.d written at f: the short case here, the rest out of line.
[[gnu::always_inline]] inline char* put_f_field(char* f, double v, int w, int d) {
  uint64_t q;
  if (w >= 0 && w <= kShortField && d >= 1 && d <= kMostShortPlaces &&
      quick_scaled_round(v, d, q))
    return put_f_short(f, q, std::signbit(v), w, d);
  return put_f_exact(f, v, w, d);
}

// Iw written at f: a value of at most eight digits here, from a word of
// them at the end of a buffer with blanks in front of the significant ones.
[[gnu::noinline]] char* put_i_long(char* f, long long v, int w);
[[gnu::always_inline]] inline char* put_i_field(char* f, long long v, int w) {
  const bool neg = v < 0;
  const uint64_t mag = neg ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
  if (mag >= kEightDigits || w < 0 || w > kShortField) return put_i_long(f, v, w);
  const uint64_t digits = eight_digits(static_cast<uint32_t>(mag));
  const int n = digits == 0 ? 1 : 8 - std::countr_zero(digits) / 8;
  constexpr int kEnd = 48;  // the field's end in the buffer
  const int start = kEnd - n - (neg ? 1 : 0);
  if (kEnd - start > w) return stars(f, w);
  alignas(16) char t[kEnd];
  const uint64_t text = digits + kZeros;
  std::memcpy(t + kEnd - 8, &text, 8);
  const uint64_t blanks[4] = {kBlanks, kBlanks, kBlanks, kBlanks};
  std::memcpy(t + start - 32, blanks, 32);
  if (neg) t[start] = '-';
  copy_short(f, t + kEnd - w, w);
  return f + w;
}

// Iw for the values and widths the short case does not take.
char* put_i_long(char* f, long long v, int w) {
  char buf[24];
  const int n = static_cast<int>(std::to_chars(buf, buf + sizeof buf, v).ptr - buf);
  if (n > w) return stars(f, std::max(w, 0));
  for (int k = n; k < w; ++k) *f++ = ' ';
  for (int k = 0; k < n; ++k) *f++ = buf[k];
  return f;
}

}  // namespace

char* put_f(char* f, double v, int w, int d) {
  return put_f_field(f, v, w, d);
}

namespace {

// Fields of one width and number of decimals, each followed by `after`;
// with W and D given at compile time the offsets and shifts of the short
// case are constants.
template <int W = -1, int D = -1>
char* put_f_fields(char* f, std::initializer_list<double> v, int w, int d, char after) {
  for (const double x : v) {
    f = put_f_field(f, x, W >= 0 ? W : w, D >= 0 ? D : d);
    *f++ = after;
  }
  return f;
}

}  // namespace

char* put_f(char* f, std::initializer_list<double> v, int w, int d, char after) {
  // The fields of the report files.
  if (w == 10 && d == 5) return put_f_fields<10, 5>(f, v, w, d, after);
  if (w == 15 && d == 10) return put_f_fields<15, 10>(f, v, w, d, after);
  if (w == 20 && d == 10) return put_f_fields<20, 10>(f, v, w, d, after);
  return put_f_fields(f, v, w, d, after);
}

char* put_i(char* f, long long v, int w) {
  return put_i_field(f, v, w);
}

namespace {

// Fields of one width, each followed by `after`; with W given at compile
// time the offsets of the short case are constants.
template <int W = -1>
char* put_i_fields(char* f, std::initializer_list<long long> v, int w, char after) {
  for (const long long x : v) {
    f = put_i_field(f, x, W >= 0 ? W : w);
    *f++ = after;
  }
  return f;
}

}  // namespace

char* put_i(char* f, std::initializer_list<long long> v, int w, char after) {
  // The fields of the report files.
  if (w == 6) return put_i_fields<6>(f, v, w, after);
  if (w == 4) return put_i_fields<4>(f, v, w, after);
  return put_i_fields(f, v, w, after);
}

void put_f(std::string& out, double v, int w, int d) {
  const std::size_t at = out.size();
  out.resize(at + static_cast<std::size_t>(std::max(w, 0)));
  put_f(out.data() + at, v, w, d);
}

void put_i(std::string& out, long long v, int w) {
  const std::size_t at = out.size();
  out.resize(at + static_cast<std::size_t>(std::max(w, 0)));
  put_i(out.data() + at, v, w);
}

std::string fmt_i(long long v, int w) {
  std::string s;
  put_i(s, v, w);
  return s;
}

std::string fmt_f(double v, int w, int d) {
  std::string s;
  put_f(s, v, w, d);
  return s;
}

std::string fmt_e(double v, int w, int d) {
  std::string s;
  if (not_finite(s, v, w)) return s;
  if (d < 1) return std::string(static_cast<std::size_t>(std::max(w, 0)), '*');
  s = (std::signbit(v) && v != 0.0) ? "-0." : "0.";
  int exp10 = 0;
  if (v == 0.0) {
    s.append(static_cast<std::size_t>(d), '0');
  } else {
    // d significant digits, then move the point in front of them.
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*e", d - 1, std::fabs(v));
    char* e = std::strchr(buf, 'e');
    exp10 = std::atoi(e + 1) + 1;
    for (char* p = buf; p < e; ++p)
      if (*p != '.') s += *p;
  }
  int ax = std::abs(exp10);
  char ex[16];
  if (ax <= 99)
    std::snprintf(ex, sizeof ex, "E%c%02d", exp10 < 0 ? '-' : '+', ax);
  else
    std::snprintf(ex, sizeof ex, "%c%03d", exp10 < 0 ? '-' : '+', ax);
  s += ex;
  drop_leading_zero(s, 0, w);
  justify(s, 0, w);
  return s;
}

std::string fmt_a(std::string_view s, int w) {
  if (w < 0) w = 0;
  if (static_cast<int>(s.size()) >= w) return std::string(s.substr(0, static_cast<std::size_t>(w)));
  return std::string(static_cast<std::size_t>(w) - s.size(), ' ') + std::string(s);
}

std::string fmt_x(int n) {
  return std::string(n > 0 ? static_cast<std::size_t>(n) : 0, ' ');
}

}  // namespace lf

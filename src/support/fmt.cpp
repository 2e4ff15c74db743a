#include "support/fmt.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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
  u128 r = p >> shift;
  const u128 rest = p & ((u128{1} << shift) - 1), half = u128{1} << (shift - 1);
  if (rest > half || (rest == half && (r & 1) != 0)) ++r;
  if (r > UINT64_MAX) return false;
  q = static_cast<uint64_t>(r);
  return true;
}

}  // namespace

namespace {

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

char* stars(char* f, int width) {
  for (int k = 0; k < width; ++k) *f++ = '*';
  return f;
}

}  // namespace

char* put_f(char* f, double v, int w, int d) {
  const int width = std::max(w, 0);
  if (d < 0) d = 0;
  uint64_t q;
  if (!std::isfinite(v) || !scaled_round(v, d, q)) {
    std::string s;
    put_f_slow(s, v, w, d);
    std::memcpy(f, s.data(), static_cast<std::size_t>(width));
    return f + width;
  }
  // The digits of q with the point d places from the right; a lone zero in
  // front of the point goes when the field is too narrow for it.  Written
  // from the right end of the field.
  const uint64_t int_part = q / kPow10[static_cast<std::size_t>(d)];
  int int_len = 1;
  for (uint64_t r = int_part; r >= 10; r /= 10) ++int_len;
  const bool neg = std::signbit(v), zero_int = int_part == 0;
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

void put_f(std::string& out, double v, int w, int d) {
  const std::size_t at = out.size();
  out.resize(at + static_cast<std::size_t>(std::max(w, 0)));
  put_f(out.data() + at, v, w, d);
}

char* put_i(char* f, long long v, int w) {
  const int width = std::max(w, 0);
  char buf[24];
  const int n = static_cast<int>(std::to_chars(buf, buf + sizeof buf, v).ptr - buf);
  if (n > w) return stars(f, width);
  for (int k = n; k < w; ++k) *f++ = ' ';
  for (int k = 0; k < n; ++k) *f++ = buf[k];
  return f;
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

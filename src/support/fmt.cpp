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

// v * 10^d correctly rounded (ties to even) to an integer, when v is not
// huge, d <= 19 and the result fits in 64 bits: v = m * 2^e exactly, so
// m * 10^d fits in 128 bits and the bits shifted out decide the rounding.
bool scaled_round(double v, int d, uint64_t& q) {
  static constexpr auto kPow10 = [] {
    std::array<uint64_t, 20> t{};
    uint64_t p = 1;
    for (uint64_t& x : t) {
      x = p;
      p *= 10;
    }
    return t;
  }();
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

void put_f(std::string& out, double v, int w, int d) {
  if (not_finite(out, v, w)) return;
  if (d < 0) d = 0;
  uint64_t q;
  if (scaled_round(v, d, q)) {
    // The digits of q with the point d places from the right; a lone zero
    // in front of the point goes when the field is too narrow for it.  The
    // field is made in place.
    char digits[20];
    const int nq = static_cast<int>(std::to_chars(digits, digits + sizeof digits, q).ptr - digits);
    const bool neg = std::signbit(v), zero_int = q == 0 || nq <= d;
    const int int_len = zero_int ? 1 : nq - d;
    int len = (neg ? 1 : 0) + int_len + 1 + d;
    const bool drop = zero_int && len > w;
    if (drop) --len;
    if (len > w) {
      out.append(static_cast<std::size_t>(std::max(w, 0)), '*');
      return;
    }
    const std::size_t at = out.size();
    out.resize(at + static_cast<std::size_t>(w));
    char* f = out.data() + at;
    std::memset(f, ' ', static_cast<std::size_t>(w - len));
    f += w - len;
    if (neg) *f++ = '-';
    if (!zero_int) {
      std::memcpy(f, digits, static_cast<std::size_t>(int_len));
      f += int_len;
    } else if (!drop) {
      *f++ = '0';
    }
    *f++ = '.';
    if (!zero_int) {
      std::memcpy(f, digits + int_len, static_cast<std::size_t>(d));
    } else if (d > 0) {
      std::memset(f, '0', static_cast<std::size_t>(d - nq));
      std::memcpy(f + (d - nq), digits, static_cast<std::size_t>(nq));
    }
    return;
  }
  // Huge values and long fractions.  Room for the field, a zero to drop and
  // a point to add: a text that does not fit in it overflows the field anyway.
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

void put_i(std::string& out, long long v, int w) {
  char buf[24];
  const int n = static_cast<int>(std::to_chars(buf, buf + sizeof buf, v).ptr - buf);
  if (n > w) {
    out.append(static_cast<std::size_t>(std::max(w, 0)), '*');
    return;
  }
  // The field is made in place.
  const std::size_t at = out.size();
  out.resize(at + static_cast<std::size_t>(w));
  std::memset(out.data() + at, ' ', static_cast<std::size_t>(w - n));
  std::memcpy(out.data() + at + (w - n), buf, static_cast<std::size_t>(n));
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

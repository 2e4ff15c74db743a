#include "support/fmt.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace lf {

namespace {

std::string fit(std::string s, int w) {
  if (w < 0) w = 0;
  if (static_cast<int>(s.size()) > w) return std::string(static_cast<std::size_t>(w), '*');
  return std::string(static_cast<std::size_t>(w) - s.size(), ' ') + s;
}

// Drops the zero in front of the point ("0.5" -> ".5", "-0.5" -> "-.5") when
// the text does not fit in w columns with it.
std::string drop_leading_zero(std::string s, int w) {
  if (static_cast<int>(s.size()) <= w) return s;
  std::size_t z = (s[0] == '-' || s[0] == '+') ? 1 : 0;
  if (s.size() > z + 1 && s[z] == '0' && s[z + 1] == '.') s.erase(z, 1);
  return s;
}

}  // namespace

std::string fmt_i(long long v, int w) {
  return fit(std::to_string(v), w);
}

std::string fmt_f(double v, int w, int d) {
  if (std::isnan(v)) return fit("NaN", w);
  if (std::isinf(v)) return fit(v < 0 ? "-Infinity" : "Infinity", w);
  if (d < 0) d = 0;
  int n = std::snprintf(nullptr, 0, "%.*f", d, v);
  std::string s(static_cast<std::size_t>(n), '\0');
  std::snprintf(s.data(), s.size() + 1, "%.*f", d, v);
  if (d == 0) s += '.';
  return fit(drop_leading_zero(std::move(s), w), w);
}

std::string fmt_e(double v, int w, int d) {
  if (std::isnan(v)) return fit("NaN", w);
  if (std::isinf(v)) return fit(v < 0 ? "-Infinity" : "Infinity", w);
  if (d < 1) return fit(std::string(static_cast<std::size_t>(w) + 1, '*'), w);
  std::string mant;
  int exp10 = 0;
  if (v == 0.0) {
    mant = std::string(static_cast<std::size_t>(d), '0');
  } else {
    // d significant digits, then move the point in front of them.
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*e", d - 1, std::fabs(v));
    char* e = std::strchr(buf, 'e');
    exp10 = std::atoi(e + 1) + 1;
    for (char* p = buf; p < e; ++p)
      if (*p != '.') mant += *p;
  }
  std::string s = (std::signbit(v) && v != 0.0) ? "-" : "";
  s += "0." + mant;
  int ax = std::abs(exp10);
  char ex[16];
  if (ax <= 99)
    std::snprintf(ex, sizeof ex, "E%c%02d", exp10 < 0 ? '-' : '+', ax);
  else
    std::snprintf(ex, sizeof ex, "%c%03d", exp10 < 0 ? '-' : '+', ax);
  s += ex;
  return fit(drop_leading_zero(std::move(s), w), w);
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

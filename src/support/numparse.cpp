#include "support/numparse.hpp"

#include <cstddef>

namespace lf {

namespace {

// Powers of ten that a double holds exactly.
constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kMostPow10 = 22;
constexpr uint64_t kExact = uint64_t{1} << 53;  // integers up to this are exact doubles
constexpr int kMostDigits = 19;                 // significant digits a uint64_t always holds
constexpr int kMostExponentDigits = 4;          // longer exponents: left to the full conversion

bool is_digit(char c) {
  return static_cast<unsigned char>(c - '0') < 10;
}

// The digits from p on, taken into w; gives the end of the digits.
const char* digits_into(const char* p, const char* last, uint64_t& w) {
  for (; p != last && is_digit(*p); ++p) w = w * 10 + static_cast<uint64_t>(*p - '0');
  return p;
}

}  // namespace

const char* quick_real(const char* p, const char* last, double& value, Exponents exponents) {
  const bool negative = p != last && *p == '-';
  if (p != last && (*p == '-' || *p == '+')) ++p;
  const char* start = p;
  while (p != last && *p == '0') ++p;  // leading zeros are no significant digits
  uint64_t w = 0;                      // the significant digits as an integer
  const char* end = digits_into(p, last, w);
  std::ptrdiff_t digits = end - p;  // significant digits
  std::ptrdiff_t scale = 0;         // power of ten of the last digit
  p = end;
  if (p != last && *p == '.') {
    const char* point = p++;
    if (digits == 0)
      while (p != last && *p == '0') ++p;
    end = digits_into(p, last, w);
    digits += end - p;
    scale = point + 1 - end;
    p = end;
    if (p == point + 1 && point == start) return nullptr;  // a point without digits
  } else if (p == start) {
    return nullptr;
  }
  if (digits > kMostDigits || w > kExact) return nullptr;
  if (p != last &&
      (*p == 'e' || *p == 'E' || (exponents == Exponents::EorD && (*p == 'd' || *p == 'D')))) {
    ++p;
    const bool down = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+')) ++p;
    uint64_t e = 0;
    end = digits_into(p, last, e);
    if (end == p || end - p > kMostExponentDigits) return nullptr;
    p = end;
    scale += down ? -static_cast<std::ptrdiff_t>(e) : static_cast<std::ptrdiff_t>(e);
  }
  double x = 0;
  if (w != 0) {
    if (scale < -kMostPow10 || scale > kMostPow10) return nullptr;
    x = scale < 0 ? static_cast<double>(w) / kPow10[-scale]
                  : static_cast<double>(w) * kPow10[scale];
  }
  value = negative ? -x : x;
  return p;
}

const char* quick_int(const char* p, const char* last, int32_t& value) {
  constexpr uint64_t kMost = uint64_t{1} << 31;  // the magnitude of INT32_MIN
  constexpr std::ptrdiff_t kMostDigits32 = 10;   // digits of kMost
  const bool negative = p != last && *p == '-';
  if (p != last && (*p == '-' || *p == '+')) ++p;
  const char* start = p;
  while (p != last && *p == '0') ++p;
  uint64_t v = 0;
  const char* end = digits_into(p, last, v);
  if (end == start || end - p > kMostDigits32 || v > kMost - (negative ? 0 : 1)) return nullptr;
  value = static_cast<int32_t>(negative ? -static_cast<int64_t>(v) : static_cast<int64_t>(v));
  return end;
}

}  // namespace lf

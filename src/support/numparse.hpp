// Quick exact conversion of the numbers of text files, in place and without
// the C library.
//
// The functions read a number at the start of [first, last) and give the
// end of what they took, or nullptr when the text there is not of the plain
// form or needs the full conversion (more than 19 digits, a power of ten
// outside 10^-22..10^22); then nothing is written and the caller converts
// the slow way.  A number they do take has exactly the value
// strtod (std::from_chars) gives the same characters.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace lf {

// The letters that may start an exponent: e and E only, or D and d as well
// (the case files write double-precision exponents that way).
enum class Exponents { E, EorD };

namespace numparse {

// Powers of ten that a double holds exactly.
inline constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kMostPow10 = 22;
constexpr uint64_t kExact = uint64_t{1} << 53;  // integers up to this are exact doubles
constexpr int kMostDigits = 19;                 // digits a uint64_t always holds
constexpr int kMostExponentDigits = 4;          // longer exponents: left to the full conversion

// The digits from p on, taken into w; gives the end of the digits.
inline const char* digits_into(const char* p, const char* last, uint64_t& w) {
  for (; p != last; ++p) {
    const unsigned d = static_cast<unsigned char>(*p) - unsigned{'0'};  // above 9: no digit
    if (d > 9) break;
    w = w * 10 + d;
  }
  return p;
}

// The digits from p on, taken into w; gives the end of the digits.  With
// kPadded the byte at last is known to be no digit, and the scan needs no
// bound.
template <bool kPadded>
inline const char* digits_of(const char* p, const char* last, uint64_t& w) {
  if constexpr (!kPadded) {
    return digits_into(p, last, w);
  } else {
    for (;; ++p) {
      const unsigned d = static_cast<unsigned char>(*p) - unsigned{'0'};
      if (d > 9) return p;
      w = w * 10 + d;
    }
  }
}

// 5^k for k up to kMostPow10, exact in 64 bits.
inline constexpr auto kPow5 = [] {
  std::array<uint64_t, kMostPow10 + 1> p{};
  p[0] = 1;
  for (std::size_t k = 1; k < p.size(); ++k) p[k] = 5 * p[k - 1];
  return p;
}();

// w * 10^scale correctly rounded (to nearest, ties to even) for w above 2^53
// and scale within -22..22, by exact integer arithmetic: 10^scale is
// 5^scale * 2^scale, and w * 5^scale, or w * 2^64 / 5^-scale with a note of
// any remainder, holds in 128 bits with more than 53 significant ones.
inline double long_decimal(uint64_t w, int scale) {
  __extension__ typedef unsigned __int128 Wide;
  Wide x = w;
  int exp2 = scale;     // x * 2^exp2 is the value, but for the remainder
  bool sticky = false;  // a remainder below x's last bit
  if (scale >= 0) {
    x *= kPow5[scale];
  } else {
    const uint64_t d = kPow5[-scale];
    sticky = (x << 64) % d != 0;
    x = (x << 64) / d;
    exp2 -= 64;
  }
  const auto high = static_cast<uint64_t>(x >> 64);
  const int bits =
      high != 0 ? 128 - std::countl_zero(high) : 64 - std::countl_zero(static_cast<uint64_t>(x));
  const int shift = bits - 53;  // above 0: x exceeds 2^53
  auto m = static_cast<uint64_t>(x >> shift);
  const Wide rest = x & ((Wide{1} << shift) - 1), half = Wide{1} << (shift - 1);
  if (rest > half || (rest == half && (sticky || (m & 1) != 0))) ++m;
  // m * 2^(exp2 + shift), a normal number: m's top bit is the implicit one,
  // and a carry of the rounding into bit 53 moves on into the exponent.
  constexpr int kBias = 1023 + 52;  // the exponent's bias, and m's 52 bits below the point
  const auto biased = static_cast<uint64_t>(exp2 + shift + kBias);
  return std::bit_cast<double>((biased << 52) + m - (uint64_t{1} << 52));
}

// An optional sign, digits with at most one point among them (at least one
// digit), and optionally an exponent letter, an optional sign and digits.
// Taken when it has at most 19 digits and its power of ten is within
// 10^-22..10^22, correctly rounded: digits that form an integer of at most
// 2^53 by one exact operation on two exact doubles, more by exact integer
// arithmetic.  A zero is taken with any short exponent.
template <bool kPadded>
inline const char* real(const char* p, const char* last, double& value, Exponents exponents) {
  const auto in = [last](const char* q) { return kPadded || q != last; };
  const bool negative = in(p) && *p == '-';
  if (in(p) && (*p == '-' || *p == '+')) ++p;
  const char* start = p;
  uint64_t w = 0;  // the digits as an integer
  p = digits_of<kPadded>(p, last, w);
  std::ptrdiff_t digits = p - start;  // leading zeros included
  std::ptrdiff_t scale = 0;           // power of ten of the last digit
  if (in(p) && *p == '.') {
    const char* fraction = ++p;
    p = digits_of<kPadded>(p, last, w);
    digits += p - fraction;
    scale = fraction - p;
  }
  if (digits == 0 || digits > kMostDigits) return nullptr;
  if (in(p) &&
      (*p == 'e' || *p == 'E' || (exponents == Exponents::EorD && (*p == 'd' || *p == 'D')))) {
    ++p;
    const bool down = in(p) && *p == '-';
    if (in(p) && (*p == '-' || *p == '+')) ++p;
    uint64_t e = 0;
    const char* end = digits_of<kPadded>(p, last, e);
    if (end == p || end - p > kMostExponentDigits) return nullptr;
    p = end;
    scale += down ? -static_cast<std::ptrdiff_t>(e) : static_cast<std::ptrdiff_t>(e);
  }
  double x = 0;
  if (w != 0) {
    if (scale < -kMostPow10 || scale > kMostPow10) return nullptr;
    if (w > kExact)
      x = long_decimal(w, static_cast<int>(scale));
    else
      x = scale < 0 ? static_cast<double>(w) / kPow10[-scale]
                    : static_cast<double>(w) * kPow10[scale];
  }
  value = negative ? -x : x;
  return p;
}

// An optional sign and digits; nullptr also when the value does not fit in
// 32 bits.
template <bool kPadded>
inline const char* integer(const char* p, const char* last, int32_t& value) {
  const auto in = [last](const char* q) { return kPadded || q != last; };
  constexpr uint64_t kMost = uint64_t{1} << 31;  // the magnitude of INT32_MIN
  constexpr std::ptrdiff_t kShort = 9;           // digits that always fit
  constexpr std::ptrdiff_t kMostDigits32 = 10;   // digits of kMost
  const bool negative = in(p) && *p == '-';
  if (in(p) && (*p == '-' || *p == '+')) ++p;
  const char* start = p;
  uint64_t v = 0;
  const char* end = digits_of<kPadded>(p, last, v);
  if (end == start) return nullptr;
  if (end - start > kShort) {  // long: its leading zeros do not count
    while (p != end && *p == '0') ++p;
    v = 0;
    if (digits_into(p, end, v) - p > kMostDigits32 || v > kMost - (negative ? 0 : 1))
      return nullptr;
  }
  value = static_cast<int32_t>(negative ? -static_cast<int64_t>(v) : static_cast<int64_t>(v));
  return end;
}

}  // namespace numparse

// An optional sign, digits with at most one point among them (at least one
// digit), and optionally an exponent letter, an optional sign and digits;
// see numparse::real.
inline const char* quick_real(const char* p, const char* last, double& value,
                              Exponents exponents = Exponents::E) {
  return numparse::real<false>(p, last, value, exponents);
}

// An optional sign and digits; nullptr also when the value does not fit in
// 32 bits.
inline const char* quick_int(const char* p, const char* last, int32_t& value) {
  return numparse::integer<false>(p, last, value);
}

// The same for a text whose byte at last may be read and is none of a
// number's characters (a line end, or the zeros behind a file's text): the
// scan needs no bound checks.
inline const char* quick_real_padded(const char* p, const char* last, double& value,
                                     Exponents exponents = Exponents::E) {
  return numparse::real<true>(p, last, value, exponents);
}
inline const char* quick_int_padded(const char* p, const char* last, int32_t& value) {
  return numparse::integer<true>(p, last, value);
}

}  // namespace lf

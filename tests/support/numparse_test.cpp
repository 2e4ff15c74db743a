#include "support/numparse.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>

#include "common/files.hpp"

namespace lf {
namespace {

// What the C library makes of the token, d and D read as E; false when it
// does not take the whole token.
bool c_library(std::string text, double& v) {
  for (char& c : text)
    if (c == 'd' || c == 'D') c = 'E';
  char* end = nullptr;
  v = std::strtod(text.c_str(), &end);
  return *end == '\0';
}

// A token the quick conversion takes must be taken whole and give the C
// library's double to the bit; "quick" tokens must be taken.
void expect_quick_as_c(const std::string& token, bool must_take) {
  double v = 7, want = 0;
  const char* last = token.data() + token.size();
  const char* end = quick_real(token.data(), last, v, Exponents::EorD);
  if (end != last) {
    EXPECT_FALSE(must_take) << token;
    return;
  }
  ASSERT_TRUE(c_library(token, want)) << token;
  EXPECT_EQ(std::bit_cast<uint64_t>(v), std::bit_cast<uint64_t>(want)) << token;
}

TEST(QuickReal, TokensOfTheTableAndRandomDecimals) {
  for (const std::string& row : test::file_lines(LF_TEST_DATA_DIR "/reals.txt")) {
    std::istringstream tokens(row);
    std::string kind, token;
    tokens >> kind;
    while (tokens >> token) expect_quick_as_c(token, kind == "quick");
  }
  // Random digits, points, exponents and signs around the limits of the
  // quick form: 2^53, 19 digits, 10^+-22.
  std::mt19937_64 gen(2383);
  std::uniform_int_distribution<int> ndigits(1, 21), exponent(-30, 30), pick(0, 9);
  int taken = 0;
  for (int n = 0; n < 50000; ++n) {
    std::string t = pick(gen) < 3 ? "-" : "";
    const int len = ndigits(gen), point = std::uniform_int_distribution<int>(0, len)(gen);
    for (int k = 0; k < len; ++k) {
      if (k == point) t += '.';
      t += static_cast<char>('0' + (k == 0 && pick(gen) < 5 ? 9 : pick(gen)));
    }
    if (pick(gen) < 6) {
      t += pick(gen) < 5 ? 'e' : 'D';
      t += std::to_string(exponent(gen));
    }
    double v = 0;
    taken += quick_real(t.data(), t.data() + t.size(), v, Exponents::EorD) ? 1 : 0;
    expect_quick_as_c(t, false);
  }
  EXPECT_GT(taken, 20000);
}

TEST(QuickInt, WholeRangeOf32BitsAndNoFurther) {
  for (const char* t : {"2147483647", "-2147483648", "+7", "-007", "0", "-00000000002147483648",
                        "000000000000", "999999999"}) {
    int32_t v = 0, want = 1;
    const char* last = t + std::char_traits<char>::length(t);
    ASSERT_EQ(quick_int(t, last, v), last) << t;
    std::from_chars(t + (*t == '+'), last, want);
    EXPECT_EQ(v, want) << t;
  }
  for (const char* t : {"2147483648", "-2147483649", "-", "+", "99999999999999999999", "",
                        "0000000000012345678901"}) {
    int32_t v = 5;
    EXPECT_EQ(quick_int(t, t + std::char_traits<char>::length(t), v), nullptr) << t;
    EXPECT_EQ(v, 5) << t;
  }
}

}  // namespace
}  // namespace lf

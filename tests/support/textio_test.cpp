#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "common/files.hpp"
#include "support/fmt.hpp"
#include "support/freeread.hpp"

namespace lf {
namespace {

// A file of the given text in the working folder (the program's scratch folder).
std::string write_temp(const std::string& name, const std::string& text) {
  test::write_file(name, text);
  return name;
}

TEST(FreeReader, ReadsValuesAcrossLinesWithQuotesCommasAndRepeats) {
  FreeReader r(
      write_temp("a", "1, 2.5 'it''s a name' \"dq\"\n  -3\r\n4*7 2*, 9\nnext line\n'q''\nx'"));
  int32_t a = 0, c = 0;
  double b = 0;
  Text<8> name;
  std::string dq;
  ASSERT_TRUE(r(a, b, name, dq, c));
  EXPECT_EQ(a, 1);
  EXPECT_DOUBLE_EQ(b, 2.5);
  EXPECT_EQ(name.str(), "it's a n");
  EXPECT_EQ(dq, "dq");
  EXPECT_EQ(c, -3);
  // 4*7 gives four sevens; 2* two nulls that leave their items alone.
  int32_t v[7] = {0, 0, 0, 0, 11, 12, 0};
  ASSERT_TRUE(r(v[0], v[1], v[2], v[3], v[4], v[5], v[6]));
  EXPECT_EQ(v[3], 7);
  EXPECT_EQ(v[4], 11);
  EXPECT_EQ(v[5], 12);
  EXPECT_EQ(v[6], 9);
  std::string rest;
  ASSERT_TRUE(r.line(rest));
  EXPECT_EQ(rest, "next line");
  // A doubled quote at the end of a line; the text goes on in the next.
  ASSERT_TRUE(r(rest));
  EXPECT_EQ(rest, "q'x");
  EXPECT_FALSE(r(a));
}

TEST(FreeReader, SlashAndEmptyFieldsLeaveItemsUnchanged) {
  FreeReader r(write_temp("b", "5,,6\n,8 / 99\n1d2 , .5E1\n"));
  int32_t a = 0, b = 42, c = 0;
  ASSERT_TRUE(r(a, b, c));
  EXPECT_EQ(a, 5);
  EXPECT_EQ(b, 42);
  EXPECT_EQ(c, 6);
  a = 1;
  b = 2;
  c = 3;
  ASSERT_TRUE(r(a, b, c));
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 8);
  EXPECT_EQ(c, 3);
  double x = 0, y = 0;
  ASSERT_TRUE(r(x, y));
  EXPECT_DOUBLE_EQ(x, 100.0);
  EXPECT_DOUBLE_EQ(y, 5.0);
}

// Every real read must be the very double the C library makes of the token,
// halfway cases, zeros and signs included; out-of-range and malformed tokens
// (subnormals among them) are read errors (tokens in tests/data/reals.txt),
// and so are integers beyond 32 bits.
TEST(FreeReader, RealsMatchTheCLibraryBitForBit) {
  for (const std::string& row : test::file_lines(LF_TEST_DATA_DIR "/reals.txt")) {
    std::istringstream tokens(row);
    std::string kind, token, lines;  // the row's tokens, one a line: one read each
    if (!(tokens >> kind) || kind == "#") continue;
    while (tokens >> token) lines += token + "\n";
    FreeReader r(write_temp("d", lines));
    for (std::istringstream again(lines); again >> token;) {
      double x = 7;
      if (kind == "bad") {
        EXPECT_FALSE(r(x)) << token;
        EXPECT_EQ(x, 7) << token;
      } else if (kind == "good" || kind == "quick") {
        ASSERT_TRUE(r(x)) << token;
        std::string c_text = token;
        for (char& ch : c_text)
          if (ch == 'd' || ch == 'D') ch = 'E';
        const double want = std::strtod(c_text.c_str(), nullptr);
        EXPECT_EQ(std::memcmp(&x, &want, sizeof x), 0) << token;
      }
    }
  }
  FreeReader r(write_temp("f", "+2147483647 -2147483648 2147483648\n"));
  int32_t a = 0, b = 0, c = 5;
  EXPECT_FALSE(r(a, b, c));
  EXPECT_EQ(a, 2147483647);
  EXPECT_EQ(b, -2147483647 - 1);
  EXPECT_EQ(c, 5);
}

TEST(FreeReader, ReportsErrorsAndEndOfFileKeepingWhatWasRead) {
  FreeReader r(write_temp("c", "7 1.5\n3 abc\n4\n"));
  int32_t a = 0, b = 0;
  EXPECT_FALSE(r(a, b));  // 1.5 is no integer
  EXPECT_EQ(a, 7);
  double x = 0;
  EXPECT_FALSE(r(a, x));  // abc is no number
  EXPECT_EQ(a, 3);
  EXPECT_FALSE(r(a, b));  // the file ends inside the statement
  EXPECT_EQ(a, 4);
  EXPECT_FALSE(r(a));
  FreeReader missing;
  EXPECT_FALSE(missing.open("/nonexistent/lf/file.L0"));
  EXPECT_FALSE(missing(a));
}

// A table's text with \n, \r, \t and \0 for the bytes they stand for.
std::string unescape(std::string_view t) {
  std::string out;
  for (std::size_t k = 0; k < t.size(); ++k) {
    if (t[k] != '\\' || k + 1 == t.size()) {
      out += t[k];
      continue;
    }
    const char e = t[++k];
    out += e == 'n' ? '\n' : e == 'r' ? '\r' : e == 't' ? '\t' : e == '0' ? '\0' : e;
  }
  return out;
}

// The rows of tests/data/freeread_lines.txt, each a file of its own.
TEST(FreeReader, StatementsOfTheTable) {
  for (const std::string& row : test::file_lines(LF_TEST_DATA_DIR "/freeread_lines.txt")) {
    if (row.empty() || row[0] == '#') continue;
    const std::size_t bar = row.find(" | "), last_bar = row.rfind(" | ");
    const std::string kinds = row.substr(0, bar);
    FreeReader r(write_temp("t", unescape(row.substr(bar + 3, last_bar - bar - 3))));
    int32_t i[4] = {99, 99, 99, 99};
    double x[4] = {99.5, 99.5, 99.5, 99.5};
    Text<5> c[4];
    for (Text<5>& t : c) t = std::string_view("~");
    std::string s[4] = {"~", "~", "~", "~"};
    std::vector<ReadItem> items;
    for (std::size_t k = 0; k < kinds.size(); ++k)
      items.push_back(kinds[k] == 'I'   ? ReadItem::of(i[k])
                      : kinds[k] == 'R' ? ReadItem::of(x[k])
                      : kinds[k] == 'C' ? ReadItem::of(c[k])
                                        : ReadItem::of(s[k]));
    std::string got;
    if (r.read(items)) {
      for (std::size_t k = 0; k < kinds.size(); ++k) {
        got += k ? ";" : "";
        got += kinds[k] == 'I'   ? std::to_string(i[k])
               : kinds[k] == 'R' ? (std::ostringstream() << x[k]).str()
               : kinds[k] == 'C' ? c[k].str()
                                 : s[k];
      }
    } else {
      got = (r.at_end() ? "end " : "fail ") + std::to_string(r.failed_item()) +
            (r.at_end() ? "" : " '" + r.failed_text() + "'");
    }
    EXPECT_EQ(got, unescape(row.substr(last_bar + 3))) << row;
  }
}

// The rows of tests/data/formats.txt: 2.675 and 2.000005 are stored just
// below the tie, 5e-11 just above it; 9.9999999 carries into 10.00, too wide
// for F4.2; the widest values take more than sixteen digits.
TEST(Fmt, FieldsOfTheTable) {
  for (const std::string& row : test::file_lines(LF_TEST_DATA_DIR "/formats.txt")) {
    if (row.empty() || row[0] == '#') continue;
    std::istringstream spec(row.substr(0, row.find('|')));
    std::string desc, value;
    spec >> desc >> value;
    const std::string want = row.substr(row.find('|') + 1, row.rfind('|') - row.find('|') - 1);
    const int w = std::atoi(desc.c_str() + (desc.back() == 'X' ? 0 : 1));
    const int d = desc.find('.') == std::string::npos ? 0 : std::atoi(&desc[desc.find('.') + 1]);
    const std::string got = desc[0] == 'F'   ? fmt_f(std::stod(value), w, d)
                            : desc[0] == 'E' ? fmt_e(std::stod(value), w, d)
                            : desc[0] == 'I' ? fmt_i(std::stoll(value), w)
                            : desc[0] == 'A' ? fmt_a(value, w)
                                             : fmt_x(w);
    EXPECT_EQ(got, want) << row;
  }
}

// Fw.d as printf's correctly rounded %.*f gives it: a point added when d is
// 0, the zero before the point dropped when too wide, asterisks on overflow.
std::string printf_field(double v, int w, int d) {
  char buf[400];
  std::snprintf(buf, sizeof buf, "%.*f", d, v);
  std::string s(buf);
  if (d == 0) s += '.';
  const std::size_t z = s[0] == '-' ? 1 : 0;
  if (static_cast<int>(s.size()) > w && s.size() > z + 1 && s[z] == '0' && s[z + 1] == '.')
    s.erase(z, 1);
  if (static_cast<int>(s.size()) > w) return std::string(static_cast<std::size_t>(w), '*');
  return std::string(static_cast<std::size_t>(w) - s.size(), ' ') + s;
}

TEST(Fmt, FixedPointEqualsPrintfForRandomValuesTiesAndHugeValues) {
  std::mt19937_64 gen(12345);
  std::uniform_int_distribution<int> width(0, 26), places(0, 21), scale(-30, 30);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<uint64_t> any_bits;
  for (int n = 0; n < 200000; ++n) {
    const int w = width(gen), d = places(gen);
    double v;
    switch (n % 4) {
      case 0:  // any magnitude
        v = unit(gen) * std::pow(10.0, scale(gen));
        break;
      case 1: {  // an exact tie one place past the last digit kept
        const int k = std::min(d + 1, 60);
        v = std::ldexp(static_cast<double>(any_bits(gen) >> 12 | 1), -k) * (n % 8 == 1 ? -1 : 1);
        break;
      }
      case 2:  // any bit pattern: subnormals, huge values, NaN and infinities
        v = std::bit_cast<double>(any_bits(gen));
        break;
      default:  // a few places, so near-ties and carries into a new digit
        v = std::round(unit(gen) * 1e6) / std::pow(10.0, d % 8) + (n % 3 == 0 ? 0.5 : 0.0);
    }
    if (!std::isfinite(v)) continue;
    ASSERT_EQ(fmt_f(v, w, d), printf_field(v, w, d)) << v << " F" << w << "." << d;
  }
}

}  // namespace
}  // namespace lf

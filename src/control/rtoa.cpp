// The compact text of a real in a few columns, as the model output tables
// print their values.
#include <cmath>
#include <cstdio>
#include <string>

#include "control/blocks.hpp"

namespace lf {

namespace {
constexpr double kPrintsAsZero = 1.0E-10;  // a value at most this in size prints as "0."
}  // namespace

std::string rtoa(int32_t n, double value) {
  // A value too large for n columns is cut to the largest that fits; a
  // negative one leaves a column for the sign.
  double w = std::fabs(value);
  if (w > std::pow(10.0, n) - 1) w = value > 0 ? std::pow(10.0, n) - 1 : std::pow(10.0, n - 1) - 1;
  std::string text(static_cast<std::size_t>(n), ' ');
  if (w <= kPrintsAsZero) {
    text[n - 1] = '.';
    if (n > 1) text[n - 2] = '0';
    return text;
  }
  // As many decimals as the columns left by the integer digits and the point.
  int32_t k = 0;
  for (double t = w; t >= 1; t *= 0.1) ++k;
  const int32_t p = n - k - 1;
  if (p >= 0) w = std::trunc(w * std::pow(10.0, p) + 0.5) * std::pow(0.1, p);
  char buf[64];
  std::snprintf(buf, sizeof buf, "%16.7f", value < 0 ? -w : w);
  std::string s(buf);
  s.erase(0, s.find_first_not_of(' '));
  s.resize(16, ' ');
  // A lone 0 before the point goes: "0.5" is written ".5".
  const std::size_t point = s.find('.');
  if (point != std::string::npos && point >= 1 && point < static_cast<std::size_t>(n) &&
      s[point - 1] == '0' &&
      (point == 1 || s[point - 2] == ' ' || s[point - 2] == '+' || s[point - 2] == '-')) {
    s.erase(point - 1, 1);
    s += '0';
  }
  // Trailing zeros behind the point within the n columns become blanks, and
  // the rest is set flush right in n columns.
  std::string head = s.substr(0, static_cast<std::size_t>(n));
  const std::size_t dot = head.find('.');
  if (dot != std::string::npos) {
    std::size_t end = head.size();
    while (end > dot + 1 && (head[end - 1] == '0' || head[end - 1] == ' ')) --end;
    head.resize(end);
  }
  while (!head.empty() && head.back() == ' ') head.pop_back();
  return std::string(static_cast<std::size_t>(n) - head.size(), ' ') + head;
}

}  // namespace lf

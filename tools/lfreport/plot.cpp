#include "plot.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr double kWidth = 900, kHeight = 280;
constexpr double kLeft = 70, kRight = 20, kTop = 30, kBottom = 40;
// A value at or below 0 on a log scale stands here: the iteration tables
// print six decimals, so their smallest value above 0 is 1e-6.
constexpr double kLogFloor = 1e-7;

std::string num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

std::string label(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.4g", v);
  return buf;
}

}  // namespace

std::string escaped(const std::string& s) {
  std::string out;
  for (char c : s) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string svg(const Plot& p) {
  auto value = [&](double v) { return p.log_scale ? std::log10(std::max(v, kLogFloor)) : v; };
  double lo = INFINITY, hi = -INFINITY;
  for (double v : p.y) lo = std::min(lo, value(v)), hi = std::max(hi, value(v));
  for (const auto& b : p.bounds)
    for (double v : b) lo = std::min(lo, value(v)), hi = std::max(hi, value(v));
  if (p.bars) lo = std::min(lo, 0.0);
  if (!std::isfinite(lo)) lo = 0, hi = 1;
  if (hi - lo < 1e-9) lo -= 0.5, hi += 0.5;
  const double pad = (hi - lo) * 0.05;
  lo -= p.bars && lo == 0 ? 0 : pad, hi += pad;
  const double n = static_cast<double>(std::max<std::size_t>(p.y.size(), 1));
  const double step = (kWidth - kLeft - kRight) / n;
  auto x_of = [&](std::size_t k) { return kLeft + step * (static_cast<double>(k) + 0.5); };
  auto y_of = [&](double v) {
    return kTop + (hi - value(v)) / (hi - lo) * (kHeight - kTop - kBottom);
  };

  std::string s = "<svg class=\"plot\" id=\"" + p.id + "\" data-marks=\"" +
                  std::to_string(p.y.size()) + "\" viewBox=\"0 0 " + num(kWidth) + " " +
                  num(kHeight) + "\" role=\"img\"><title>" + escaped(p.title) + "</title>";
  s += "<text x=\"" + num(kLeft) + "\" y=\"18\" class=\"ptitle\">" + escaped(p.title) + "</text>";
  // Five labelled levels, or on a log scale the whole powers of ten.
  std::vector<double> levels;
  if (p.log_scale) {
    const double step = std::max(1.0, std::ceil((hi - lo) / 5));
    for (double e = std::ceil(lo); e <= hi; e += step) levels.push_back(e);
  } else {
    for (int k = 0; k <= 4; ++k) levels.push_back(lo + (hi - lo) * k / 4);
  }
  for (double v : levels) {
    const double y = kTop + (hi - v) / (hi - lo) * (kHeight - kTop - kBottom);
    s += "<line class=\"grid\" x1=\"" + num(kLeft) + "\" x2=\"" + num(kWidth - kRight) +
         "\" y1=\"" + num(y) + "\" y2=\"" + num(y) + "\"/>";
    s += "<text class=\"tick\" x=\"" + num(kLeft - 6) + "\" y=\"" + num(y + 4) + "\">" +
         escaped(p.log_scale ? "1e" + label(v) : label(v)) + "</text>";
  }
  s += "<text class=\"axis\" x=\"14\" y=\"" + num(kHeight / 2) + "\" transform=\"rotate(-90 14 " +
       num(kHeight / 2) + ")\">" + escaped(p.y_label) + "</text>";
  for (const auto& b : p.bounds) {
    s += "<polyline class=\"limit\" points=\"";
    for (std::size_t k = 0; k < b.size(); ++k) s += num(x_of(k)) + "," + num(y_of(b[k])) + " ";
    s += "\"/>";
  }
  if (p.join && p.y.size() > 1) {
    s += "<polyline class=\"join\" points=\"";
    for (std::size_t k = 0; k < p.y.size(); ++k) s += num(x_of(k)) + "," + num(y_of(p.y[k])) + " ";
    s += "\"/>";
  }
  const double base = y_of(p.log_scale ? std::pow(10.0, lo) : std::max(lo, 0.0));
  for (std::size_t k = 0; k < p.y.size(); ++k) {
    const std::string tip = "<title>" + escaped(k < p.tips.size() ? p.tips[k] : "") + "</title>";
    if (p.bars) {
      const double top = y_of(p.y[k]);
      s += "<rect class=\"mark\" x=\"" + num(x_of(k) - step * 0.4) + "\" y=\"" +
           num(std::min(top, base)) + "\" width=\"" + num(std::max(step * 0.8, 0.5)) +
           "\" height=\"" + num(std::fabs(base - top)) + "\">" + tip + "</rect>";
    } else {
      s += "<circle class=\"mark\" cx=\"" + num(x_of(k)) + "\" cy=\"" + num(y_of(p.y[k])) +
           "\" r=\"3\">" + tip + "</circle>";
    }
  }
  s += "</svg>\n";
  return s;
}

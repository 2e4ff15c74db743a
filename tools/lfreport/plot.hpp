// Small SVG plots: points or bars over a numbered axis, one mark per item,
// each mark with a tooltip.
#pragma once

#include <string>
#include <vector>

struct Plot {
  std::string id, title, y_label;
  bool bars = false;                        // bars from the axis, else points
  bool log_scale = false;                   // values drawn as their logarithm to base 10
  bool join = false;                        // points joined by a line
  std::vector<double> y;                    // one value per mark
  std::vector<std::string> tips;            // one tooltip per mark
  std::vector<std::vector<double>> bounds;  // further lines over the same axis (limits)
};

// The plot as an <svg> element.
std::string svg(const Plot& p);

// Text made safe inside HTML.
std::string escaped(const std::string& s);

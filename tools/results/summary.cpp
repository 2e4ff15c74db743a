#include "summary.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace lfres {
namespace {

template <typename... A>
std::string format(const char* f, A... a) {
  char buf[256];
  std::snprintf(buf, sizeof buf, f, a...);
  return buf;
}

std::string bus_label(const CaseResults& r, int number) {
  return format("bus %d '%s'", r.shown_number(number), r.bus_name(number).c_str());
}

std::string outcome(const CaseResults& r, const RunLog& log, bool converged) {
  if (log.method.empty()) {  // the engine printed nothing
    return format("  %s, %s (the engine printed no iteration table)",
                  converged ? "Converged" : "NOT converged", method_name(r.method).c_str());
  }
  const std::string& method = log.method;
  const int n = log.iterations();
  const char* its = n == 1 ? "iteration" : "iterations";
  if (log.interrupted)
    return format("  Interrupted by the user after %d %s, %s", n, its, method.c_str());
  if (converged) return format("  Converged in %d %s, %s", n, its, method.c_str());
  return format("  NOT converged (%d %s, %s)", n, its, method.c_str());
}

}  // namespace

Totals totals_of(const CaseResults& r) {
  Totals t;
  for (const auto& g : r.generators) t.gen_p += g.p, t.gen_q += g.q;
  for (const auto& l : r.loads) t.load_p += l.p, t.load_q += l.q;
  return t;
}

std::vector<const Branch*> by_loading(const CaseResults& r, std::size_t limit) {
  // Each loading taken once; equal loadings keep the order of the reports.
  std::vector<std::pair<double, const Branch*>> loaded;
  for (const auto& b : r.branches) {
    const double s = b.loading();
    if (!b.shunt() && std::isfinite(s)) loaded.emplace_back(s, &b);
  }
  const auto heavier = [](const auto& a, const auto& b) {
    return a.first > b.first || (a.first == b.first && a.second < b.second);
  };
  const std::size_t n = std::min(limit, loaded.size());
  std::partial_sort(loaded.begin(), loaded.begin() + static_cast<std::ptrdiff_t>(n), loaded.end(),
                    heavier);
  std::vector<const Branch*> out(n);
  for (std::size_t k = 0; k < n; ++k) out[k] = loaded[k].second;
  return out;
}

std::string time_line(double seconds) {
  return format("  %s %.3f ms", kTimeLabel, seconds * 1000);
}

std::vector<std::string> summary_lines(const CaseResults& r, const RunLog& log, bool converged,
                                       double seconds) {
  std::vector<std::string> out;
  const double base = r.base_mva;
  out.push_back("");
  out.push_back("Result summary of " + std::filesystem::path(r.stem).filename().string());
  out.push_back(outcome(r, log, converged));
  if (seconds >= 0) out.push_back(time_line(seconds));
  const Totals t = totals_of(r);
  out.push_back(format("  %-12s %12s %12s", "", "MW", "Mvar"));
  out.push_back(format("  %-12s %12.2f %12.2f", "Generation", t.gen_p * base, t.gen_q * base));
  out.push_back(format("  %-12s %12.2f %12.2f", "Load", t.load_p * base, t.load_q * base));
  out.push_back(format("  %-12s %12.2f %12.2f   (generation less load)", "Losses",
                       t.loss_p() * base, t.loss_q() * base));

  const Bus *low = nullptr, *high = nullptr;
  for (const auto& b : r.buses) {
    if (!b.solved) continue;
    if (!low || b.v < low->v) low = &b;
    if (!high || b.v > high->v) high = &b;
  }
  if (low) {
    out.push_back(
        format("  Lowest voltage  %8.4f pu at %s", low->v, bus_label(r, low->number).c_str()));
    out.push_back(
        format("  Highest voltage %8.4f pu at %s", high->v, bus_label(r, high->number).c_str()));
  }

  const auto loaded = by_loading(r, kBranchesShown);
  if (!loaded.empty()) {
    out.push_back("  Most loaded branches (MVA at the more loaded end):");
    for (const Branch* shown : loaded) {
      const Branch& b = *shown;
      out.push_back(format("    %10.2f  %s %d-%d No %d  '%s' - '%s'", b.loading() * base,
                           b.transformer ? "transformer" : "line", r.shown_number(b.i),
                           r.shown_number(b.j), b.no, r.bus_name(b.i).c_str(),
                           r.bus_name(b.j).c_str()));
    }
  }

  std::vector<std::string> held;
  for (const auto& g : r.generators) {
    if (!g.at_limit()) continue;
    const bool upper = g.q >= g.qmax - 1e-6;
    held.push_back(format("    %s: Q %.2f Mvar at its %s limit", bus_label(r, g.bus).c_str(),
                          g.q * base, upper ? "upper" : "lower"));
  }
  out.push_back(held.empty() ? "  Generators held at a reactive limit: none"
                             : "  Generators held at a reactive limit:");
  out.insert(out.end(), held.begin(), held.end());
  for (const auto& p : r.problems) out.push_back("  Note: " + p);
  return out;
}

}  // namespace lfres

// The result summary of one calculation: convergence, method, totals,
// extreme voltages, the most loaded branches and the generators held at a
// reactive limit, as lines of text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "results.hpp"
#include "runlog.hpp"

namespace lfres {

// Branches the summary shows, the most loaded first.
constexpr std::size_t kBranchesShown = 5;

// Totals over the case, per unit.
struct Totals {
  double gen_p = 0, gen_q = 0;    // all generators' output
  double load_p = 0, load_q = 0;  // all loads' consumption
  double loss_p() const { return gen_p - load_p; }
  double loss_q() const { return gen_q - load_q; }
};
Totals totals_of(const CaseResults& r);

// The branches in order of falling loading (shunt branches left out), at
// most limit of them.
std::vector<const Branch*> by_loading(const CaseResults& r, std::size_t limit = SIZE_MAX);

// The summary's line of the calculation time.
std::string time_line(double seconds);

// The lines of the summary; seconds below 0 leaves the time out.
std::vector<std::string> summary_lines(const CaseResults& r, const RunLog& log, bool converged,
                                       double seconds);

}  // namespace lfres

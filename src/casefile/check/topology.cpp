#include "casefile/check/topology.hpp"

#include <algorithm>
#include <map>
#include <numeric>
#include <vector>

#include "store/store.hpp"

namespace lf::check {

namespace {

constexpr std::size_t kNamesShown = 8;  // buses named in one warning

struct Islands {
  std::vector<int32_t> parent;  // union-find over buses 1..nbus, 0 unused
  std::vector<char> joined;     // the bus has a line or transformer in service
  explicit Islands(int32_t n) : parent(static_cast<std::size_t>(n) + 1), joined(parent.size()) {
    std::iota(parent.begin(), parent.end(), 0);
  }
  int32_t root(int32_t b) {
    while (parent[b] != b) b = parent[b] = parent[parent[b]];
    return b;
  }
  void join(int32_t a, int32_t b) {
    joined[a] = joined[b] = 1;
    parent[root(a)] = root(b);
  }
};

// What stands at each bus: a slack row, any other row that gives power or
// voltage (a generator, a load row of fixed voltage, a DC line's end).
struct Sources {
  std::vector<char> slack, source;
};

std::string names(const Family& f, const std::vector<int32_t>& buses) {
  std::string s;
  for (std::size_t k = 0; k < buses.size() && k < kNamesShown; ++k)
    s += (k ? ", " : "") + f.bus(buses[k]);
  if (buses.size() > kNamesShown)
    s += " and " + std::to_string(buses.size() - kNamesShown) + " more";
  return s;
}

bool in_case(int32_t b, int32_t n) {
  return b >= 1 && b <= n;
}

void join_branches(const Family& f, const FileRead& file, Islands& isl) {
  const int32_t n = f.nbus();
  const Layout& l = *file.layout;
  const std::size_t mark = l.at("mark"), i_at = l.at("I"), j_at = l.at("J");
  for (const Record& r : file.records) {
    // Only a branch in service at both ends (mark 1) joins its buses.
    if (!f.uses(file, r) || file.value(r, mark).i != 1) continue;
    const int32_t i = end_bus(file.value(r, i_at).i), j = end_bus(file.value(r, j_at).i);
    if (i != j && in_case(i, n) && in_case(j, n)) isl.join(i, j);
  }
}

Sources sources(const Family& f) {
  const auto size = static_cast<std::size_t>(f.nbus()) + 1;
  Sources s{std::vector<char>(size), std::vector<char>(size)};
  const auto mark = [&](int32_t bus, bool slack) {
    if (!in_case(bus, f.nbus())) return;
    (slack ? s.slack : s.source)[static_cast<std::size_t>(bus)] = 1;
  };
  // Generator and load rows: the row's bus and type.
  for (const FileRead* rows : {&f.l5, &f.l6}) {
    const std::size_t ibs = rows->layout->at("ibs"), type_at = rows->layout->at("mode_ctrl");
    for (const Record& r : rows->records) {
      const int32_t type = rows->value(r, type_at).i;
      if (f.uses(*rows, r) && (rows == &f.l5 || type <= kTypeSlack))
        mark(rows->value(r, ibs).i, type == kTypeSlack);
    }
  }
  const std::size_t i_at = f.nl4.layout->at("I"), j_at = f.nl4.layout->at("J");
  for (const Record& r : f.nl4.records) {
    if (!f.uses(f.nl4, r)) continue;
    mark(f.nl4.value(r, i_at).i, false);
    mark(f.nl4.value(r, j_at).i, false);
  }
  return s;
}

}  // namespace

void check_topology(const Family& f, Warnings& w) {
  const int32_t n = f.nbus();
  if (n == 0) return;
  Islands isl(n);
  join_branches(f, f.l2, isl);
  join_branches(f, f.l3, isl);
  const Sources s = sources(f);
  const bool any_slack = std::find(s.slack.begin(), s.slack.end(), 1) != s.slack.end();
  if (!any_slack) w.push_back("no slack bus: no generator or load row in use has type 0");

  std::vector<int32_t> alone;
  std::map<int32_t, std::vector<int32_t>> islands;  // by root, buses in rising order
  for (int32_t b = 1; b <= n; ++b) {
    if (isl.joined[b])
      islands[isl.root(b)].push_back(b);
    else
      alone.push_back(b);
  }
  if (!alone.empty())
    w.push_back(std::to_string(alone.size()) + " bus(es) without a line or transformer in " +
                "service, left out of the solution: " + names(f, alone));
  for (const auto& [root, buses] : islands) {
    bool slack = false, source = false;
    for (int32_t b : buses) {
      slack = slack || s.slack[b];
      source = source || s.source[b];
    }
    if (slack || (!any_slack && source && islands.size() == 1)) continue;
    w.push_back(std::string(source ? "an island without a slack bus: "
                                   : "an island without a slack bus or any source: ") +
                names(f, buses));
  }
}

}  // namespace lf::check

#include "html.hpp"

#include <cstdio>
#include <fstream>

#include "plot.hpp"
#include "summary.hpp"

namespace {

constexpr const char* kStyle = R"(
body{font-family:sans-serif;margin:2em;color:#222}
pre{background:#f4f4f4;padding:1em}
svg.plot{width:100%;max-width:900px;display:block;margin:1em 0;border:1px solid #ddd}
.ptitle{font-size:14px;font-weight:bold}.tick,.axis{font-size:11px;fill:#555}.tick{text-anchor:end}
.grid{stroke:#eee}.limit{fill:none;stroke:#c33;stroke-dasharray:4 3}
.join{fill:none;stroke:#99b}.mark{fill:#2a6fb0}
table{border-collapse:collapse;margin:1em 0;font-size:13px}
th,td{border:1px solid #ccc;padding:2px 6px;white-space:pre}td.n{text-align:right}
th{background:#eef;cursor:pointer;user-select:none}
th[aria-sort=ascending]::after{content:" \25B2"}th[aria-sort=descending]::after{content:" \25BC"}
)";

// Sorts a table by the column whose heading is clicked; a second click
// turns the order round.  Empty cells go last.
constexpr const char* kScript = R"(
document.querySelectorAll('table.sortable th').forEach(th => th.addEventListener('click', () => {
  const table = th.closest('table'), body = table.tBodies[0], col = th.cellIndex;
  const dir = th.getAttribute('aria-sort') === 'ascending' ? -1 : 1;
  const numeric = th.dataset.type === 'number';
  const key = r => r.cells[col].textContent;
  const rows = Array.from(body.rows);
  rows.sort((a, b) => {
    const x = key(a), y = key(b);
    if (x === '' || y === '') return (x === '') - (y === '');
    return (numeric ? Number(x) - Number(y) : x.localeCompare(y)) * dir;
  });
  table.querySelectorAll('th').forEach(h => h.removeAttribute('aria-sort'));
  th.setAttribute('aria-sort', dir > 0 ? 'ascending' : 'descending');
  rows.forEach(r => body.appendChild(r));
}));
)";

std::string fixed(double v, int decimals) {
  char buf[48];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

Plot titled(const char* id, const char* title, const char* y_label) {
  Plot p;
  p.id = id, p.title = title, p.y_label = y_label;
  return p;
}

std::vector<Plot> plots(const lfres::CaseResults& r, const lfres::RunLog& log) {
  Plot vm = titled("plot-vm", "Voltage magnitude per bus, with its limits", "V (pu)");
  Plot va = titled("plot-va", "Voltage angle per bus", "angle (degrees)");
  vm.bounds.resize(2);
  for (const auto& b : r.buses) {
    if (!b.solved) continue;
    const std::string who = "bus " + std::to_string(r.shown_number(b.number)) + " '" + b.name + "'";
    vm.y.push_back(b.v);
    vm.tips.push_back(who + ": " + fixed(b.v, 4) + " pu (limits " + fixed(b.vmin, 3) + " to " +
                      fixed(b.vmax, 3) + ")");
    vm.bounds[0].push_back(b.vmin);
    vm.bounds[1].push_back(b.vmax);
    va.y.push_back(b.angle);
    va.tips.push_back(who + ": " + fixed(b.angle, 3) + " degrees");
  }
  Plot load = titled("plot-loading", "Branch loading, most loaded first", "MVA");
  load.bars = true;
  for (const lfres::Branch* b : lfres::by_loading(r)) {
    load.y.push_back(b->loading() * r.base_mva);
    load.tips.push_back(std::string(b->transformer ? "transformer " : "line ") +
                        std::to_string(r.shown_number(b->i)) + "-" +
                        std::to_string(r.shown_number(b->j)) + " No " + std::to_string(b->no) +
                        ": " + fixed(b->loading() * r.base_mva, 2) + " MVA");
  }
  Plot conv = titled("plot-convergence",
                     "Convergence: largest mismatch or correction per iteration", "per unit");
  conv.log_scale = conv.join = true;
  for (const auto& row : log.rows) {
    conv.y.push_back(row.value);
    char tip[160];
    std::snprintf(tip, sizeof tip, "table %d, iteration %d, bus '%s': %.6g", row.table, row.t,
                  row.bus.c_str(), row.value);
    conv.tips.push_back(tip);
  }
  return {vm, va, load, conv};
}

std::string table_html(const Table& t) {
  std::string s = "<h2>" + escaped(t.title) + "</h2>\n<table class=\"sortable\" id=\"table-" +
                  t.name + "\"><thead><tr>";
  for (std::size_t c = 0; c < t.header.size(); ++c) {
    s += "<th data-type=\"" + std::string(t.text[c] ? "text" : "number") + "\">" +
         escaped(t.header[c]) + "</th>";
  }
  s += "</tr></thead><tbody>\n";
  for (const auto& row : t.rows) {
    s += "<tr>";
    for (std::size_t c = 0; c < row.size(); ++c)
      s += (t.text[c] ? "<td>" : "<td class=\"n\">") + escaped(row[c]) + "</td>";
    s += "</tr>\n";
  }
  return s + "</tbody></table>\n";
}

}  // namespace

bool write_html(const lfres::CaseResults& r, const lfres::RunLog& log,
                const std::vector<std::string>& summary, const std::vector<Table>& tables,
                const std::string& file) {
  std::ofstream out(file);
  out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n<title>Load flow: "
      << escaped(r.stem) << "</title>\n<style>" << kStyle
      << "</style></head><body>\n<h1>Load flow: " << escaped(r.stem)
      << "</h1>\n<pre id=\"summary\">";
  for (const auto& line : summary) out << escaped(line) << '\n';
  out << "</pre>\n<h2>Plots</h2>\n";
  for (const Plot& p : plots(r, log)) out << svg(p);
  if (log.rows.empty()) out << "<p>No iteration table in " << escaped(r.stem) << ".LOG.</p>\n";
  for (const Table& t : tables)
    if (!t.rows.empty()) out << table_html(t);
  out << "<script>" << kScript << "</script>\n</body></html>\n";
  if (!out) std::fprintf(stderr, "lfreport: cannot write %s\n", file.c_str());
  return static_cast<bool>(out);
}

#include "tables.hpp"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

std::string integer(int v) {
  return std::to_string(v);
}

// The source case's number of a bus, empty without a map file.
std::string source(const lfres::CaseResults& r, int bus) {
  const lfres::Bus* b = r.bus(bus);
  return b && b->original != 0 ? integer(b->original) : "";
}

Table make(const char* name, const char* title,
           std::initializer_list<std::pair<const char*, bool>> columns) {
  Table t;
  t.name = name;
  t.title = title;
  for (const auto& [column, text] : columns) {
    t.header.push_back(column);
    t.text.push_back(text);
  }
  return t;
}

// The columns that name the two ends of a branch.
void ends(const lfres::CaseResults& r, int i, int j, int no, std::vector<std::string>& row) {
  row.insert(row.end(), {integer(i), integer(j), integer(no), source(r, i), source(r, j),
                         r.bus_name(i), r.bus_name(j)});
}

constexpr std::pair<const char*, bool> kEnds[] = {
    {"i", false},        {"j", false},     {"no", false},   {"source_i", false},
    {"source_j", false}, {"name_i", true}, {"name_j", true}};

Table branch_table(const lfres::CaseResults& r, bool transformers) {
  Table t = transformers ? make("transformers", "Transformers", {})
                         : make("branches", "Lines and shunt branches", {});
  for (const auto& [c, text] : kEnds) t.header.push_back(c), t.text.push_back(text);
  const char* extra_p = transformers ? "p_magnetising_pu" : "charging_i_pu";
  const char* extra_q = transformers ? "q_magnetising_pu" : "charging_j_pu";
  for (const char* c :
       {"p_ij_pu", "q_ij_pu", "p_ji_pu", "q_ji_pu", extra_p, extra_q, "loading_mva"})
    t.header.push_back(c), t.text.push_back(false);
  for (const auto& b : r.branches) {
    if (b.transformer != transformers) continue;
    std::vector<std::string> row;
    ends(r, b.i, b.j, b.no, row);
    for (double v : {b.pij, b.qij, b.pji, b.qji, b.extra_p, b.extra_q}) row.push_back(full(v));
    row.push_back(b.shunt() ? "" : full(b.loading() * r.base_mva));
    t.rows.push_back(row);
  }
  return t;
}

std::string quoted(const std::string& s) {
  std::string q = "\"";
  for (char c : s) q += c == '"' ? std::string("\"\"") : std::string(1, c);
  return q + "\"";
}

}  // namespace

std::string full(double v) {
  if (!std::isfinite(v)) return "";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15g", v);
  return buf;
}

std::vector<Table> result_tables(const lfres::CaseResults& r) {
  std::vector<Table> out;
  Table buses = make("buses", "Buses",
                     {{"bus", false},
                      {"source_bus", false},
                      {"name", true},
                      {"area", false},
                      {"base_kv", false},
                      {"v_pu", false},
                      {"angle_deg", false},
                      {"vmin_pu", false},
                      {"vmax_pu", false}});
  for (const auto& b : r.buses) {
    buses.rows.push_back({integer(b.number), source(r, b.number), b.name, integer(b.area),
                          full(b.base_kv), b.solved ? full(b.v) : "", b.solved ? full(b.angle) : "",
                          full(b.vmin), full(b.vmax)});
  }
  out.push_back(buses);
  out.push_back(branch_table(r, false));
  out.push_back(branch_table(r, true));

  Table gens = make("generators", "Generators",
                    {{"bus", false},
                     {"source_bus", false},
                     {"name", true},
                     {"type", false},
                     {"p_pu", false},
                     {"q_pu", false},
                     {"qmin_pu", false},
                     {"qmax_pu", false},
                     {"merged", false},
                     {"at_q_limit", false}});
  for (const auto& g : r.generators) {
    gens.rows.push_back({integer(g.bus), source(r, g.bus), r.bus_name(g.bus), integer(g.type),
                         full(g.p), full(g.q), full(g.qmin), full(g.qmax), integer(g.merged),
                         g.at_limit() ? "1" : "0"});
  }
  out.push_back(gens);

  Table loads = make("loads", "Loads",
                     {{"bus", false},
                      {"source_bus", false},
                      {"name", true},
                      {"no", false},
                      {"p_pu", false},
                      {"q_pu", false}});
  for (const auto& l : r.loads) {
    loads.rows.push_back(
        {integer(l.bus), source(r, l.bus), r.bus_name(l.bus), integer(l.no), full(l.p), full(l.q)});
  }
  out.push_back(loads);

  Table dc = make("dc_lines", "DC lines", {});
  for (const auto& [c, text] : kEnds) dc.header.push_back(c), dc.text.push_back(text);
  for (const char* c :
       {"p_rectifier_pu", "q_rectifier_pu", "p_inverter_pu", "q_inverter_pu", "ratio_rectifier",
        "ratio_inverter", "vdc_rectifier_pu", "vdc_inverter_pu", "firing_angle_deg"})
    dc.header.push_back(c), dc.text.push_back(false);
  for (const auto& d : r.dclines) {
    std::vector<std::string> row;
    ends(r, d.i, d.j, d.no, row);
    for (double v :
         {d.p_i, d.q_i, d.p_j, d.q_j, d.ratio_i, d.ratio_j, d.vdc_i, d.vdc_j, d.firing_angle})
      row.push_back(full(v));
    dc.rows.push_back(row);
  }
  out.push_back(dc);

  Table areas = make("areas", "Areas",
                     {{"area", false},
                      {"name", true},
                      {"schedule_pu", false},
                      {"actual_pu", false},
                      {"regulating_output_pu", false}});
  for (const auto& a : r.areas) {
    areas.rows.push_back(
        {integer(a.number), a.name, full(a.schedule), full(a.actual), full(a.regulating)});
  }
  out.push_back(areas);
  return out;
}

bool write_csv(const std::vector<Table>& tables, const std::string& dir) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  for (const auto& t : tables) {
    const std::string path = dir + "/" + t.name + ".csv";
    std::ofstream out(path);
    for (std::size_t c = 0; c < t.header.size(); ++c) out << (c ? "," : "") << t.header[c];
    out << '\n';
    for (const auto& row : t.rows) {
      for (std::size_t c = 0; c < row.size(); ++c)
        out << (c ? "," : "") << (t.text[c] ? quoted(row[c]) : row[c]);
      out << '\n';
    }
    if (!out) {
      std::fprintf(stderr, "lfreport: cannot write %s\n", path.c_str());
      return false;
    }
  }
  return true;
}

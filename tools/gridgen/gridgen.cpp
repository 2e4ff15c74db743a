// gridgen: joins copies of a case into one larger case, for timing the
// engine on large grids.
//
//   gridgen IN_STEM OUT_STEM --copies N [--ties T]
//
// Reads IN_STEM.L0, .L1, .L2, .L3, .L5, .L6 (one record a line, as mp2lf
// writes them) and writes OUT_STEM.L0 ... .L6 with N copies of every bus,
// branch, generator and load: copy k (from 0) numbers its buses, branches
// and loads after those of copies 0..k-1, and its bus names get "-k" (copy 0
// keeps the names as they are).  Copy k is tied to copy k+1, and the last to
// the first when N is above 2, by T lines (default 8) that each join a bus to
// the same bus of the next copy.  Every copy keeps its own slack bus, and a
// tie has no charging, so the copies' common solution leaves the ties
// without flow: the joined case converges to the solution of the case in
// every copy.  Cases with DC lines, areas, scaling factors, substation
// switches or user-defined models are refused.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cmdline.hpp"

namespace {

[[noreturn]] void fail(const std::string& why) {
  std::fprintf(stderr, "gridgen: %s\n", why.c_str());
  std::exit(1);
}

constexpr const char* kUsage =
    "usage: gridgen IN_STEM OUT_STEM --copies N [--ties T]\n"
    "  joins N copies of the case IN_STEM (tied by T lines between neighbouring\n"
    "  copies, default 8) into the case OUT_STEM\n";

// A count option's value: a whole number of 1 or more, else a problem text.
auto count_of(const char* name, long& to) {
  return [name, &to](const char* text) {
    char* end = nullptr;
    to = std::strtol(text, &end, 10);
    return *text != '\0' && *end == '\0' && to >= 1
               ? std::string()
               : std::string(name) + " needs a count of 1 or more, not '" + text + "'";
  };
}

// One record: its fields as written, a quoted text with its quotes.
using Record = std::vector<std::string>;

Record split(const std::string& line) {
  Record r;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() &&
           (line[i] == ' ' || line[i] == '\t' || line[i] == ',' || line[i] == '\r'))
      ++i;
    if (i >= line.size()) break;
    const std::size_t start = i;
    if (line[i] == '\'' || line[i] == '"') {
      const char q = line[i++];
      while (i < line.size() && line[i] != q) ++i;
      ++i;
    } else {
      while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != ',' &&
             line[i] != '\r')
        ++i;
    }
    r.push_back(line.substr(start, i - start));
  }
  return r;
}

// The records of one file, each at least `fields` long; a missing optional
// file gives none.
std::vector<Record> read_file(const std::string& path, std::size_t fields, bool needed) {
  std::ifstream in(path);
  if (!in) {
    if (needed) fail("cannot read " + path);
    return {};
  }
  std::vector<Record> rows;
  std::string line;
  for (long n = 1; std::getline(in, line); ++n) {
    Record r = split(line);
    if (r.empty()) continue;
    if (r.size() < fields)
      fail(path + " line " + std::to_string(n) + ": " + std::to_string(fields) +
           " fields needed, one record a line");
    rows.push_back(std::move(r));
  }
  return rows;
}

long number(const std::string& path, const std::string& text) {
  char* end = nullptr;
  const long v = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0') fail(path + ": '" + text + "' is not an integer");
  return v;
}

// Adds `by` to an integer field, keeping its sign (a transformer's end may be
// written negative); 0, which names nothing, stays.
void shift(const std::string& path, std::string& field, long by) {
  const long v = number(path, field);
  if (v != 0) field = std::to_string(v < 0 ? v - by : v + by);
}

std::string join(const Record& r) {
  std::string s;
  for (const std::string& f : r) {
    if (!s.empty()) s += ' ';
    s += f;
  }
  return s + '\n';
}

void write_file(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  if (!out.flush()) fail("cannot write " + path);
}

// The largest value of an integer field over the records.
long largest(const std::string& path, const std::vector<Record>& rows, std::size_t field) {
  long m = 0;
  for (const Record& r : rows) m = std::max(m, std::labs(number(path, r[field])));
  return m;
}

}  // namespace

int main(int argc, char** argv) {
  long copies = 0, ties = 8;
  const lfcmd::Command command{{"gridgen", kUsage},
                               {{"--copies", "a count", count_of("--copies", copies)},
                                {"--ties", "a count", count_of("--ties", ties)}},
                               2,
                               "give one input stem and one output stem"};
  std::vector<std::string> plain;
  if (int status = lfcmd::parse(command, argc, argv, plain); status >= 0) return status;
  if (plain.size() != 2)
    return lfcmd::problem(command.program, "give one input stem and one output stem");
  if (copies < 1) return lfcmd::problem(command.program, "--copies is needed");
  const std::string& in = plain[0];
  const std::string& out = plain[1];

  const std::string l0 = in + ".L0";
  const std::vector<Record> head = read_file(l0, 10, true);
  if (head.size() < 2 || head[0].size() < 11)
    fail(l0 + ": two records of counts and controls needed");
  std::vector<long> count;
  for (std::size_t f = 0; f < 11; ++f) count.push_back(number(l0, head[0][f]));
  const long nbus = count[0];
  // DC lines, areas, model rows, switches and scaling factors are not copied.
  for (std::size_t f : {3u, 6u, 7u, 9u, 10u})
    if (count[f] != 0)
      fail(l0 + ": only cases of buses, lines, transformers, generators and loads");
  if (number(l0, head[1][7]) != 0) fail(l0 + ": user-defined models are not copied");

  // Fields that hold a bus (I, J, ibs, ibs_ctrl) and a row number (No).
  auto l1 = read_file(in + ".L1", 5, true);
  auto l2 = read_file(in + ".L2", 13, true);
  // .L3 and .L6 count only when .L0 asks for them, as for the engine.
  auto l3 = count[2] != 0 ? read_file(in + ".L3", 17, false) : std::vector<Record>{};
  auto l5 = read_file(in + ".L5", 15, true);
  auto l6 = count[5] != 0 ? read_file(in + ".L6", 16, false) : std::vector<Record>{};
  if (static_cast<long>(l1.size()) != nbus)
    fail(in + ".L1: not " + std::to_string(nbus) + " buses");
  const long branch_no = std::max(largest(in + ".L2", l2, 3), largest(in + ".L3", l3, 3));
  const long load_no = largest(in + ".L6", l6, 2);

  std::ostringstream s1, s2, s3, s5, s6, shunts;
  long lines = 0;
  for (long k = 0; k < copies; ++k) {
    const long b = k * nbus;
    for (Record r : l1) {
      if (k > 0) {
        std::string& name = r[0];
        std::string tag = std::to_string(k);
        tag.insert(tag.begin(), '-');
        if (name.size() >= 2 && (name[0] == '\'' || name[0] == '"'))
          name = name.substr(0, name.size() - 1) + tag + name.back();
        else
          name += tag;
      }
      s1 << join(r);
    }
    for (Record r : l2) {
      const bool shunt = r[1] == r[2];
      shift(in + ".L2", r[1], b);
      shift(in + ".L2", r[2], b);
      shift(in + ".L2", r[3], k * branch_no);
      shift(in + ".L2", r[10], b);
      (shunt ? shunts : s2) << join(r);
      ++lines;
    }
    for (Record r : l3) {
      for (std::size_t f : {1u, 2u, 13u}) shift(in + ".L3", r[f], b);
      shift(in + ".L3", r[3], k * branch_no);
      s3 << join(r);
    }
    for (Record r : l5) {
      shift(in + ".L5", r[1], b);
      shift(in + ".L5", r[12], b);
      s5 << join(r);
    }
    for (Record r : l6) {
      shift(in + ".L6", r[1], b);
      shift(in + ".L6", r[2], k * load_no);
      shift(in + ".L6", r[13], b);
      s6 << join(r);
    }
  }
  // The ties, after the series rows of every copy and before the shunt rows.
  long no = copies * branch_no;
  const long pairs = copies == 1 ? 0 : copies == 2 ? 1 : copies;
  for (long k = 0; k < pairs; ++k) {
    const long next = (k + 1) % copies;
    for (long t = 0; t < ties; ++t) {
      const long bus = 1 + t * nbus / ties;
      s2 << "1 " << k * nbus + bus << ' ' << next * nbus + bus << ' ' << ++no
         << " 0.001 0.01 0 0 0 0 0 0 0 0 0\n";
      ++lines;
    }
  }
  s2 << shunts.str();

  Record c = head[0];
  c[0] = std::to_string(nbus * copies);
  c[1] = std::to_string(lines);
  c[2] = std::to_string(static_cast<long>(l3.size()) * copies);
  c[4] = std::to_string(static_cast<long>(l5.size()) * copies);
  c[5] = std::to_string(static_cast<long>(l6.size()) * copies);
  write_file(out + ".L0", join(c) + join(head[1]));
  write_file(out + ".L1", s1.str());
  write_file(out + ".L2", s2.str());
  if (!l3.empty()) write_file(out + ".L3", s3.str());
  write_file(out + ".L5", s5.str());
  if (!l6.empty()) write_file(out + ".L6", s6.str());
  std::printf("gridgen: wrote %s.L0-.L6: %ld buses, %ld lines and ties, %ld transformers\n",
              out.c_str(), nbus * copies, lines, static_cast<long>(l3.size()) * copies);
  return 0;
}

// Bad inputs, one row of tests/data/badinput/cases.tsv each: a fresh folder
// gets a copy of a case, the damage is done to it, a command runs there, and
// the outcome must be honest.  Columns, separated by tabs ("-" for none):
//
//   name       the row's name (letters, digits, underscores)
//   base       a folder of the repository whose files are copied first
//   damage     shell commands that damage the copy
//   command    the shell command under test; the build folder is on PATH
//   exit       its expected exit status
//   expect     a text that must appear in its standard output or error
//   unchanged  files (blank separated) that the command must leave as they were
//
// Both shell fields see SRC, the top of the repository.  Every row must also
// end without a sanitizer's finding and within a time limit, and no report
// file of the folder may hold a non-finite number.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "common/files.hpp"

namespace {

namespace fs = std::filesystem;

const std::string kSource = fs::canonical(LF_TEST_DATA_DIR "/../..").string();
const std::string kTable = kSource + "/tests/data/badinput/cases.tsv";
constexpr int kTimeLimit = 120;  // seconds for one command

struct Row {
  std::string name, base, damage, command, expect, unchanged;
  int exit = 0;
  int line = 0;  // in the table
};

// How a row shows in the test's name and messages.
void PrintTo(const Row& r, std::ostream* out) {
  *out << r.name;
}

std::vector<std::string> split_tabs(const std::string& line) {
  std::vector<std::string> fields;
  std::stringstream in(line);
  for (std::string f; std::getline(in, f, '\t');) fields.push_back(f == "-" ? "" : f);
  return fields;
}

std::vector<Row> load_table() {
  std::vector<Row> rows;
  std::ifstream in(kTable);
  int n = 0;
  for (std::string line; std::getline(in, line);) {
    ++n;
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> f = split_tabs(line);
    Row r;
    r.line = n;
    if (f.size() == 7) {
      r.name = f[0];
      r.base = f[1];
      r.damage = f[2];
      r.command = f[3];
      r.exit = std::atoi(f[4].c_str());
      r.expect = f[5];
      r.unchanged = f[6];
    } else {
      r.name = "malformed_line_" + std::to_string(n);  // fails below
    }
    rows.push_back(r);
  }
  return rows;
}

// A text in single quotes for the shell.
std::string quoted(const std::string& text) {
  std::string q = "'";
  for (char c : text) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// Runs a shell command in folder `dir` with SRC set and the build folder on
// PATH; gives its exit status (124 when the time limit ended it).
int shell(const fs::path& dir, const std::string& command, const fs::path& output) {
  const std::string line = "cd " + quoted(dir.string()) + " && SRC=" + quoted(kSource) +
                           " PATH=" + quoted(LF_BINARY_DIR) + ":\"$PATH\" timeout " +
                           std::to_string(kTimeLimit) + " bash -c " + quoted(command) + " >" +
                           quoted(output.string()) + " 2>&1";
  const int s = std::system(line.c_str());
  return WIFEXITED(s) ? WEXITSTATUS(s) : -1;
}

// The fields of report files that are not finite numbers.
std::vector<std::string> non_finite_fields(const fs::path& dir) {
  std::vector<std::string> found;
  for (const auto& e : fs::directory_iterator(dir)) {
    const std::string ext = e.path().extension().string();
    if (ext.size() < 3 || (ext.substr(0, 3) != ".LP" && ext != ".nP4")) continue;
    std::stringstream in(lf::test::read_file(e.path()));
    for (std::string field; std::getline(in, field, ',');) {
      const auto a = field.find_first_not_of(" \n"), b = field.find_last_not_of(" \n");
      if (a == std::string::npos) continue;
      std::string t = field.substr(a, b - a + 1);
      for (char& c : t) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (!t.empty() && (t[0] == '-' || t[0] == '+')) t.erase(0, 1);
      if (t == "nan" || t == "inf" || t == "infinity")
        found.push_back(e.path().filename().string() + ": " + field);
    }
  }
  return found;
}

class BadInput : public ::testing::TestWithParam<Row> {};

TEST_P(BadInput, EndsHonestly) {
  const Row& r = GetParam();
  ASSERT_EQ(r.name.rfind("malformed", 0), std::string::npos)
      << kTable << ": a row needs seven fields separated by tabs";
  SCOPED_TRACE(kTable + ":" + std::to_string(r.line) + " " + r.name);
  const fs::path dir = fs::absolute(r.name);
  fs::remove_all(dir);
  fs::create_directories(dir);
  if (!r.base.empty()) {
    for (const auto& e : fs::directory_iterator(kSource + "/" + r.base))
      if (e.is_regular_file()) fs::copy_file(e.path(), dir / e.path().filename());
  }
  const fs::path output = dir.string() + ".out";
  if (!r.damage.empty()) {
    ASSERT_EQ(shell(dir, r.damage, output), 0) << lf::test::read_file(output);
  }

  std::map<std::string, std::string> before;
  std::stringstream names(r.unchanged);
  for (std::string f; names >> f;)
    before[f] = fs::exists(dir / f) ? lf::test::read_file(dir / f) : "(none)";

  const int status = shell(dir, r.command, output);
  const std::string out = lf::test::read_file(output);
  EXPECT_EQ(status, r.exit) << out;
  if (!r.expect.empty()) {
    EXPECT_NE(out.find(r.expect), std::string::npos) << out;
  }
  for (const char* finding : {"AddressSanitizer", "LeakSanitizer", "runtime error:"})
    EXPECT_EQ(out.find(finding), std::string::npos) << out;
  for (const auto& [f, text] : before)
    EXPECT_EQ(fs::exists(dir / f) ? lf::test::read_file(dir / f) : "(none)", text)
        << f << " was changed";
  EXPECT_EQ(non_finite_fields(dir), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Table, BadInput, ::testing::ValuesIn(load_table()),
                         [](const ::testing::TestParamInfo<Row>& info) { return info.param.name; });

}  // namespace

// Helpers of the tests that run the host programs on copies of the bundled
// examples in the scratch folder.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace lf::test {

const std::string kBin = LF_BINARY_DIR;

// Copies examples/FOLDER into the working folder; returns the case stem.
inline std::string copy_example(const std::string& folder, const std::string& name) {
  std::filesystem::remove_all(folder);
  std::filesystem::copy(std::string(LF_EXAMPLES_DIR) + "/" + folder, folder);
  return folder + "/" + name;
}

// Runs a command: its standard output; status gets the exit status.
inline std::string output_of(const std::string& command, int& status) {
  std::string out;
  std::FILE* p = popen(command.c_str(), "r");
  char buf[4096];
  std::size_t n;
  while (p && (n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  const int s = p ? pclose(p) : -1;
  status = WIFEXITED(s) ? WEXITSTATUS(s) : -1;
  return out;
}

inline std::string file_text(const std::string& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// The comma-separated numbers of each line of a report file.
inline std::vector<std::vector<double>> report_numbers(const std::string& path) {
  std::vector<std::vector<double>> rows;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    std::vector<double> row;
    std::stringstream fields(line);
    for (std::string f; std::getline(fields, f, ',');) row.push_back(std::atof(f.c_str()));
    rows.push_back(row);
  }
  return rows;
}

}  // namespace lf::test

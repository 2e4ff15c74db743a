// Helpers of the tests that run the host programs on copies of the bundled
// examples in the scratch folder.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "common/files.hpp"

namespace lf::test {

const std::string kBin = LF_BINARY_DIR;

// Copies examples/FOLDER into the working folder; returns the case stem.
inline std::string copy_example(const std::string& folder, const std::string& name) {
  std::filesystem::remove_all(folder);
  std::filesystem::copy(std::string(LF_EXAMPLES_DIR) + "/" + folder, folder);
  return folder + "/" + name;
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

// Helpers for the case file tests: a scratch folder per test, files written
// into it, and the engine's messages collected from its host callback.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "io/channels.hpp"
#include "store/store.hpp"

namespace lf::test {

inline std::vector<std::string>& messages() {
  static std::vector<std::string> lines;
  return lines;
}

// Collects each line and echoes it to standard error, where death tests see it.
inline int collect(const char* line) {
  messages().push_back(line);
  std::fprintf(stderr, "%s\n", line);
  return 0;
}

inline std::string slurp_file(const std::filesystem::path& path) {
  std::ifstream f(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), {});
}

class CaseFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    // Case names hold 60 characters: keep the folder's name short.
    static int count = 0;
    dir_ = std::filesystem::path("/tmp") /
           ("lfc" + std::to_string(::getpid()) + "_" + std::to_string(++count));
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    messages().clear();
    prnon = 1;
    prnfunc = reinterpret_cast<intptr_t>(&collect);
    LFINF = {};
    LF93 = {};
    NO = {};
  }
  void TearDown() override {
    prnon = 0;
    prnfunc = 0;
    std::filesystem::remove_all(dir_);
  }

  // Writes the case file stem + ext.
  void write(const std::string& ext, const std::string& text) {
    std::ofstream(dir_ / ("CASE" + ext)) << text;
  }
  std::string stem() const { return (dir_ / "CASE").string(); }
  CaseName name() const { return CaseName(stem()); }
  CaseName lib() const { return CaseName((dir_ / "LIB").string()); }
  void write_lib(const std::string& text) { std::ofstream(dir_ / "LIB.DAT") << text; }

  std::filesystem::path dir_;
};

}  // namespace lf::test

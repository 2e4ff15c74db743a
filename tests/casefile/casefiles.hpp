// The case file tests: a scratch folder per test with a case CASE.* written
// into it, the engine's messages caught.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "common/files.hpp"
#include "common/lines.hpp"
#include "store/store.hpp"

namespace lf::test {

class CaseFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    capture_printed();
    LFINF = {};
    LF93 = {};
    NO = {};
  }
  void TearDown() override { stop_capture(); }

  // Writes the case file stem + ext.
  void write(const std::string& ext, const std::string& text) {
    write_file(dir_ / ("CASE" + ext), text);
  }
  std::string stem() const { return dir_ / "CASE"; }
  CaseName name() const { return CaseName(stem()); }
  CaseName lib() const { return CaseName(dir_ / "LIB"); }
  void write_lib(const std::string& text) { write_file(dir_ / "LIB.DAT", text); }

  ScratchFolder dir_;
};

}  // namespace lf::test

// The MATPOWER importer, run as a program: the files it writes, and what it
// refuses.  (The bundled cases, converted and solved, are compared with
// MATPOWER's solutions by the validation tests.)
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "casefile/readers.hpp"
#include "casefiles.hpp"
#include "common/golden.hpp"

namespace lf {
namespace {

using test::CaseFiles;
using test::printed;
using ::testing::IsEmpty;

const std::string kData = std::string(LF_TEST_DATA_DIR) + "/matpower/";

class Mp2lf : public CaseFiles {
 protected:
  // Runs the importer; its summary line goes to out.
  int run(const std::string& args, std::string* out = nullptr) {
    const std::string log = (dir_ / "mp2lf.out");
    const int rc =
        std::system((std::string(LF_BINARY_DIR) + "/mp2lf " + args + " >" + log + " 2>&1").c_str());
    if (out) *out = test::read_file(log);
    return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
  }
  void convert_and_read(const std::string& m, const std::string& opts = "") {
    ASSERT_EQ(run(m + " " + stem() + " " + opts), 0);
    rdlf(name(), lib());
  }
  bool any_output() const {
    for (const char* ext : {".L0", ".L1", ".L2", ".L3", ".L5", ".L6", ".MAP"})
      if (std::filesystem::exists(dir_ / (std::string("CASE") + ext))) return true;
    return false;
  }
};

// tests/data/casefile/odd.m, a case with what the bundled ones lack: names with quotes, a bus of
// type 4, elements out of service, infinite limits, a line parallel to a transformer, a charged
// transformer, rows over two lines.
const std::string kOdd = test::read_file(LF_TEST_DATA_DIR "/casefile/odd.m");

// The files written, with the summary, stand in
// tests/data/golden/casefile/odd.txt; they read back without a message.
TEST_F(Mp2lf, FollowsTheConversionRules) {
  test::write_file(dir_ / "odd.m", kOdd);
  std::string files;
  ASSERT_EQ(
      run((dir_ / "odd.m") + " " + stem() + " --qlim --method 0 --tolerance 1e-6 --iterations 20",
          &files),
      0);
  files.replace(files.find(stem()), stem().size(), "CASE");
  for (const char* ext : {".L0", ".L1", ".L2", ".L3", ".L5", ".L6", ".MAP"})
    files += std::string("== ") + ext + "\n" + test::read_file(stem() + ext);
  test::expect_golden(files, "casefile/odd.txt");
  rdlf(name(), lib());
  EXPECT_THAT(printed, IsEmpty());
  EXPECT_EQ(LFINF.nacline + LFINF.ntrans + LFINF.ngenerat + LFINF.nload, 14);
}

TEST_F(Mp2lf, RefusesWhatItCannotReadAndLeavesNoFiles) {
  const std::string m = (dir_ / "bad.m");
  const std::string good = kOdd;
  const std::pair<std::string, std::string> cases[] = {
      {good.substr(0, good.find("mpc.branch")), "no branch matrix"},
      {good.substr(0, good.find("0.95")), "no closing ']'"},
      {std::string(good).replace(good.find("0.95"), 4, "x.95"), "cannot read the matrix value"},
      {std::string(good).replace(good.find("mpc.baseMVA"), 4, "mpc.bus(1,2) = 3;\nmpc."),
       "expected '='"},
      {std::string(good).replace(good.find("\t40\t10\t2"), 3, "\t99"), "refers to bus 99"},
      {std::string(good).replace(good.find("'Dead';"), 7, ""), "bus_name"},
  };
  for (const auto& [text, why] : cases) {
    std::ofstream(m) << text;
    std::string out;
    EXPECT_EQ(run(m + " " + stem(), &out), 1) << why;
    EXPECT_THAT(out, ::testing::HasSubstr(why));
    EXPECT_THAT(out, ::testing::HasSubstr("nothing written"));
    EXPECT_FALSE(any_output()) << why;
  }
  EXPECT_EQ(run(m), 2);
  EXPECT_EQ(run(kData + "case9.m " + stem() + " --iterations x"), 2);
  EXPECT_EQ(run((dir_ / "none.m") + " " + stem()), 1);
  EXPECT_FALSE(any_output());
}

}  // namespace
}  // namespace lf

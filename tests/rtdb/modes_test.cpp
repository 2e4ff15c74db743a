// The same case solved from its case files and from a database made of them
// by lfdb import gives the same voltages and flows, within the 32-bit
// rounding of the database's real columns.  (Area schedules and switch
// records have no tables, so the examples that use them are left out; so
// is the example whose model comes from a .L9 file.)  The examples with
// standard models reach the same controlled state in both modes.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <tuple>

#include "driver/newlf.hpp"
#include "store/store.hpp"
#include "testdb.hpp"

namespace lf::test {
namespace {

namespace fs = std::filesystem;

// The numbers of each line of a comma-separated report file.
std::vector<std::vector<double>> report(const fs::path& file) {
  std::vector<std::vector<double>> rows;
  std::ifstream in(file);
  for (std::string line, f; std::getline(in, line);) {
    std::stringstream fields(line);
    rows.emplace_back();
    while (std::getline(fields, f, ','))
      if (f.find_first_of("0123456789") != std::string::npos && f.find('\'') == std::string::npos)
        rows.back().push_back(std::stod(f));
  }
  return rows;
}

class ModesTest : public TestDb, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    TestDb::SetUp();  // only for its file name and session handling
    fs::remove(path_);
  }
  void TearDown() override {
    RTDBLSCMN = RTDBLSCMNRec{};
    TestDb::TearDown();
  }
  ScratchFolder work_{true};
};

TEST_P(ModesTest, FileAndDatabaseGiveTheSameSolution) {
  copy_folder(std::string("examples/") + GetParam(), ".");
  std::string stem;
  for (const auto& e : fs::directory_iterator("."))
    if (e.path().extension() == ".L0") stem = e.path().stem().string();
  write_file("NAME.INC", "1\n" + stem + "\n");

  RTDBLSCMN = RTDBLSCMNRec{};
  int32_t file_converged = 0;
  newlf(file_converged);
  auto buses = report(stem + ".LP1");
  auto lines = report(stem + ".LP2");

  std::string import =
      std::string(LF_BINARY_DIR) + "/lfdb import " + stem + " " + path_.string() + " > /dev/null";
  ASSERT_EQ(std::system(import.c_str()), 0);
  RTDBLSCMN.session = open();
  RTDBLSCMN.rtdbmode = 1;
  int32_t db_converged = 0;
  newlf(db_converged);
  EXPECT_EQ(db_converged, file_converged);
  EXPECT_EQ(value("SELECT calculate FROM case_lf"), file_converged ? "1" : "-1");

  ASSERT_GT(buses.size(), 1u);
  for (std::size_t r = 1; r < buses.size(); ++r) {
    const auto& b = buses[r];
    ASSERT_EQ(b.size(), 3u);
    std::string where = " FROM bs WHERE id = " + std::to_string(int(b[0]));
    EXPECT_NEAR(number("SELECT v" + where), b[1], 2e-5) << where;
    EXPECT_NEAR(std::remainder(number("SELECT adeg" + where) - b[2], 360.0), 0.0, 2e-3) << where;
  }
  for (const auto& l : lines) {
    ASSERT_EQ(l.size(), 9u);
    auto [i, j, no] =
        std::tuple{std::to_string(int(l[0])), std::to_string(int(l[1])), std::to_string(int(l[2]))};
    std::string where = l[0] == l[1]
                            ? " FROM cp WHERE ibs = " + i + " AND cpno = " + no
                            : " FROM ln WHERE ibs = " + i + " AND zbs = " + j + " AND lnno = " + no;
    if (l[0] != l[1]) {
      EXPECT_NEAR(number("SELECT wz" + where), l[5], 2e-4) << where;
    }
    EXPECT_NEAR(number("SELECT w" + where), l[3], 2e-4) << where;
    EXPECT_NEAR(number("SELECT r" + where), l[4], 2e-4) << where;
  }
}

INSTANTIATE_TEST_SUITE_P(Examples, ModesTest,
                         testing::Values("ieee14", "ieee118", "dclink", "remotev", "oltc",
                                         "lineflow"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace lf::test

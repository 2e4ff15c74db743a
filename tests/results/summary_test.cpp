#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>

#include "results/hosts.hpp"

namespace lf::test {
namespace {

// The two numbers after a label in the summary, e.g. "Generation 272.39 82.44".
std::pair<double, double> pair_after(const std::string& summary, const std::string& label) {
  std::smatch m;
  const std::regex re(label + " +(-?[0-9.]+) +(-?[0-9.]+)");
  if (!std::regex_search(summary, m, re)) return {NAN, NAN};
  return {std::stod(m[1]), std::stod(m[2])};
}

// The summary's totals and extreme voltages agree with the report files, in
// file mode and in database mode alike.
TEST(Summary, NumbersAgreeWithTheReportFiles) {
  struct Case {
    const char *folder, *name;
  };
  for (const Case c : {Case{"ieee14", "IEEE14"}, Case{"areas", "AREAS"}}) {
    SCOPED_TRACE(c.name);
    const std::string stem = copy_example(c.folder, c.name);
    int status = -1;
    const std::string out = output_of(kBin + "/lfrun " + stem, status);
    EXPECT_EQ(status, 0);
    const std::size_t at = out.find("Result summary of " + std::string(c.name));
    ASSERT_NE(at, std::string::npos) << out;
    const std::string summary = out.substr(at);
    EXPECT_NE(summary.find("  Converged in "), std::string::npos);
    EXPECT_TRUE(std::regex_search(summary, std::regex("Calculation time [0-9]+\\.[0-9]{3} ms")));

    double gp = 0, gq = 0, lp = 0, lq = 0;
    for (const auto& g : report_numbers(stem + ".LP5")) gp += g[1], gq += g[2];
    for (const auto& l : report_numbers(stem + ".LP6")) lp += l[2], lq += l[3];
    const auto gen = pair_after(summary, "Generation");
    const auto load = pair_after(summary, "Load");
    const auto loss = pair_after(summary, "Losses");
    EXPECT_NEAR(gen.first, gp * 100, 0.006);
    EXPECT_NEAR(gen.second, gq * 100, 0.006);
    EXPECT_NEAR(load.first, lp * 100, 0.006);
    EXPECT_NEAR(load.second, lq * 100, 0.006);
    EXPECT_NEAR(loss.first, (gp - lp) * 100, 0.006);

    auto buses = report_numbers(stem + ".LP1");
    buses.erase(buses.begin());
    const auto [low, high] = std::minmax_element(
        buses.begin(), buses.end(), [](const auto& a, const auto& b) { return a[1] < b[1]; });
    char expect[64];
    std::snprintf(expect, sizeof expect, "Lowest voltage  %8.4f pu at bus %d ", (*low)[1],
                  static_cast<int>((*low)[0]));
    EXPECT_NE(summary.find(expect), std::string::npos) << expect << "\n" << summary;
    std::snprintf(expect, sizeof expect, "Highest voltage %8.4f pu at bus %d ", (*high)[1],
                  static_cast<int>((*high)[0]));
    EXPECT_NE(summary.find(expect), std::string::npos) << expect;

    // lfreport gives the same summary from the files and the run log.
    const std::string again = output_of(kBin + "/lfreport " + stem, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(again, "\n" + summary);

    // The database holds the same results (area schedules have no tables).
    if (std::string(c.name) == "AREAS") continue;
    const std::string db = std::string(c.name) + ".db";
    std::filesystem::remove(db);
    output_of(kBin + "/lfdb import " + stem + " " + db, status);
    const std::string from_db = output_of(kBin + "/lfrun --db " + db + " " + stem, status);
    EXPECT_EQ(pair_after(from_db, "Generation"), gen);
    EXPECT_EQ(pair_after(from_db, "Load"), load);
  }
}

// Bus numbers of the source case, from the map that mp2lf writes, stand in
// the summary and in the tables' source columns.
TEST(Summary, SourceBusNumbersFromTheMap) {
  const std::string stem = copy_example("ieee14", "IEEE14");
  std::ofstream map(stem + ".MAP");
  for (int k = 1; k <= 14; ++k) map << k << ' ' << 1000 + k << '\n';
  map.close();
  int status = -1;
  const std::string out = output_of(kBin + "/lfrun " + stem, status);
  EXPECT_NE(out.find("Lowest voltage    1.0100 pu at bus 1003 'Bus 3     HV'"), std::string::npos)
      << out;
  EXPECT_NE(out.find("  line 1001-1002 No 1 "), std::string::npos);
  output_of(kBin + "/lfreport " + stem + " --csv csv14", status);
  EXPECT_NE(read_file("csv14/buses.csv").find("\n3,1003,\"Bus 3     HV\","), std::string::npos);
  EXPECT_NE(read_file("csv14/branches.csv").find("\n1,2,1,1001,1002,"), std::string::npos);
}

// A generator that the reactive limits stopped stands in the summary with
// the output that its report line holds.
TEST(Summary, NamesTheGeneratorsHeldAtAReactiveLimit) {
  std::filesystem::create_directory("qlim");
  int status = -1;
  output_of(kBin + "/mp2lf " + LF_TEST_DATA_DIR + "/matpower/case118.m qlim/Q --qlim", status);
  ASSERT_EQ(status, 0);
  const std::string out = output_of(kBin + "/lfrun qlim/Q", status);
  const std::size_t at = out.find("  Generators held at a reactive limit:\n");
  ASSERT_NE(at, std::string::npos) << out;
  EXPECT_NE(out.find("\n    bus 103 'Claytor   V2': Q 40.00 Mvar at its upper limit\n", at),
            std::string::npos)
      << out.substr(at);
  bool found = false;
  for (const auto& g : report_numbers("qlim/Q.LP5"))
    if (g[0] == 103) found = g[2] == 0.4;
  EXPECT_TRUE(found) << "the report holds the upper limit, 0.4 per unit";
}

// The nonlinear method prints its table outside the engine's channels; the
// summary still counts its iterations and names it.
TEST(Summary, CountsTheNonlinearMethodsTable) {
  const std::string stem = copy_example("ieee14", "IEEE14");
  int status = -1;
  const std::string out = output_of(kBin + "/lfrun --nonlinear " + stem, status);
  std::smatch row;
  std::string rest = out;
  std::string last;
  while (std::regex_search(rest, row, std::regex("\n {6}( *[0-9]+) {16}"))) {
    last = row[1];
    rest = row.suffix();
  }
  ASSERT_FALSE(last.empty()) << out;
  EXPECT_NE(
      out.find("Converged in " + std::to_string(std::stoi(last)) + " iterations, nonlinear method"),
      std::string::npos)
      << out;
}

TEST(Summary, QuietLeavesItOut) {
  const std::string stem = copy_example("ieee14", "IEEE14");
  int status = -1;
  const std::string out = output_of(kBin + "/lfrun --quiet " + stem, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out.find("Result summary"), std::string::npos);
  EXPECT_NE(out.find("End of Program."), std::string::npos);
}

}  // namespace
}  // namespace lf::test

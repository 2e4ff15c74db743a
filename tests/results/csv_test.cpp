#include <gtest/gtest.h>

#include <fstream>

#include "results.hpp"
#include "results/hosts.hpp"
#include "summary.hpp"

namespace lf::test {
namespace {

// Every table of lfreport --csv, row by row and column by column, against
// golden files checked by hand against the report files.  A changed table
// is written beside the run (FILE.new) for a look.
TEST(CsvTables, MatchTheGoldenFiles) {
  struct Case {
    const char *folder, *name;
  };
  for (const Case c : {Case{"dclink", "DCLINK"}, Case{"areas", "AREAS"}}) {
    SCOPED_TRACE(c.name);
    const std::string stem = copy_example(c.folder, c.name);
    int status = -1;
    output_of(kBin + "/lfrun --quiet " + stem, status);
    const std::string dir = std::string(c.folder) + "/csv";
    output_of(kBin + "/lfreport " + stem + " --csv " + dir, status);
    ASSERT_EQ(status, 0);
    const std::string golden = std::string(LF_TEST_DATA_DIR) + "/lfreport/" + c.name;
    for (const char* table :
         {"buses", "branches", "transformers", "generators", "loads", "dc_lines", "areas"}) {
      const std::string name = std::string(table) + ".csv";
      EXPECT_EQ(read_file(dir + "/" + name), read_file(golden + "/" + name)) << name;
    }
  }
}

}  // namespace
}  // namespace lf::test

namespace lf::test {
namespace {

// Writes a hand-made case FOLDER/C with the given files (extension, text),
// has lfreport make its tables and gives their folder.
std::string tables_of(const std::string& folder,
                      std::initializer_list<std::pair<const char*, const char*>> files) {
  std::filesystem::create_directory(folder);
  for (const auto& [ext, text] : files) std::ofstream(folder + "/C." + ext) << text;
  int status = -1;
  output_of(kBin + "/lfreport " + folder + "/C --csv " + folder + "/csv", status);
  EXPECT_EQ(status, 0);
  return folder + "/csv/";
}

constexpr const char* kStamp = "  0,'LF Result File Created on 20260101 at 00:00:00',\n";

// A bus number too wide for the bus report's field (above 9999) prints as
// asterisks; the tables take it as the next bus after the last that has a
// branch, and give every number in full.
TEST(CsvTables, BusNumbersLostToAsterisksComeBack) {
  const std::string lp1 = std::string(kStamp) + "   1,   1.0000000000,   0.0000000000,\n" +
                          "****,   0.9876543210,  -1.2345678901,\n";
  const std::string csv =
      tables_of("wide", {{"L0", "3 1 0 0 0 0 0 0 0 0 0\n100 1.1 0.9 1e-8 1 20 0 0 0 0\n"},
                         {"L1", "'A' 110 1 0 0\n'LONE' 110 1 0 0\n'C' 110 1 0 0\n"},
                         {"L2", "1 1 3 7 0.01 0.1 0 0 0 0 0 0 0\n"},
                         {"LP1", lp1.c_str()},
                         {"LP2",
                          "     1,     3,     7,  12.34567, -0.12345,  12.34567,  0.00000,"
                          "   0.00000,   0.00000,\n"}});
  EXPECT_EQ(read_file(csv + "buses.csv"),
            "bus,source_bus,name,area,base_kv,v_pu,angle_deg,vmin_pu,vmax_pu\n"
            "1,,\"A\",1,110,1,0,0.9,1.1\n"
            "2,,\"LONE\",1,110,,,0.9,1.1\n"
            "3,,\"C\",1,110,0.987654321,-1.2345678901,0.9,1.1\n");
  EXPECT_NE(read_file(csv + "branches.csv").find("\n1,3,7,,,\"A\",\"C\",12.34567,-0.12345,"),
            std::string::npos);
}

// Generator report lines take type and limits from the rows as read at
// their bus, in turn, whatever the rows of other buses between them.
TEST(CsvTables, GeneratorsTakeTheRowsOfTheirBusInTurn) {
  const std::string lp1 = std::string(kStamp) + "   1,   1.0000000000,   0.0000000000,\n" +
                          "   2,   1.0000000000,   0.0000000000,\n";
  const std::string csv = tables_of(
      "gens", {{"L0", "2 0 0 0 3 0 0 0 0 0 0\n100 1.1 0.9 1e-8 1 20 0 0 0 0\n"},
               {"L1", "'A' 110 1 0 0\n'B' 110 1 0 0\n"},
               {"L5", "1 2 -2 0 0 1 0 0.5 -0.5\n1 1 0 0 0 1 0 0.7 -0.7\n1 2 -2 0 0 1 0 0.3 -0.3\n"},
               {"LP1", lp1.c_str()},
               {"LP5", "2, 0.1, 0.5, 0,\n1, 0.1, 0.2, 0,\n2, 0.1, 0.3, 0,\n"}});
  EXPECT_EQ(read_file(csv + "generators.csv"),
            "bus,source_bus,name,type,p_pu,q_pu,qmin_pu,qmax_pu,merged,at_q_limit\n"
            "2,,\"B\",-2,0.1,0.5,-0.5,0.5,0,1\n"
            "1,,\"A\",0,0.1,0.2,-0.7,0.7,0,0\n"
            "2,,\"B\",-2,0.1,0.3,-0.3,0.3,0,1\n");
}

// The summary's reading keeps only the most loaded branches as it goes:
// the ones the whole reading ranks first, also among equal loadings, with
// neither shunt branches nor loadings that do not read.
TEST(SummaryReading, KeepsTheBranchesThatTheWholeReadingRanksFirst) {
  const std::string folder = "ranked";
  std::filesystem::create_directory(folder);
  const std::string lp2 =  // No 3 a shunt, No 5 unreadable, No 8 the most loaded
      "1, 2, 1, 2.0, 0.0, 1.0, 0.0, 0, 0,\n1, 3, 2, 0.0, 1.0, 2.0, 0.0, 0, 0,\n"
      "2, 2, 3, 3.0, 0.0, 3.0, 0.0, 0, 0,\n2, 3, 4, 2.0, 0.0, 0.0, 0.0, 0, 0,\n"
      "1, 2, 5, *****, 0.0, 1.0, 0.0, 0, 0,\n1, 3, 6, 1.0, 0.0, 1.0, 0.0, 0, 0,\n"
      "2, 3, 7, 0.0, 2.0, 0.0, 0.0, 0, 0,\n1, 2, 8, 5.0, 0.0, 0.0, 0.0, 0, 0,\n"
      "1, 3, 9, 2.0, 0.0, 0.0, 0.0, 0, 0,\n";
  // Then enough lines for the reading to pass over those it can tell from
  // their text are too light, among them heavy ones whose text does not
  // show it at a glance: an exponent, a sign, a long whole part.
  std::string more = lp2;
  for (int k = 10, x = 7; k < 400; ++k, x = (x * 37 + 11) % 1000) {
    const std::string p = k == 150   ? "0.9e1"
                          : k == 250 ? "-8.75"
                          : k == 300 ? "+0000000000000000009.5"
                          : k == 399 ? "   9.1   "
                                     : std::to_string(x / 200.0);
    more += "1, 2, " + std::to_string(k) + ", 0.5, " + (k % 2 ? p : "0.1") + ", 0.0, " +
            (k % 2 ? "0.2" : p) + ", 0, 0,\n";
  }
  for (const auto& [ext, text] :
       {std::pair<const char*, std::string>{
            "L0", "3 399 0 0 0 0 0 0 0 0 0\n100 1.1 0.9 1e-8 1 20 0 0 0 0\n"},
        {"L1", "'A' 110 1 0 0\n'B' 110 1 0 0\n'C' 110 1 0 0\n"},
        {"LP1", std::string(kStamp) + "1, 1.0, 0.0,\n2, 1.0, 0.0,\n"},
        {"LP2", more}})
    std::ofstream(folder + "/C." + ext) << text;
  lfres::CaseResults all, few;
  lfres::read_file_results(folder + "/C", all);
  lfres::read_file_results(folder + "/C", few, {nullptr, lfres::kBranchesShown});
  const auto ranked = [](const lfres::CaseResults& r) {
    std::vector<int> no;
    for (const lfres::Branch* b : lfres::by_loading(r, lfres::kBranchesShown)) no.push_back(b->no);
    return no;
  };
  EXPECT_EQ(ranked(all), (std::vector<int>{300, 399, 150, 250, 8}));
  EXPECT_EQ(ranked(few), ranked(all));
}

}  // namespace
}  // namespace lf::test

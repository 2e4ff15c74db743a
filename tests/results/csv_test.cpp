#include <gtest/gtest.h>

#include "results/hosts.hpp"

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

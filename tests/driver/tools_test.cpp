#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "driver/engine_fixture.hpp"

namespace lf::test {
namespace {

const std::string kBin = LF_BINARY_DIR;

// The exit status of a command run in the current folder, its standard
// output in `out`.
int run(const std::string& command, std::string* out = nullptr) {
  int status = -1;
  const std::string text = output_of(command + " 2>/dev/null", status);
  if (out) *out = text;
  return status;
}

using Hosts = EngineTest;

TEST_F(Hosts, LfrunExplainsItsOptionsAndRefusesBadUsage) {
  std::string help;
  EXPECT_EQ(run(kBin + "/lfrun --help", &help), 0);
  EXPECT_NE(help.find("--name-inc"), std::string::npos);
  for (const char* args : {"", " --bogus LF", " --repeat 0 LF", " --db case.db LF", " LF other"})
    EXPECT_EQ(run(kBin + "/lfrun" + args), 2) << args;
}

TEST_F(Hosts, LfrunNeverChangesTheUsersNameInc) {
  std::filesystem::create_directory("sub");
  for (const char* ext : {".L0", ".L1", ".L2", ".L5", ".L6"}) {
    std::filesystem::copy_file(std::string("LF") + ext, std::string("sub/CASE") + ext);
  }
  const std::string theirs = "1\nOTHER\n\nDATALIB\n";
  write_file("sub/NAME.INC", theirs);
  EXPECT_EQ(run(kBin + "/lfrun sub/CASE"), 2);
  EXPECT_EQ(read_file("sub/NAME.INC"), theirs);

  std::filesystem::remove("sub/NAME.INC");
  std::string out;
  int status = run(kBin + "/lfrun --repeat 2 sub/CASE", &out);
  EXPECT_TRUE(status == 0 || status == 1);
  EXPECT_FALSE(std::filesystem::exists("sub/NAME.INC"));  // the one written for the run is gone
  EXPECT_TRUE(std::filesystem::exists("sub/LFERR.LIS"));
  const std::size_t first = out.find("End of Program.");  // one for each of the two runs
  EXPECT_NE(out.find("End of Program.", first + 1), std::string::npos);

  write_file("sub/NAME.INC", theirs);
  status = run(kBin + "/lfrun --name-inc --no-print --quiet sub/CASE", &out);
  EXPECT_TRUE(status == 0 || status == 1);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(read_file("sub/NAME.INC").substr(0, 7), "1\nCASE\n");
}

TEST_F(Hosts, StatusServerShowsTheFramesOfAnEngine) {
  PortLock port;
  std::FILE* server = popen((kBin + "/lfstatus --once").c_str(), "r");
  ASSERT_NE(server, nullptr);
  char line[256];
  if (!std::fgets(line, sizeof line, server)) {
    pclose(server);
    GTEST_SKIP() << "another program has the link's port";
  }
  EXPECT_STREQ(line, "listening on 127.0.0.1 port 9876\n");
  EXPECT_EQ(init(LF_FLAG_LINK | LF_FLAG_PRINT), LF_FLAG_LINK | LF_FLAG_PRINT);
  print("watch this   ");  // sent without its trailing blanks
  print("");
  cal(LF_FLAG_LINK);  // print bit clear: nothing for any channel
  cal(LF_FLAG_LINK | LF_FLAG_PRINT);
  LFFinilize();
  std::string out;
  while (std::fgets(line, sizeof line, server)) out += line;
  EXPECT_EQ(pclose(server), 0);
  const std::string start =
      "kind 11 length 4: status 1 (engine connected)\n"
      "kind 1 length 10: watch this\n"
      "kind 1 length 0: \n";
  EXPECT_EQ(out.substr(0, start.size()), start);
  const std::string end =
      "kind 1 length 44: End of Program.  Please Close the Window....\n"
      "kind 11 length 4: status 2 (engine shutting down)\n"
      "engine disconnected\n";
  ASSERT_GE(out.size(), end.size());
  EXPECT_EQ(out.substr(out.size() - end.size()), end);
  EXPECT_EQ(out.find("End of Program."), out.size() - end.size() + 18);  // only once
}

}  // namespace
}  // namespace lf::test

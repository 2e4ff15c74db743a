// A calculation that runs out of memory ends with a stop text and status 1,
// never with a crash or an exception across the exports.  The child process
// of a death test starts the engine, then caps its own address space a few
// megabytes above what it uses and calculates a case that needs far more.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "driver/engine_fixture.hpp"

namespace lf::test {
namespace {

using Memory = EngineTest;

// A chain of n buses, a slack at the first and a load at the last.
void write_chain_case(int n) {
  write_file("LF.L0", std::to_string(n) + " " + std::to_string(n - 1) +
                          " 0 0 1 1 0 0 0 0 0\n100.0 1.1 0.9 0.0001 1 20 0 0 0 0\n");
  std::string buses, lines;
  for (int i = 1; i <= n; ++i) buses += "'B" + std::to_string(i) + "' 110.0 1 121.0 99.0\n";
  for (int i = 1; i < n; ++i)
    lines +=
        "1 " + std::to_string(i) + " " + std::to_string(i + 1) + " 1 0.0001 0.001 0 0 0 0 0 0 0\n";
  write_file("LF.L1", buses);
  write_file("LF.L2", lines);
  write_file("LF.L6", "1 " + std::to_string(n) + " 1 1 0.5 0.2 1.0 0 0 0 0 0 0 0 0 0\n");
}

// Caps the address space at what the process holds now plus `spare` bytes.
void cap_address_space(unsigned long long spare) {
  unsigned long long pages = 0;
  if (std::FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%llu", &pages) != 1) pages = 0;
    std::fclose(f);
  }
  const rlimit cap{pages * 4096 + spare, RLIM_INFINITY};
  if (pages == 0 || setrlimit(RLIMIT_AS, &cap) != 0) std::_Exit(99);
}

TEST_F(Memory, AFailedAllocationEndsTheCalculationWithAStopTextAndStatusOne) {
  // The child is started anew (not forked) so that it sees the sanitizer
  // options set here: under the address checker a failed allocation then
  // comes back empty instead of ending the process with a report, and the
  // child, which stops halfway on purpose, is not checked for leaks.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const char* given = std::getenv("ASAN_OPTIONS");
  const std::string options =
      std::string(given ? given : "") + ":allocator_may_return_null=1:detect_leaks=0";
  setenv("ASAN_OPTIONS", options.c_str(), 1);
  write_chain_case(200000);
  EXPECT_EXIT(
      {
        init(0);
        cap_address_space(32ull << 20);
        std::exit(cal(0));
      },
      ::testing::ExitedWithCode(1), "LFCal: out of memory");
}

}  // namespace
}  // namespace lf::test

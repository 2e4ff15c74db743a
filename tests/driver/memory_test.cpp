// A calculation that runs out of memory ends with a stop text and status 1,
// never with a crash or an exception across the exports.  The child process
// of a death test starts the engine, then caps its own address space a few
// megabytes above what it uses and calculates a case that needs far more.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "driver/engine_fixture.hpp"

namespace lf::test {
namespace {

using Memory = EngineTest;

#if !defined(__SANITIZE_ADDRESS__)
// A chain of n buses, a slack at the first and a load at the last.
void write_chain_case(int n) {
  write_file("LF.L0", std::to_string(n) + " " + std::to_string(n - 1) +
                          " 0 0 1 1 0 0 0 0 0\n100.0 1.1 0.9 0.0001 1 20 0 0 0 0\n");
  std::ofstream buses("LF.L1"), lines("LF.L2");
  for (int i = 1; i <= n; ++i) buses << "'B" << i << "' 110.0 1 121.0 99.0\n";
  for (int i = 1; i < n; ++i)
    lines << "1 " << i << ' ' << i + 1 << " 1 0.0001 0.001 0 0 0 0 0 0 0\n";
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
#endif

TEST_F(Memory, AFailedAllocationEndsTheCalculationWithAStopTextAndStatusOne) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address checker cannot run in a capped address space (its own mappings "
                  "fail and it hangs in its report), and a failed operator new under it ends the "
                  "process with its report whatever its options say";
#else
  // The child runs the calculation in an address space capped after start-up.
  write_chain_case(200000);
  EXPECT_EXIT(
      {
        init(0);
        cap_address_space(32ull << 20);
        std::exit(cal(0));
      },
      ::testing::ExitedWithCode(1), "LFCal: out of memory");
#endif
}

}  // namespace
}  // namespace lf::test

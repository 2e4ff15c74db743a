// Golden files: expected output kept under tests/data/golden and compared
// byte for byte.  With LF_UPDATE_GOLDEN=1 in the environment the test writes
// the file instead; review the difference before committing it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "common/files.hpp"

namespace lf::test {

inline void expect_golden(const std::string& text, const std::string& name) {
  const fs::path file = fs::path(LF_TEST_DATA_DIR) / "golden" / name;
  if (const char* update = std::getenv("LF_UPDATE_GOLDEN"); update && std::string(update) == "1") {
    fs::create_directories(file.parent_path());
    write_file(file, text);
    return;
  }
  ASSERT_TRUE(fs::exists(file)) << file << " is missing; LF_UPDATE_GOLDEN=1 writes it";
  const std::string want = read_file(file);
  if (text == want) return;
  // Name the first line that differs, so that a failure reads quickly.
  std::size_t at = 0, line = 1;
  while (at < text.size() && at < want.size() && text[at] == want[at]) line += text[at++] == '\n';
  const auto line_at = [](const std::string& s, std::size_t p) {
    const std::size_t from = p == 0 ? 0 : s.rfind('\n', p - 1) + 1;  // npos + 1 is 0
    return s.substr(from, s.find('\n', from) - from);
  };
  ADD_FAILURE() << name << " differs from line " << line << ":\n  got:  " << line_at(text, at)
                << "\n  want: " << line_at(want, at);
}

}  // namespace lf::test

// A fresh database file with the engine's schema for each test, filled by
// plain SQL, and an open session on it.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cli.h"

namespace lf::test {

inline std::string schema_text() {
  auto repo = std::filesystem::path(LF_TEST_DATA_DIR).parent_path().parent_path();
  std::ifstream in(repo / "src" / "rtdb" / "schema.sql");
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

class TestDb : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "lfrtdb_" + std::to_string(getpid()) + "_" + info->test_suite_name() + "_" +
                       info->name() + ".db";
    std::replace(name.begin(), name.end(), '/', '_');
    path_ = std::filesystem::temp_directory_path() / name;
    std::string schema = schema_text();
    ASSERT_FALSE(schema.empty());
    sql("BEGIN;" + schema + "COMMIT;");
  }
  void TearDown() override {
    if (session_ > 0) cli_close(session_);
    std::filesystem::remove(path_);
    std::filesystem::remove(path_.string() + "-journal");
  }
  // Runs SQL on a connection of its own, outside the session.
  void sql(const std::string& text) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &db), SQLITE_OK);
    char* err = nullptr;
    int rc = sqlite3_exec(db, text.c_str(), nullptr, nullptr, &err);
    EXPECT_EQ(rc, SQLITE_OK) << (err ? err : "");
    sqlite3_free(err);
    sqlite3_close(db);
  }
  // The first value of a query, as text or as a number, read outside the
  // session.
  template <typename T, typename Column>
  T first(const std::string& query, T none, Column column) {
    sqlite3* db = nullptr;
    sqlite3_open(path_.c_str(), &db);
    sqlite3_stmt* q = nullptr;
    T out = none;
    if (sqlite3_prepare_v2(db, query.c_str(), -1, &q, nullptr) == SQLITE_OK &&
        sqlite3_step(q) == SQLITE_ROW)
      out = column(q);
    sqlite3_finalize(q);
    sqlite3_close(db);
    return out;
  }
  std::string value(const std::string& query) {
    return first<std::string>(query, "<none>", [](sqlite3_stmt* q) {
      const unsigned char* t = sqlite3_column_text(q, 0);
      return t ? reinterpret_cast<const char*>(t) : "";
    });
  }
  double number(const std::string& query) {
    return first<double>(query, -999, [](sqlite3_stmt* q) { return sqlite3_column_double(q, 0); });
  }
  int open() {
    session_ = cli_create("lf", path_.c_str(), 0, cli_open_default, 0, 0, 0, 0);
    return session_;
  }

  std::filesystem::path path_;
  int session_ = 0;
};

}  // namespace lf::test

// A fresh database file with the engine's schema for each test, filled by
// plain SQL, and an open session on it.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

#include "cli.h"
#include "common/files.hpp"

namespace lf::test {

// The rows of a query on the database file, one line each, fields ended by
// a comma (NULL for none).
inline std::string query_text(const std::filesystem::path& file, const std::string& query) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  std::string out;
  sqlite3_exec(
      db, query.c_str(),
      [](void* o, int n, char** v, char**) {
        std::string& s = *static_cast<std::string*>(o);
        for (int k = 0; k < n; ++k) s += std::string(v[k] ? v[k] : "NULL") + ',';
        s += '\n';
        return 0;
      },
      &out, nullptr);
  sqlite3_close(db);
  return out;
}

inline std::string schema_text() {
  return read_file(std::filesystem::path(LF_TEST_DATA_DIR) / "../../src/rtdb/schema.sql");
}

class TestDb : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string schema = schema_text();
    ASSERT_FALSE(schema.empty());
    sql("BEGIN;" + schema + "COMMIT;");
  }
  void TearDown() override {
    if (session_ > 0) cli_close(session_);
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

  ScratchFolder dir_;
  std::filesystem::path path_ = dir_.path() / "case.db";
  int session_ = 0;
};

}  // namespace lf::test

#include <cmath>
#include <cstring>

#include "testdb.hpp"

namespace lf::test {
namespace {

using CliTest = TestDb;

TEST_F(CliTest, WalksInInsertionOrderOrSortedWithTiesInInsertionOrder) {
  sql("INSERT INTO kv (id, vbase) VALUES ('b', 1), ('a', 2), ('c', 3), ('a', 4);");
  int s = open();
  float vbase = 0;
  char id[25];
  auto walk = [&](const char* statement, int rows) {
    int st = cli_statement(s, statement);
    cli_column(st, "id", cli_asciiz, nullptr, id);
    cli_column(st, "vbase", cli_real4, nullptr, &vbase);
    EXPECT_EQ(cli_get_next(st), cli_not_fetched);
    EXPECT_EQ(cli_fetch(st, cli_view_only), rows);
    std::string seen;
    while (cli_get_next(st) == cli_ok) seen += std::string(id) + std::to_string(int(vbase));
    EXPECT_EQ(cli_get_next(st), cli_not_found);
    EXPECT_EQ(cli_get_first(st), cli_ok);
    cli_free(st);
    return seen;
  };
  EXPECT_EQ(walk("select * from kv", 4), "b1a2c3a4");
  EXPECT_EQ(vbase, 1.0f);  // back at the first
  EXPECT_EQ(walk("select * from kv order by id", 4), "a2a4b1c3");
  EXPECT_EQ(walk("select * from kv where vbase > 2", 2), "c3a4");
}

TEST_F(CliTest, TextFieldsAreTwentyFiveBytesAtMost) {
  sql("INSERT INTO kv (id) VALUES ('short'), ('abcdefghijklmnopqrstuvwxy'), "
      "('abcdefghijklmnopqrstuvwxyz0123');");
  int s = open();
  char buf[26];
  int st = cli_statement(s, "select * from kv");
  cli_column(st, "id", cli_asciiz, nullptr, buf);
  cli_fetch(st, cli_view_only);
  // The second fills all 25 bytes without a NUL, the third is cut at 25:
  // nothing is written beyond.
  for (const char* expected : {"short", "abcdefghijklmnopqrstuvwxy", "abcdefghijklmnopqrstuvwxy"}) {
    std::memset(buf, '#', sizeof buf);
    ASSERT_EQ(cli_get_next(st), cli_ok);
    const std::size_t n = std::strlen(expected);
    EXPECT_EQ(std::string(buf, n + 1), expected + std::string(1, n < 25 ? '\0' : '#'));
  }
  cli_free(st);
}

TEST_F(CliTest, UpdateWritesBoundColumnsNarrowedAndKeepsTheRest) {
  sql("INSERT INTO ln (id, descr, lnno, w, r) VALUES ('L1', 'keep me', 7, 5, 6);");
  int s = open();
  int st = cli_statement(s, "select * from ln");
  double w = 0, r = 0;  // bound as 64-bit into 32-bit columns
  char id[25];
  cli_column(st, "id", cli_asciiz, nullptr, id);
  cli_column(st, "w", cli_real8, nullptr, &w);
  cli_column(st, "r", cli_real8, nullptr, &r);
  EXPECT_EQ(cli_update(st), cli_not_fetched);
  ASSERT_EQ(cli_fetch(st, cli_view_only), 1);
  ASSERT_EQ(cli_get_next(st), cli_ok);
  EXPECT_EQ(cli_update(st), cli_not_update_mode);
  ASSERT_EQ(cli_fetch(st, cli_for_update), 1);
  ASSERT_EQ(cli_get_next(st), cli_ok);
  EXPECT_EQ(w, 5.0);
  w = 0.1;
  r = -2.5;
  std::strcpy(id, "L1new");
  ASSERT_EQ(cli_update(st), cli_ok);
  EXPECT_EQ(cli_update(st), cli_already_updated);
  cli_free(st);
  ASSERT_EQ(cli_commit(s), cli_ok);
  EXPECT_EQ(number("SELECT w FROM ln"), double(0.1f));
  EXPECT_EQ(value("SELECT id || ' ' || r || ' ' || descr || ' ' || lnno FROM ln"),
            "L1new -2.5 keep me 7");

  // A value that is not a number is kept as one.
  st = cli_statement(s, "select * from ln");
  cli_column(st, "w", cli_real8, nullptr, &w);
  ASSERT_EQ(cli_fetch(st, cli_for_update), 1);
  ASSERT_EQ(cli_get_next(st), cli_ok);
  w = std::nan("");
  ASSERT_EQ(cli_update(st), cli_ok);
  ASSERT_EQ(cli_get_first(st), cli_ok);
  EXPECT_TRUE(std::isnan(w));
  cli_free(st);
}

TEST_F(CliTest, RefusesWhatTheTableCannotTakeAndInsertsDefaults) {
  int s = open();
  int32_t x = 4;
  char text[25];
  int st = cli_statement(s, "select * from ln");
  EXPECT_EQ(cli_column(st, "IBS", cli_int4, nullptr, &x), cli_column_not_found);
  EXPECT_EQ(cli_column(st, "id", cli_int4, nullptr, &x), cli_incompatible_type);
  EXPECT_EQ(cli_column(st, "ibs", cli_asciiz, nullptr, text), cli_incompatible_type);
  EXPECT_EQ(cli_column(st, "ibs", cli_int8, nullptr, &x), cli_unsupported_type);
  cli_free(st);
  st = cli_statement(s, "select * from nosuch");
  EXPECT_EQ(cli_column(st, "ibs", cli_int4, nullptr, &x), cli_ok);  // judged at fetch
  EXPECT_EQ(cli_fetch(st, cli_view_only), cli_table_not_found);
  cli_free(st);
  for (const char* bad : {"SELECT * from ln", "select ibs from ln", "select * from ln order ibs"}) {
    st = cli_statement(s, bad);
    EXPECT_EQ(cli_fetch(st, cli_view_only), cli_bad_statement) << bad;
    cli_free(st);
  }
  EXPECT_EQ(cli_statement(s, "select * from ln where id = 'x"), cli_bad_statement);
  EXPECT_EQ(cli_statement(s + 1, "select * from ln"), cli_bad_descriptor);
  EXPECT_EQ(cli_fetch(12345, cli_view_only), cli_bad_descriptor);

  st = cli_statement(s, "insert into bs");
  cli_column(st, "id", cli_int4, nullptr, &x);
  cli_oid_t oid = 0;
  ASSERT_EQ(cli_insert(st, &oid), cli_ok);
  EXPECT_GT(oid, 0u);
  cli_free(st);
  cli_commit(s);
  EXPECT_EQ(value("SELECT id || '|' || name || '|' || v FROM bs"), "4||0.0");
}

TEST_F(CliTest, UpdateFetchHoldsTheWriteLockUntilPrecommitAndCommitIsDurable) {
  sql("INSERT INTO bs (id, v) VALUES (0, 1), (1, 1);");
  int s = open();
  int st = cli_statement(s, "select * from bs");
  double v = 0;
  cli_column(st, "v", cli_real8, nullptr, &v);
  ASSERT_EQ(cli_fetch(st, cli_for_update), 2);
  sqlite3* other = nullptr;
  sqlite3_open(path_.c_str(), &other);
  EXPECT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_BUSY);
  ASSERT_EQ(cli_get_next(st), cli_ok);
  v = 1.25;
  ASSERT_EQ(cli_update(st), cli_ok);
  ASSERT_EQ(cli_precommit(s), cli_ok);
  EXPECT_EQ(cli_get_next(st), cli_not_found);  // the selection ended with the transaction
  EXPECT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE; ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(other);
  cli_free(st);
  ASSERT_EQ(cli_commit(s), cli_ok);
  EXPECT_EQ(number("SELECT v FROM bs WHERE id = 0"), 1.25);
}

}  // namespace
}  // namespace lf::test

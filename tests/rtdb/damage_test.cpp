// A damaged, read-only, locked or refusing database: lfrun ends with a
// non-zero exit and a text that says what is wrong, and every table stays
// as it was.  One row per damage: SQL done to a database imported from the
// IEEE 14-bus example, and the text that must appear.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "cli.h"
#include "common/files.hpp"
#include "rtdb/rtdb.hpp"
#include "store/store.hpp"
#include "testdb.hpp"

namespace lf::test {
namespace {

namespace fs = std::filesystem;

struct Damage {
  const char* name;
  const char* sql;     // done to the database before the run
  const char* expect;  // in what lfrun prints
};

void PrintTo(const Damage& d, std::ostream* out) {
  *out << d.name;
}

const Damage kDamages[] = {
    {"table_dropped", "DROP TABLE ln", "table ln: cli_fetch failed with code -15"},
    {"column_missing", "ALTER TABLE xf DROP COLUMN tk", "table xf: binding failed with code -7"},
    {"line_bus_zero", "UPDATE ln SET ibs = 0 WHERE rowid = 3",
     "table ln record 3: bus number 0 is not in 1..14"},
    {"generator_bus_above", "UPDATE un SET ibs = 99 WHERE rowid = 2",
     "table un record 2: bus number 99 is not in 1..14"},
    {"level_missing", "UPDATE bs SET ikv = 9 WHERE rowid = 4",
     "table bs record 4: kv row index 9 names none of the"},
    {"library_set_beyond",
     "UPDATE ld SET mode_ctrl = 2 WHERE rowid = 1;"
     "INSERT INTO load_lib (par_no) VALUES (5000)",
     "table load_lib record 2: parameter set number 5000 is not in 1..80"},
    // The results of the first tables are written when the transformers
    // refuse theirs: all of it must be rolled back.
    {"write_fails_halfway",
     "CREATE TRIGGER refuse BEFORE UPDATE ON xf BEGIN SELECT RAISE(ABORT, 'refused'); END",
     "table xf: cli_update failed with code -10"},
    // A file format version above the library's own makes it read-only for
    // every user, root included.
    {"read_only", "", "nothing written: the database is read-only"},
    {"locked", "", "nothing written: the database is locked by another session"},
    {"not_a_database", "", "cannot open the database"},
};

int exec(sqlite3* db, const std::string& sql) {
  return sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
}

// Every row of every table, as text.
std::string dump(const fs::path& file) {
  std::string tables = query_text(file,
                                  "SELECT group_concat('SELECT * FROM \"' || name || '\";', '') "
                                  "FROM sqlite_master WHERE type = 'table'");
  if (tables.size() >= 2) tables.resize(tables.size() - 2);  // the field's comma and line end
  return query_text(file, tables);
}

// Runs a command: its exit status, with standard output and error in out.
int run(const std::string& command, std::string& out) {
  int status = -1;
  out += output_of(command + " 2>&1", status);
  return status;
}

const std::string kBin = LF_BINARY_DIR;

// A folder of its own with a copy of the IEEE 14-bus example and the
// database case.db imported from it; the folder becomes the working one.
void fresh_case(const std::string& dir) {
  const fs::path example = fs::path(LF_TEST_DATA_DIR).parent_path().parent_path() / "examples";
  fs::create_directory(dir);
  for (const auto& e : fs::directory_iterator(example / "ieee14")) fs::copy(e.path(), dir);
  fs::current_path(dir);
  std::string out;
  ASSERT_EQ(run(kBin + "/lfdb import IEEE14 case.db", out), 0) << out;
}

class DamagedDatabase : public testing::TestWithParam<Damage> {
  void TearDown() override { fs::current_path(".."); }
};

TEST_P(DamagedDatabase, EndsWithAReasonAndLeavesEveryTable) {
  const Damage& d = GetParam();
  fresh_case(d.name);

  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open("case.db", &db), SQLITE_OK);
  ASSERT_EQ(exec(db, d.sql), SQLITE_OK) << d.sql;
  const std::string name = d.name;
  if (name == "locked") {
    ASSERT_EQ(exec(db, "BEGIN IMMEDIATE"), SQLITE_OK);
  }
  if (name == "read_only" || name == "not_a_database") sqlite3_close(db);
  if (name == "read_only") {
    std::fstream f("case.db", std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(18);
    f.put(3);
  }
  if (name == "not_a_database") std::ofstream("case.db") << "IEEE 14-bus case, as text\n";
  // The rows of every table, or the bytes of what is no database.
  auto state = [&] { return name == "not_a_database" ? read_file("case.db") : dump("case.db"); };
  const std::string before = state();

  std::string out;
  EXPECT_EQ(run(kBin + "/lfrun --db case.db IEEE14", out), 1);
  EXPECT_NE(out.find(d.expect), std::string::npos) << out;
  EXPECT_EQ(out.find("results written"), std::string::npos) << out;
  if (name == "locked") exec(db, "ROLLBACK");
  if (name != "read_only" && name != "not_a_database") sqlite3_close(db);
  EXPECT_TRUE(state() == before) << "the database changed";
}

INSTANTIATE_TEST_SUITE_P(Rows, DamagedDatabase, testing::ValuesIn(kDamages),
                         [](const auto& info) { return std::string(info.param.name); });

// Between reading the case and writing its results, the session holds no
// lock: another session can write at once.
TEST(DatabaseSession, HoldsNoLockWhileTheCaseIsSolved) {
  fresh_case("unlocked");
  RTDBLSCMN.session = cli_create("lf", "case.db", 0, cli_open_default, 0, 0, 0, 0);
  RTDBLSCMN.rtdbmode = 1;
  testing::internal::CaptureStdout();
  rdrtlf();
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(RTDBFAIL.text, "");
  sqlite3* other = nullptr;
  sqlite3_open("case.db", &other);  // no waiting for a lock
  EXPECT_EQ(exec(other, "BEGIN IMMEDIATE; UPDATE bs SET v = 1; COMMIT"), SQLITE_OK);
  sqlite3_close(other);
  cli_close(RTDBLSCMN.session);
  RTDBLSCMN = {};
  fs::current_path("..");
}

}  // namespace
}  // namespace lf::test

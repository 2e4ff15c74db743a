// The database reader.  The input is text, one line an operation on the
// tables of the load flow, which are emptied before each input:
//   TABLE column=value ...   inserts a row (value: an integer, a real, nan,
//                            inf, null, or else a text)
//   drop TABLE               removes the table
//   dropcol TABLE COLUMN     removes a column
// Damaged tables are made anew for the next input.  Then the case is read
// from the database through the client interface, as a calculation does.
// The database lives in memory, shared by the target's connection and the
// client's session, and every statement the target runs is prepared once:
// an input then costs the reading itself, not file writes and SQL parsing.
#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli.h"
#include "fuzz/scratch.hpp"
#include "rtdb/rtdb.hpp"
#include "store/store.hpp"

namespace {

const char* const kTables[] = {"global", "case_lf", "kv", "bs", "bus",     "ln",      "cp",
                               "xf",     "dln",     "un", "ld", "fact_gl", "load_lib"};

struct Db {
  sqlite3* db = nullptr;
  std::map<std::string, std::string> create;  // table: its CREATE statement
  std::map<std::string, std::set<std::string>> columns;
  std::set<std::string> damaged;
  std::map<std::string, sqlite3_stmt*> prepared;  // SQL text: its statement, kept
};

Db& database() {
  static Db d = [] {
    Db d;
    lf::fuzz::scratch();
    // One database in memory, named so that the client's session opens the
    // same one.
    sqlite3_config(SQLITE_CONFIG_URI, 1);
    const std::string file = "file:lffz" + std::to_string(::getpid()) + "?mode=memory&cache=shared";
    std::ifstream in(LF_SCHEMA_FILE);
    std::stringstream schema;
    schema << in.rdbuf();
    sqlite3_open(file.c_str(), &d.db);
    sqlite3_exec(d.db, schema.str().c_str(), nullptr, nullptr, nullptr);
    for (const char* t : kTables) {
      sqlite3_stmt* q = nullptr;
      sqlite3_prepare_v2(d.db, "SELECT sql FROM sqlite_master WHERE name = ?1", -1, &q, nullptr);
      sqlite3_bind_text(q, 1, t, -1, SQLITE_STATIC);
      if (sqlite3_step(q) == SQLITE_ROW)
        d.create[t] = reinterpret_cast<const char*>(sqlite3_column_text(q, 0));
      sqlite3_finalize(q);
      sqlite3_prepare_v2(d.db, (std::string("PRAGMA table_info(\"") + t + "\")").c_str(), -1, &q,
                         nullptr);
      while (sqlite3_step(q) == SQLITE_ROW)
        d.columns[t].insert(reinterpret_cast<const char*>(sqlite3_column_text(q, 1)));
      sqlite3_finalize(q);
    }
    lf::RTDBLSCMN.session = cli_create("lf", file.c_str(), 0, cli_open_no_sync, 0, 0, 0, 0);
    lf::RTDBLSCMN.rtdbmode = 1;
    return d;
  }();
  return d;
}

// The statement for sql, prepared on first use (null if it does not
// prepare, a missing table say).
sqlite3_stmt* statement(Db& d, const std::string& sql) {
  if (d.prepared.size() > 4096) {  // bounded: inserts name ever new column lists
    for (auto& [text, q] : d.prepared) sqlite3_finalize(q);
    d.prepared.clear();
  }
  auto [at, added] = d.prepared.try_emplace(sql, nullptr);
  if (!at->second && sqlite3_prepare_v2(d.db, sql.c_str(), -1, &at->second, nullptr) != SQLITE_OK)
    sqlite3_finalize(std::exchange(at->second, nullptr));
  return at->second;
}

// Runs a statement without parameters; a schema change (drop, dropcol) goes
// through plain exec, and forgets the statements prepared on the old tables.
void exec(Db& d, const std::string& sql, bool changes_schema = false) {
  if (changes_schema) {
    for (auto& [text, q] : d.prepared) sqlite3_finalize(q);
    d.prepared.clear();
    sqlite3_exec(d.db, sql.c_str(), nullptr, nullptr, nullptr);
    return;
  }
  if (sqlite3_stmt* q = statement(d, sql)) {
    sqlite3_step(q);
    sqlite3_reset(q);
  }
}

void bind(sqlite3_stmt* q, int k, const std::string& v) {
  char* end = nullptr;
  long long i = std::strtoll(v.c_str(), &end, 10);
  if (!v.empty() && *end == '\0') return (void)sqlite3_bind_int64(q, k, i);
  double x = std::strtod(v.c_str(), &end);
  if (!v.empty() && *end == '\0') return (void)sqlite3_bind_double(q, k, x);
  if (v == "null") return (void)sqlite3_bind_null(q, k);
  sqlite3_bind_text(q, k, v.data(), static_cast<int>(v.size()), SQLITE_TRANSIENT);
}

// Inserts a row from "column=value" words into table t.
void insert(Db& d, const std::string& t, std::istringstream& words) {
  std::vector<std::string> names, values;
  for (std::string w; words >> w;) {
    std::size_t eq = w.find('=');
    if (eq == std::string::npos || !d.columns[t].count(w.substr(0, eq))) continue;
    names.push_back("\"" + w.substr(0, eq) + "\"");
    values.push_back(w.substr(eq + 1));
  }
  std::string sql = "INSERT INTO \"" + t + "\"";
  if (names.empty()) {
    sql += " DEFAULT VALUES";
  } else {
    std::string cols, marks;
    for (std::size_t k = 0; k < names.size(); ++k) {
      cols += (k ? "," : "") + names[k];
      marks += k ? ",?" : "?";
    }
    sql += " (" + cols + ") VALUES (" + marks + ")";
  }
  if (sqlite3_stmt* q = statement(d, sql)) {
    for (std::size_t k = 0; k < values.size(); ++k) bind(q, static_cast<int>(k + 1), values[k]);
    sqlite3_step(q);
    sqlite3_reset(q);
    sqlite3_clear_bindings(q);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  Db& d = database();
  exec(d, "BEGIN");
  for (const auto& [t, sql] : d.create) {
    if (d.damaged.count(t)) {
      exec(d, "DROP TABLE IF EXISTS \"" + t + "\"", true);
      exec(d, sql, true);
    } else {
      exec(d, "DELETE FROM \"" + t + "\"");
    }
  }
  d.damaged.clear();
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  int rows = 0;
  for (std::string line; rows < 300 && std::getline(lines, line); ++rows) {
    std::istringstream words(line);
    std::string op, t, c;
    words >> op;
    if (op == "drop" && words >> t && d.create.count(t)) {
      exec(d, "DROP TABLE \"" + t + "\"", true);
      d.damaged.insert(t);
    } else if (op == "dropcol" && words >> t >> c && d.columns[t].count(c)) {
      exec(d, "ALTER TABLE \"" + t + "\" DROP COLUMN \"" + c + "\"", true);
      d.damaged.insert(t);
    } else if (d.create.count(op)) {
      insert(d, op, words);
    }
  }
  exec(d, "COMMIT");
  try {
    lf::rdrtlf();
  } catch (const lf::fuzz::Stopped&) {
    cli_precommit(lf::RTDBLSCMN.session);  // the reading's transaction, which the stop left open
  }
  return 0;
}

// The client interface over an SQLite file.
//
// Each table keeps the column types of the real-time database in its declared
// SQLite types: INT4 (32-bit integer), REAL4 (32-bit float), REAL8 (64-bit
// float) and TEXT.  Values are narrowed to the column's type before they are
// stored, so a REAL4 column reads back as the widened float.  SQLite keeps a
// value that is not a number as NULL, and it reads back as one.  A selection is
// the list of matching rowids taken at fetch time, in insertion order unless
// the statement orders it; the bound columns of a row are read when the walk
// reaches it.  A fetch for update takes the write lock at once; precommit and
// commit end the transaction and forget every open selection of the session.
// A database opened for writing keeps a write-ahead log, so that a session
// that reads never keeps another one from writing.  The SQLite library is
// loaded when the first session opens, so that a program that links the
// client but works on case files never maps it.
#include "cli.h"

#include <dlfcn.h>
#include <sqlite3ext.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

// The SQLite functions in use, found in the library when the first session
// opens: the extension header turns each call sqlite3_f(...) into
// sqlite3_api->f(...).  Null until then, and for good when the library
// cannot be loaded.
static const sqlite3_api_routines* sqlite3_api = nullptr;

namespace {

constexpr const char* kSqliteLibrary = "libsqlite3.so.0";  // the library's name to load

template <typename F>
bool find_function(void* library, const char* name, F& f) {
  f = reinterpret_cast<F>(dlsym(library, name));
  return f != nullptr;
}

// Loads the library and finds its functions once; false, with a line on
// standard error, when it cannot be loaded.
bool load_sqlite() {
  static const bool loaded = [] {
    static sqlite3_api_routines api{};
    void* lib = dlopen(kSqliteLibrary, RTLD_NOW | RTLD_LOCAL);
    const bool found = lib && find_function(lib, "sqlite3_bind_double", api.bind_double) &&
                       find_function(lib, "sqlite3_bind_int64", api.bind_int64) &&
                       find_function(lib, "sqlite3_bind_text", api.bind_text) &&
                       find_function(lib, "sqlite3_busy_timeout", api.busy_timeout) &&
                       find_function(lib, "sqlite3_close", api.close) &&
                       find_function(lib, "sqlite3_column_bytes", api.column_bytes) &&
                       find_function(lib, "sqlite3_column_double", api.column_double) &&
                       find_function(lib, "sqlite3_column_int64", api.column_int64) &&
                       find_function(lib, "sqlite3_column_text", api.column_text) &&
                       find_function(lib, "sqlite3_column_type", api.column_type) &&
                       find_function(lib, "sqlite3_errmsg", api.errmsg) &&
                       find_function(lib, "sqlite3_exec", api.exec) &&
                       find_function(lib, "sqlite3_extended_errcode", api.extended_errcode) &&
                       find_function(lib, "sqlite3_finalize", api.finalize) &&
                       find_function(lib, "sqlite3_last_insert_rowid", api.last_insert_rowid) &&
                       find_function(lib, "sqlite3_open_v2", api.open_v2) &&
                       find_function(lib, "sqlite3_prepare_v2", api.prepare_v2) &&
                       find_function(lib, "sqlite3_reset", api.reset) &&
                       find_function(lib, "sqlite3_step", api.step);
    if (!found) {
      const char* why = dlerror();
      std::fprintf(stderr, "lfcli: cannot load the SQLite library %s: %s\n", kSqliteLibrary,
                   why ? why : "a function is missing");
      return false;
    }
    sqlite3_api = &api;
    return true;
  }();
  return loaded;
}

// Width of a text field when the caller gives no length.
constexpr int kTextField = 25;

enum class Kind { Int4, Int8, Real4, Real8, Text };

// The declared columns of a table by name.
using Columns = std::unordered_map<std::string, Kind>;

struct Session {
  sqlite3* db = nullptr;
  enum class Txn { None, Read, Write } txn = Txn::None;
  long epoch = 0;     // counts ended transactions; a selection from an older one is gone
  std::string error;  // why the database refused the last change; empty after a commit
  long writes = 0;    // write transactions committed
};

struct Column {
  std::string name;
  int var_type;
  int* var_len;
  void* ptr;
  Kind kind;
};

struct Statement {
  int session;
  bool insert = false;
  bool syntax_ok = false;
  std::string table, where, order;
  std::vector<Column> columns;
  // The table's declared columns, looked up once for all the bindings.
  Columns table_columns;
  bool table_known = false;
  bool fetched = false, for_update = false, first = true, updated = false;
  long epoch = 0;
  std::vector<sqlite3_int64> rows;
  std::size_t pos = 0;
  sqlite3_stmt* get = nullptr;
  ~Statement() {
    if (get) sqlite3_finalize(get);
  }
};

std::vector<std::unique_ptr<Session>> sessions;      // descriptor d at d - 1
std::vector<std::unique_ptr<Statement>> statements;  // descriptor d at d

Session* session_of(int d) {
  if (d < 1 || static_cast<std::size_t>(d) > sessions.size()) return nullptr;
  return sessions[static_cast<std::size_t>(d - 1)].get();
}

Statement* statement_of(int d) {
  if (d < 0 || static_cast<std::size_t>(d) >= statements.size()) return nullptr;
  return statements[static_cast<std::size_t>(d)].get();
}

std::string quoted(const std::string& name) {
  return "\"" + name + "\"";
}

bool exec(sqlite3* db, const char* sql) {
  return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Keeps, in plain words, why the database refused a change.
int refused(Session& se) {
  switch (sqlite3_extended_errcode(se.db) & 0xff) {
    case SQLITE_READONLY:
      se.error = "the database is read-only";
      break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      se.error = "the database is locked by another session";
      break;
    default:
      se.error = sqlite3_errmsg(se.db);
      break;
  }
  return cli_runtime_error;
}

Kind kind_of(std::string decl) {
  std::transform(decl.begin(), decl.end(), decl.begin(), ::toupper);
  if (decl == "INT4") return Kind::Int4;
  if (decl.find("INT") != std::string::npos) return Kind::Int8;
  if (decl == "REAL4") return Kind::Real4;
  if (decl.find("REA") != std::string::npos || decl.find("FLOA") != std::string::npos ||
      decl.find("DOUB") != std::string::npos)
    return Kind::Real8;
  return Kind::Text;
}

// The declared columns of a table; false when the table does not exist.
bool table_columns(sqlite3* db, const std::string& table, Columns& out) {
  out.clear();
  sqlite3_stmt* q = nullptr;
  std::string sql = "PRAGMA table_info(" + quoted(table) + ")";
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &q, nullptr) != SQLITE_OK) return false;
  while (sqlite3_step(q) == SQLITE_ROW) {
    const char* name = reinterpret_cast<const char*>(sqlite3_column_text(q, 1));
    const char* decl = reinterpret_cast<const char*>(sqlite3_column_text(q, 2));
    out.emplace(name ? name : "", kind_of(decl ? decl : ""));
  }
  sqlite3_finalize(q);
  return !out.empty();
}

bool is_ident(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$';
}

// Splits "select [*] from T [where] cond [order by keys]" or "insert into T".
// Keywords are lower case only, as the database's own statement language
// wants them.  Quotes are checked here; everything else is reported by the
// fetch or the insert.
int parse(const char* text, Statement& st) {
  std::string s(text);
  bool in_quote = false;
  std::size_t order_at = std::string::npos;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\'') {
      if (in_quote && i + 1 < s.size() && s[i + 1] == '\'')
        ++i;
      else
        in_quote = !in_quote;
    } else if (!in_quote && order_at == std::string::npos && s.compare(i, 5, "order") == 0 &&
               (i == 0 || !is_ident(s[i - 1])) && (i + 5 >= s.size() || !is_ident(s[i + 5]))) {
      order_at = i;
    }
  }
  if (in_quote) return cli_bad_statement;

  std::size_t p = 0;
  auto word = [&]() {
    while (p < s.size() && std::isspace(static_cast<unsigned char>(s[p]))) ++p;
    if (p < s.size() && s[p] == '*') return std::string(s, p++, 1);
    std::size_t b = p;
    while (p < s.size() && is_ident(s[p])) ++p;
    return s.substr(b, p - b);
  };
  std::string w = word();
  if (w == "insert") {
    st.insert = true;
    if (word() != "into") return cli_ok;
    st.table = word();
    st.syntax_ok = !st.table.empty() && word().empty() && p >= s.size();
    return cli_ok;
  }
  if (w != "select") return cli_ok;
  w = word();
  if (w == "*") w = word();
  if (w != "from") return cli_ok;
  st.table = word();
  if (st.table.empty()) return cli_ok;
  std::string rest = s.substr(p);
  std::size_t rest_at = p;
  std::string cond = rest;
  if (order_at != std::string::npos && order_at >= rest_at) {
    cond = s.substr(rest_at, order_at - rest_at);
    std::size_t q = order_at + 5;
    while (q < s.size() && std::isspace(static_cast<unsigned char>(s[q]))) ++q;
    if (s.compare(q, 2, "by") != 0) return cli_ok;
    st.order = s.substr(q + 2);
  }
  std::size_t b = cond.find_first_not_of(" \t\r\n");
  cond = b == std::string::npos ? std::string() : cond.substr(b);
  if (cond.compare(0, 5, "where") == 0 && (cond.size() == 5 || !is_ident(cond[5])))
    cond = cond.substr(5);
  if (cond.find_first_not_of(" \t\r\n") == std::string::npos) cond.clear();
  st.where = cond;
  st.syntax_ok = true;
  return cli_ok;
}

// Checks the bound columns against the table: the codes a fetch or an insert
// gives for a missing table or column.
int resolve(Session& se, Statement& st) {
  if (!st.syntax_ok) return cli_bad_statement;
  Columns cols;
  if (!table_columns(se.db, st.table, cols)) return cli_table_not_found;
  for (Column& c : st.columns) {
    auto it = cols.find(c.name);
    if (it == cols.end()) return cli_column_not_found;
    c.kind = it->second;
  }
  return cli_ok;
}

int begin(Session& se, bool write) {
  if (write && se.txn == Session::Txn::Read) {
    if (!exec(se.db, "COMMIT")) return refused(se);
    se.txn = Session::Txn::None;
  }
  if (se.txn == Session::Txn::None) {
    if (!exec(se.db, write ? "BEGIN IMMEDIATE" : "BEGIN")) return refused(se);
    se.txn = write ? Session::Txn::Write : Session::Txn::Read;
  }
  return cli_ok;
}

int end(int session, const char* sql) {
  Session* se = session_of(session);
  if (!se) return cli_bad_descriptor;
  ++se->epoch;
  if (se->txn == Session::Txn::None) return cli_ok;
  if (!exec(se->db, sql)) {
    // A commit that failed leaves the transaction open: take it back.
    int rc = refused(*se);
    exec(se->db, "ROLLBACK");
    se->txn = Session::Txn::None;
    return rc;
  }
  if (se->txn == Session::Txn::Write && std::strcmp(sql, "COMMIT") == 0) ++se->writes;
  se->txn = Session::Txn::None;
  return cli_ok;
}

// Binds the value of a bound variable as parameter i, narrowed to the type of
// its column.
void bind_value(sqlite3_stmt* q, int i, const Column& c) {
  if (c.var_type == cli_asciiz) {
    const char* p = static_cast<const char*>(c.ptr);
    std::size_t n = strnlen(p, c.var_len ? static_cast<std::size_t>(*c.var_len) : kTextField);
    sqlite3_bind_text(q, i, p, static_cast<int>(n), SQLITE_TRANSIENT);
    return;
  }
  double x = c.var_type == cli_int4    ? *static_cast<const std::int32_t*>(c.ptr)
             : c.var_type == cli_real4 ? *static_cast<const float*>(c.ptr)
                                       : *static_cast<const double*>(c.ptr);
  // A real stored into an integer column is truncated; one without an
  // integer value becomes 0.
  std::int64_t k = std::fabs(x) < 9.2e18 ? static_cast<std::int64_t>(x) : 0;
  switch (c.kind) {
    case Kind::Int4:
      sqlite3_bind_int64(q, i, static_cast<std::int32_t>(k));
      break;
    case Kind::Int8:
      sqlite3_bind_int64(q, i, k);
      break;
    case Kind::Real4:
      sqlite3_bind_double(q, i, static_cast<double>(static_cast<float>(x)));
      break;
    default:
      sqlite3_bind_double(q, i, x);
      break;
  }
}

// Copies column i of the current result row into its bound variable.
void copy_value(sqlite3_stmt* q, int i, const Column& c) {
  if (c.var_type == cli_asciiz) {
    const char* t = reinterpret_cast<const char*>(sqlite3_column_text(q, i));
    int n = sqlite3_column_bytes(q, i);
    char* dst = static_cast<char*>(c.ptr);
    if (c.var_len) {
      int m = std::min(n + 1, *c.var_len);
      std::memcpy(dst, t ? t : "", static_cast<std::size_t>(std::min(m, n)));
      if (m > n) dst[n] = '\0';
      *c.var_len = n + 1;
    } else {
      std::memcpy(dst, t ? t : "", static_cast<std::size_t>(std::min(n, kTextField)));
      if (n < kTextField) dst[n] = '\0';
    }
    return;
  }
  bool integral = c.kind == Kind::Int4 || c.kind == Kind::Int8;
  double x = integral ? static_cast<double>(sqlite3_column_int64(q, i))
             : sqlite3_column_type(q, i) == SQLITE_NULL ? std::nan("")
                                                        : sqlite3_column_double(q, i);
  switch (c.var_type) {
    case cli_int4:
      *static_cast<std::int32_t*>(c.ptr) =
          integral               ? static_cast<std::int32_t>(sqlite3_column_int64(q, i))
          : std::fabs(x) < 2.1e9 ? static_cast<std::int32_t>(x)
                                 : 0;
      break;
    case cli_real4:
      *static_cast<float*>(c.ptr) = static_cast<float>(x);
      break;
    default:
      *static_cast<double*>(c.ptr) = x;
      break;
  }
}

int load_row(Statement& st) {
  if (st.columns.empty()) return cli_ok;
  sqlite3_reset(st.get);
  sqlite3_bind_int64(st.get, 1, st.rows[st.pos]);
  if (sqlite3_step(st.get) != SQLITE_ROW) return cli_not_found;
  for (std::size_t i = 0; i < st.columns.size(); ++i)
    copy_value(st.get, static_cast<int>(i), st.columns[i]);
  st.updated = false;
  return cli_ok;
}

// The selection of a statement, or the code that says why there is none.
int selection(int statement, Statement*& st) {
  st = statement_of(statement);
  if (!st) return cli_bad_descriptor;
  if (!st->fetched) return cli_not_fetched;
  Session* se = session_of(st->session);
  if (!se || se->epoch != st->epoch) return cli_not_found;
  return cli_ok;
}

std::string column_list(const Statement& st, const char* sep, const char* suffix) {
  std::string s;
  for (std::size_t i = 0; i < st.columns.size(); ++i)
    s += (i ? sep : "") + quoted(st.columns[i].name) + suffix;
  return s;
}

}  // namespace

extern "C" {

int cli_open(char const*, int, int) {
  return cli_bad_address;
}

int cli_create(char const* databaseName, char const* filePath, unsigned, int openAttr, size_t,
               size_t, size_t, size_t) {
  const char* path = filePath ? filePath : databaseName;
  if (!path) return cli_bad_address;
  if (!load_sqlite()) return cli_runtime_error;
  int flags = (openAttr & cli_open_readonly) ? SQLITE_OPEN_READONLY
                                             : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  sqlite3* db = nullptr;
  // A file that is not a database is refused here, as one that is missing.
  if (sqlite3_open_v2(path, &db, flags, nullptr) != SQLITE_OK ||
      !exec(db, "SELECT count(*) FROM sqlite_master")) {
    sqlite3_close(db);
    return cli_database_not_found;
  }
  sqlite3_busy_timeout(db, 5000);
  if (!(openAttr & cli_open_readonly)) exec(db, "PRAGMA journal_mode=WAL");
  if (openAttr & cli_open_no_sync) exec(db, "PRAGMA synchronous=OFF");
  auto se = std::make_unique<Session>();
  se->db = db;
  sessions.push_back(std::move(se));
  return static_cast<int>(sessions.size());
}

int cli_close(int session) {
  Session* se = session_of(session);
  if (!se) return cli_bad_descriptor;
  int rc = end(session, "COMMIT");
  for (auto& st : statements)
    if (st && st->session == session) st.reset();
  sqlite3_close(se->db);
  sessions[static_cast<std::size_t>(session - 1)].reset();
  return rc;
}

int cli_statement(int session, char const* stmt) {
  if (!session_of(session)) return cli_bad_descriptor;
  if (!stmt) return cli_bad_address;
  auto st = std::make_unique<Statement>();
  st->session = session;
  if (int rc = parse(stmt, *st); rc != cli_ok) return rc;
  auto free_slot = std::find(statements.begin(), statements.end(), nullptr);
  if (free_slot != statements.end()) {
    *free_slot = std::move(st);
    return static_cast<int>(free_slot - statements.begin());
  }
  statements.push_back(std::move(st));
  return static_cast<int>(statements.size() - 1);
}

// Besides the checks of the type code, a column that the table lacks or whose
// type cannot take the variable is refused at once.
int cli_column(int statement, char const* column_name, int var_type, int* var_len, void* var_ptr) {
  Statement* st = statement_of(statement);
  if (!st) return cli_bad_descriptor;
  if (!column_name || !var_ptr) return cli_bad_address;
  if (var_type != cli_int4 && var_type != cli_real4 && var_type != cli_real8 &&
      var_type != cli_asciiz)
    return cli_unsupported_type;
  Kind kind = var_type == cli_asciiz ? Kind::Text : Kind::Real8;
  if (st->syntax_ok && !st->table_known)
    st->table_known = table_columns(session_of(st->session)->db, st->table, st->table_columns);
  if (st->table_known) {
    const auto& cols = st->table_columns;
    auto it = cols.find(column_name);
    if (it == cols.end()) return cli_column_not_found;
    if ((it->second == Kind::Text) != (var_type == cli_asciiz)) return cli_incompatible_type;
    kind = it->second;
  }
  st->columns.push_back({column_name, var_type, var_len, var_ptr, kind});
  st->fetched = false;
  return cli_ok;
}

int cli_fetch(int statement, int for_update) {
  Statement* st = statement_of(statement);
  if (!st) return cli_bad_descriptor;
  Session& se = *session_of(st->session);
  if (st->insert) return cli_bad_statement;
  if (int rc = resolve(se, *st); rc != cli_ok) return rc;
  if (st->where.find('%') != std::string::npos) return cli_unbound_parameter;
  if (int rc = begin(se, for_update != 0); rc != cli_ok) return rc;

  std::string sql = "SELECT rowid FROM " + quoted(st->table);
  if (!st->where.empty()) sql += " WHERE " + st->where;
  sql += " ORDER BY " + (st->order.empty() ? std::string() : st->order + ", ") + "rowid";
  sqlite3_stmt* q = nullptr;
  if (sqlite3_prepare_v2(se.db, sql.c_str(), -1, &q, nullptr) != SQLITE_OK) {
    sqlite3_finalize(q);
    return cli_bad_statement;
  }
  st->rows.clear();
  int rc;
  while ((rc = sqlite3_step(q)) == SQLITE_ROW) st->rows.push_back(sqlite3_column_int64(q, 0));
  sqlite3_finalize(q);
  if (rc != SQLITE_DONE) return cli_runtime_error;

  sqlite3_finalize(st->get);
  st->get = nullptr;
  if (!st->columns.empty()) {
    std::string get =
        "SELECT " + column_list(*st, ", ", "") + " FROM " + quoted(st->table) + " WHERE rowid = ?1";
    if (sqlite3_prepare_v2(se.db, get.c_str(), -1, &st->get, nullptr) != SQLITE_OK)
      return cli_runtime_error;
  }
  st->fetched = true;
  st->for_update = for_update != 0;
  st->first = true;
  st->updated = false;
  st->epoch = se.epoch;
  st->pos = 0;
  return static_cast<int>(st->rows.size());
}

int cli_get_first(int statement) {
  Statement* st;
  if (int rc = selection(statement, st); rc != cli_ok) return rc;
  if (st->rows.empty()) return cli_not_found;
  st->first = false;
  st->pos = 0;
  return load_row(*st);
}

int cli_get_next(int statement) {
  Statement* st;
  if (int rc = selection(statement, st); rc != cli_ok) return rc;
  std::size_t next = st->first ? 0 : st->pos + 1;
  if (next >= st->rows.size()) return cli_not_found;
  st->first = false;
  st->pos = next;
  return load_row(*st);
}

int cli_update(int statement) {
  Statement* st = statement_of(statement);
  if (!st) return cli_bad_descriptor;
  if (!st->fetched) return cli_not_fetched;
  if (!st->for_update) return cli_not_update_mode;
  if (st->updated) return cli_already_updated;
  Session& se = *session_of(st->session);
  if (se.epoch != st->epoch || st->first || st->pos >= st->rows.size()) return cli_not_found;
  if (st->columns.empty()) return cli_ok;
  std::string sql =
      "UPDATE " + quoted(st->table) + " SET " + column_list(*st, ", ", " = ?") + " WHERE rowid = ?";
  sqlite3_stmt* q = nullptr;
  if (sqlite3_prepare_v2(se.db, sql.c_str(), -1, &q, nullptr) != SQLITE_OK) {
    sqlite3_finalize(q);
    return cli_runtime_error;
  }
  int n = static_cast<int>(st->columns.size());
  for (int i = 0; i < n; ++i) bind_value(q, i + 1, st->columns[static_cast<std::size_t>(i)]);
  sqlite3_bind_int64(q, n + 1, st->rows[st->pos]);
  int rc = sqlite3_step(q);
  if (rc != SQLITE_DONE) refused(se);
  sqlite3_finalize(q);
  if (rc != SQLITE_DONE) return cli_runtime_error;
  st->updated = true;
  return cli_ok;
}

int cli_insert(int statement, cli_oid_t* oid) {
  Statement* st = statement_of(statement);
  if (!st) return cli_bad_descriptor;
  if (!st->insert) return cli_bad_statement;
  Session& se = *session_of(st->session);
  if (int rc = resolve(se, *st); rc != cli_ok) return rc;
  if (int rc = begin(se, true); rc != cli_ok) return rc;
  std::string sql = "INSERT INTO " + quoted(st->table);
  if (st->columns.empty()) {
    sql += " DEFAULT VALUES";
  } else {
    std::string marks;
    for (std::size_t i = 0; i < st->columns.size(); ++i) marks += i ? ", ?" : "?";
    sql += " (" + column_list(*st, ", ", "") + ") VALUES (" + marks + ")";
  }
  sqlite3_stmt* q = nullptr;
  if (sqlite3_prepare_v2(se.db, sql.c_str(), -1, &q, nullptr) != SQLITE_OK) {
    sqlite3_finalize(q);
    return cli_runtime_error;
  }
  for (std::size_t i = 0; i < st->columns.size(); ++i)
    bind_value(q, static_cast<int>(i + 1), st->columns[i]);
  int rc = sqlite3_step(q);
  if (rc != SQLITE_DONE) refused(se);
  sqlite3_finalize(q);
  if (rc != SQLITE_DONE) return cli_runtime_error;
  if (oid) *oid = static_cast<cli_oid_t>(sqlite3_last_insert_rowid(se.db));
  return cli_ok;
}

int cli_free(int statement) {
  if (!statement_of(statement)) return cli_bad_descriptor;
  statements[static_cast<std::size_t>(statement)].reset();
  return cli_ok;
}

int cli_precommit(int session) {
  return end(session, "COMMIT");
}
int cli_commit(int session) {
  int rc = end(session, "COMMIT");
  if (rc == cli_ok) session_of(session)->error.clear();
  return rc;
}
int cli_abort(int session) {
  return end(session, "ROLLBACK");
}

const char* lfcli_refusal(int session) {
  Session* se = session_of(session);
  return se ? se->error.c_str() : "";
}

long lfcli_writes(int session) {
  Session* se = session_of(session);
  return se ? se->writes : 0;
}

}  // extern "C"

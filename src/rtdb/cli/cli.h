/* The call-level client interface of the main-memory real-time database.
 *
 * Names, prototypes, type codes and result codes are those of the database's
 * own C client interface, so that the engine links unchanged against either
 * implementation.  This one keeps its tables in an SQLite file; a session is
 * opened on a file with cli_create and ended with cli_close.
 */
#ifndef LF_CLI_H
#define LF_CLI_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

enum cli_result_code {
  cli_ok = 0,
  cli_bad_address = -1,
  cli_connection_refused = -2,
  cli_database_not_found = -3,
  cli_bad_statement = -4,
  cli_parameter_not_found = -5,
  cli_unbound_parameter = -6,
  cli_column_not_found = -7,
  cli_incompatible_type = -8,
  cli_network_error = -9,
  cli_runtime_error = -10,
  cli_bad_descriptor = -11,
  cli_unsupported_type = -12,
  cli_not_found = -13,
  cli_not_update_mode = -14,
  cli_table_not_found = -15,
  cli_not_all_columns_specified = -16,
  cli_not_fetched = -17,
  cli_already_updated = -18,
  cli_table_already_exists = -19,
  cli_not_implemented = -20
};

enum cli_var_type {
  cli_oid,
  cli_bool,
  cli_int1,
  cli_int2,
  cli_int4,
  cli_int8,
  cli_real4,
  cli_real8,
  cli_decimal,
  cli_asciiz,
  cli_pasciiz,
  cli_cstring,
  cli_array_of_oid,
  cli_array_of_bool,
  cli_array_of_int1,
  cli_array_of_int2,
  cli_array_of_int4,
  cli_array_of_int8,
  cli_array_of_real4,
  cli_array_of_real8,
  cli_array_of_decimal,
  cli_array_of_string,
  cli_any,
  cli_datetime,
  cli_autoincrement,
  cli_rectangle,
  cli_wstring,
  cli_pwstring,
  cli_array_of_wstring,
  cli_unknown
};

enum { cli_view_only, cli_for_update };

enum cli_open_attributes {
  cli_open_default = 0x00,
  cli_open_readonly = 0x01,
  cli_open_truncate = 0x02,
  cli_open_concurrent = 0x04,
  cli_open_force_read = 0x08,
  cli_open_no_sync = 0x10
};

typedef signed int cli_int4_t;
typedef float cli_real4_t;
typedef double cli_real8_t;
typedef unsigned cli_oid_t;

/* Sessions.  cli_open (a database server) is not available here and answers
 * cli_bad_address; cli_create opens the database file filePath.  Session
 * descriptors start at 1. */
int cli_open(char const* server_url, int max_connect_attempts, int reconnect_timeout_sec);
int cli_create(char const* databaseName, char const* filePath, unsigned transactionCommitDelay,
               int openAttr, size_t initDatabaseSize, size_t extensionQuantum, size_t initIndexSize,
               size_t fileSizeLimit);
int cli_close(int session);

/* Statements: "select * from TABLE [where ...] [order by ...]" or
 * "insert into TABLE". */
int cli_statement(int session, char const* stmt);
int cli_column(int statement, char const* column_name, int var_type, int* var_len, void* var_ptr);
int cli_fetch(int statement, int for_update);
int cli_get_first(int statement);
int cli_get_next(int statement);
int cli_update(int statement);
int cli_insert(int statement, cli_oid_t* oid);
int cli_free(int statement);

/* Transactions. */
int cli_precommit(int session);
int cli_commit(int session);
int cli_abort(int session);

/* Of this implementation only, for the host that opened the session (the
 * engine uses none of it).  lfcli_refusal: why the database refused the
 * last change of the session, such as "the database is read-only" or "the
 * database is locked by another session"; an empty text when nothing was
 * refused since the last commit.  lfcli_writes: the number of write
 * transactions that the session has committed. */
const char* lfcli_refusal(int session);
long lfcli_writes(int session);

#ifdef __cplusplus
}
#endif

#endif

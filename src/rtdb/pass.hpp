// One pass over a table on the host's session: default record, statement,
// binding and fetch, with the messages that a failed binding or fetch gives.
// A failure never stops the pass itself; a table that cannot be bound or
// fetched yields fewer rows, or none.  But the first failure of the
// calculation is kept in RTDBFAIL, so that a case read in part is never
// solved and results written in part are never committed.
#pragma once

#include <cstdint>
#include <string>

#include "cli.h"
#include "rtdb/rtdb.hpp"
#include "rtdb/rtdbls.hpp"
#include "store/store.hpp"

namespace lf {

enum class Say { Print, Wstring };  // where a bind message goes

struct TablePass {
  std::string table;  // the table's name, for the failure texts
  int stmt = -1;
  int count = 0;    // the fetch result
  int32_t row = 0;  // the row taken last by next_row, from 1 in fetch order
};

// Keeps what went wrong in the table of a pass, or in the row taken last,
// as RTDBFAIL, unless an earlier failure is kept.
void fail(const TablePass& p, const std::string& what);
void fail_row(const TablePass& p, const std::string& what);

void say_bind_failed(const char* message, Say where);
// A fetch result below min_count prints message and the code; a null message
// means the result is not looked at.  A negative result is a failure.
void check_fetch(const TablePass& p, const char* message, int min_count);
// Reads a text field as one free-form integer; false, with value unchanged,
// when it holds none.
bool read_int(const char* text, int width, int32_t& value);
// The table that a "select * from TABLE ..." statement reads.
std::string table_of(const std::string& statement);

template <typename Row>
TablePass open_pass(const char* text, Row& row, int (*binder)(int, Row&), const char* bind_message,
                    Say where, int for_update, const char* fetch_message, int min_count) {
  TablePass p;
  reset(row);
  std::string statement(text);
  p.table = table_of(statement);
  p.stmt = cli_statement(RTDBLSCMN.session, statement.c_str());
  if (int rc = binder(p.stmt, row); rc != 0) {
    say_bind_failed(bind_message, where);
    fail(p, "binding failed with code " + std::to_string(rc));
  }
  p.count = cli_fetch(p.stmt, for_update);
  check_fetch(p, fetch_message, min_count);
  return p;
}

// The next row of a pass into its record; false after the last row, and on
// a failure, which is kept.
bool next_row(TablePass& p);
// Writes the record back to the current row; a failure is kept.
void update_row(const TablePass& p);
// Checks a number of the row taken last against 1..top; a number outside
// is kept as the failure, named by what.
bool in_range(const TablePass& p, const char* what, int32_t value, int32_t top);
// The same for a bus number against the buses read.
inline bool bus_ok(const TablePass& p, int32_t bus) {
  return in_range(p, "bus number", bus, LFINF.nbus);
}

// The bits of a line row's q column that open one of its ends, and the
// branch mark (IJOPEN.mark) that they stand for; the J end's bit wins.
constexpr int32_t kQOpenAtI = 1;
constexpr int32_t kQOpenAtJ = 2;
inline int32_t open_mark(int32_t q) {
  return (q & kQOpenAtJ) ? kOpenAtJ : (q & kQOpenAtI) ? kOpenAtI : kInService;
}
inline int32_t open_bits(int32_t mark) {
  return mark == kOpenAtJ ? kQOpenAtJ : mark == kOpenAtI ? kQOpenAtI : 0;
}

// Rows that the load flow passes over, in reading and in writing alike: out
// of service by their status bits.
inline bool dropped(const ln_row& r) {
  return (r.q & 4) || (r.topflags & 4);
}
inline bool dropped(const cp_row& r) {
  return (r.q & 1) || (r.topflags & 1);
}
inline bool dropped(const xf_row& r) {
  return (r.q & 1) || (r.topflags & 4);
}
inline bool dropped(const dln_row& r) {
  return (r.q & 4) || (r.topflags & 3);
}
inline bool dropped(const un_row& r) {
  return (r.q & 1) || (r.topflags & 1);
}
inline bool dropped(const ld_row& r) {
  return (r.q & 1) || (r.topflags & 1);
}

// Walks the rows of a pass into row, calls act(k) for the k-th row not
// dropped and returns the number of those rows.
template <typename Row, typename Act>
int32_t walk_kept(TablePass& p, const Row& row, Act act) {
  int32_t k = 0;
  while (next_row(p))
    if (!dropped(row)) act(++k);
  return k;
}

// Frees the statement.
void close_pass(const TablePass& p);

}  // namespace lf

// One pass over a table on the host's session: default record, statement,
// binding and fetch, with the messages that a failed binding or fetch gives.
// A failure never stops the pass; a table that cannot be bound or fetched
// simply yields fewer rows, or none.
#pragma once

#include <string>

#include "cli.h"
#include "rtdb/rtdbls.hpp"
#include "store/store.hpp"

namespace lf {

enum class Say { Print, Wstring };  // where a bind message goes

struct TablePass {
  int stmt = -1;
  int count = 0;  // the fetch result
};

void say_bind_failed(const char* message, Say where);
// A fetch result below min_count prints message and the code; a null message
// means the result is not looked at.
void check_fetch(int count, const char* message, int min_count);
// Reads a text field as one free-form integer; false, with value unchanged,
// when it holds none.
bool read_int(const char* text, int width, int32_t& value);

template <typename Row>
TablePass open_pass(const char* text, Row& row, int (*binder)(int, Row&), const char* bind_message,
                    Say where, int for_update, const char* fetch_message, int min_count) {
  TablePass p;
  reset(row);
  std::string statement(text);
  p.stmt = cli_statement(RTDBLSCMN.session, statement.c_str());
  if (binder(p.stmt, row) != 0) say_bind_failed(bind_message, where);
  p.count = cli_fetch(p.stmt, for_update);
  check_fetch(p.count, fetch_message, min_count);
  return p;
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
int32_t walk_kept(const TablePass& p, const Row& row, Act act) {
  int32_t k = 0;
  while (cli_get_next(p.stmt) == cli_ok)
    if (!dropped(row)) act(++k);
  return k;
}

// Frees the statement; a writing pass also gives up its lock.
void close_pass(const TablePass& p, bool writing);

}  // namespace lf

// The one way the engine reaches a table of the real-time database: a flat
// row record with a field for each column and a binder that ties the fields
// to a statement, column by column, through the client interface.
//
// A table is described once, as a list of (column, type) pairs; from it come
// the row record, the column table, the binder bind<table> and the default
// value reset(row): every number 0, every text a NUL followed by blanks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "cli.h"

namespace lf {

// Width of a text column in a row record: 24 characters and a NUL.
constexpr int kTextWidth = 25;

struct ColumnDef {
  const char* name;
  int type;  // cli_int4, cli_real4, cli_real8 or cli_asciiz
  std::size_t offset;
};

struct TableDef {
  const char* name;
  std::span<const ColumnDef> columns;
};

// Binds the columns in order and stops at the first one refused, returning
// its code; 0 when all are bound.
int bind_columns(int statement, void* row, std::span<const ColumnDef> columns);
// Gives a row record its default value.
void reset_row(void* row, std::span<const ColumnDef> columns);

// Turns a NUL-terminated text into a blank-padded one in place: the first NUL
// within width bytes and everything behind it become blanks; a text without
// a NUL stays as it is.
void strc2f(char* text, int width);

}  // namespace lf

#define LF_FIELD_int4(n) int32_t n;
#define LF_FIELD_real4(n) float n;
#define LF_FIELD_real8(n) double n;
#define LF_FIELD_asciiz(n) char n[::lf::kTextWidth];
#define LF_ROW_FIELD(n, type) LF_FIELD_##type(n)

#define LF_CODE_int4 cli_int4
#define LF_CODE_real4 cli_real4
#define LF_CODE_real8 cli_real8
#define LF_CODE_asciiz cli_asciiz
#define LF_COLUMN_DEF(n, type) {#n, LF_CODE_##type, offsetof(Row, n)},

#define LF_DECLARE_TABLE(t)                 \
  struct t##_row {                          \
    LF_COLUMNS_##t(LF_ROW_FIELD)            \
  };                                        \
  int bind##t(int statement, t##_row& row); \
  void reset(t##_row& row);

#define LF_DEFINE_TABLE(t)                                                  \
  namespace {                                                               \
  struct t##_def {                                                          \
    using Row = t##_row;                                                    \
    static constexpr ColumnDef columns[] = {LF_COLUMNS_##t(LF_COLUMN_DEF)}; \
  };                                                                        \
  }                                                                         \
  int bind##t(int statement, t##_row& row) {                                \
    return bind_columns(statement, &row, t##_def::columns);                 \
  }                                                                         \
  void reset(t##_row& row) {                                                \
    reset_row(&row, t##_def::columns);                                      \
  }

#define LF_TABLE_ENTRY(t) \
  { #t, t##_def::columns }

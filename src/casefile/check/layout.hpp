// The record layouts of the case files as the engine's readers take them:
// for each file its read statements and, in each, the fields in order, each
// an integer, a real or a text.  The case checker reads by these layouts.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace lf::check {

struct Field {
  std::string_view name;  // as in the file formats ("I", "basekv", ...)
  char kind;              // 'I' integer, 'R' real, 'T' text
  // Whether the checks look at the field: only such fields are kept of the
  // records read (set with the layout, read by the checker's reading).
  bool kept = false;
  // A kept field: its place among the kept fields of its kind (values or
  // texts) of a record, from 0 (set with the layout; the checker's reading
  // stores the field there, the accessors of a file find it there).
  std::size_t slot = 0;
};

// Fields of one read statement at most.
constexpr std::size_t kMostFields = 24;

struct Layout {
  std::string_view ext;                        // ".L2"
  std::vector<std::vector<Field>> statements;  // the read statements of one record
  std::size_t fields = 0;                      // fields of all statements together
  std::size_t values = 0;                      // kept integer and real fields of a record
  std::size_t texts = 0;                       // kept text fields of a record
  // Place of a kept integer or real field among the kept values of a
  // record, from 0.
  std::size_t at(std::string_view name) const;
  // Place of a kept text field among the kept texts of a record, from 0.
  std::size_t slot(std::string_view name) const;
};

// The layout of a file by its extension: ".L0", ".L1", ".L2", ".L3", ".NL4",
// ".L5", ".L6", ".L7", ".L10", ".L13" (a switch record), ".L13G" (the group
// number before a group), ".DAT" (a parameter set), ".DATH" (the library's
// header).
const Layout& layout(std::string_view ext);

}  // namespace lf::check

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
  // A text field: its place among the text fields of a record, from 0 (set
  // with the layout; the checker's reading stores the text there).
  std::size_t slot = 0;
};

// Fields of one read statement at most.
constexpr std::size_t kMostFields = 24;

struct Layout {
  std::string_view ext;                        // ".L2"
  std::vector<std::vector<Field>> statements;  // the read statements of one record
  std::size_t fields = 0;                      // fields of all statements together
  std::size_t texts = 0;                       // text fields of all statements together
  // Position of a field among all fields of a record, from 0.
  std::size_t at(std::string_view name) const;
  // Place of a text field among the text fields of a record, from 0.
  std::size_t slot(std::string_view name) const;
};

// The layout of a file by its extension: ".L0", ".L1", ".L2", ".L3", ".NL4",
// ".L5", ".L6", ".L7", ".L10", ".L13" (a switch record), ".L13G" (the group
// number before a group), ".DAT" (a parameter set), ".DATH" (the library's
// header).
const Layout& layout(std::string_view ext);

}  // namespace lf::check

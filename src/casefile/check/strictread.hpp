// Reading one case file strictly: every record as the engine's reader takes
// it, with its place in the file, and, when the reading ends before the end
// of the file, a warning that tells where and why, and how many records the
// engine then uses.  Nothing of the engine's store is touched.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "casefile/check/layout.hpp"

namespace lf {
class FreeReader;
}

namespace lf::check {

using Warnings = std::vector<std::string>;

// A field's value: i for an integer field, r for a real one.
union Value {
  double r;
  int32_t i;
};

// One record as read; its fields stand in its file's arrays (FileRead).
struct Record {
  int32_t number = 0;  // place in the file, from 1, dropped records included
  long line = 0;       // line of the file where it starts, from 1
  int32_t group = 0;   // .L13: the group (substation bus) it belongs to
  // Place among the records of its FileRead, from 0: set by the reading,
  // used by FileRead's accessors to find the record's fields.
  std::size_t index = 0;
};

struct FileRead {
  std::string name;                // the file's path as given ("IEEE14.L2")
  const Layout* layout = nullptr;  // the record layout of its extension
  bool present = false;            // the file could be opened
  bool read = false;               // the engine opens it (by the counts of .L0); set by read_family
  // Which records the engine keeps, by the layout: every one, or those whose
  // field at keep_at (mark or valid) is above 0, or equal to 1 (.NL4).
  enum class Keep { All, AboveZero, One } keep = Keep::All;
  std::size_t keep_at = 0;
  std::vector<Record> records;  // the records the engine's reader takes
  // The kept fields of the records (those the checks look at), record after
  // record: layout->values values each and layout->texts texts each, by
  // their slots.  Written by the reading, read through the accessors below.
  std::vector<Value> values;
  std::vector<std::string> texts;
  const Value& value(const Record& r, std::size_t at) const {
    return values[r.index * layout->values + at];
  }
  int32_t integer(const Record& r, std::string_view field) const {
    return value(r, layout->at(field)).i;
  }
  double real(const Record& r, std::string_view field) const {
    return value(r, layout->at(field)).r;
  }
  const std::string& text(const Record& r, std::string_view field) const {
    return texts[r.index * layout->texts + layout->slot(field)];
  }
  // Whether the engine keeps a record: its mark above 0 (for .NL4 equal to
  // 1, for .L13 its valid above 0); files without a mark keep every record.
  bool kept(const Record& r) const;
  int32_t kept_count() const;
};

// A file of the layout of `ext` before any reading: no records, not present.
FileRead unread(const std::string& path, std::string_view ext);

// The readers below take the file from `in`, opened on `path` beforehand
// (not open when the file is missing), and read it to its end or its first
// unreadable record.

// A file of records of one layout, one after the other (.L0: one record).
FileRead read_records(const std::string& path, std::string_view ext, FreeReader& in, Warnings& w);

// .L13: groups of switch records, each record with its group.
FileRead read_switches(const std::string& path, FreeReader& in, Warnings& w);

// .DAT: the header, the skipped sections and the parameter sets.
FileRead read_library(const std::string& path, FreeReader& in, Warnings& w);

}  // namespace lf::check

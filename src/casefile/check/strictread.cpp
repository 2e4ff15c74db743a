#include "casefile/check/strictread.hpp"

#include <algorithm>
#include <array>
#include <span>

#include "support/freeread.hpp"

namespace lf::check {

namespace {

// A text from the file as a warning shows it: at most 24 characters, any
// control character or byte outside ASCII as "?".
std::string shown(const std::string& text) {
  constexpr std::size_t kShown = 24;
  std::string s;
  for (char c : text.substr(0, kShown)) s += (c >= ' ' && c < 0x7f) ? c : '?';
  return text.size() > kShown ? s + "..." : s;
}

// Reads one statement into the fields from v and the texts from t on (the
// record's first field and first text).
bool read_statement(FreeReader& in, const std::vector<Field>& statement, Value* v, std::string* t) {
  std::array<ReadItem, kMostFields> items;
  std::size_t k = 0;
  for (const Field& f : statement) {
    items[k] = f.kind == 'I'   ? ReadItem::of(v[k].i)
               : f.kind == 'R' ? ReadItem::of(v[k].r)
                               : ReadItem::of(t[f.slot]);
    ++k;
  }
  return in.read(std::span<const ReadItem>(items.data(), k));
}

// Reads one record of all its statements and adds it to f, as record
// `number` of the file.  False at the end, f as it was: quietly at the end of
// the file, else with a warning that names the record and field.
bool read_record(FreeReader& in, FileRead& f, int32_t number, Warnings& w) {
  const Layout& l = *f.layout;
  const Record r{number, in.line_number() + 1, 0, f.records.size()};
  f.values.resize(f.values.size() + l.fields);
  f.texts.resize(f.texts.size() + l.texts);
  Value* v = f.values.data() + r.index * l.fields;
  std::string* t = f.texts.data() + r.index * l.texts;
  std::size_t first = 0;
  for (std::size_t s = 0; s < l.statements.size(); ++s) {
    if (read_statement(in, l.statements[s], v + first, t)) {
      first += l.statements[s].size();
      continue;
    }
    f.values.resize(r.index * l.fields);
    f.texts.resize(r.index * l.texts);
    if (s == 0 && in.at_end() && in.failed_item() <= 1) return false;
    const std::size_t item = std::max<std::size_t>(in.failed_item(), 1);
    const Field& field = l.statements[s][std::min(item, l.statements[s].size()) - 1];
    std::string what = f.name + " record " + std::to_string(r.number) + " (line " +
                       std::to_string(r.line) + "), field " + std::to_string(first + item) + " (" +
                       std::string(field.name) + "): ";
    what += in.at_end() ? std::string("the file ends inside the record")
                        : "cannot read '" + shown(in.failed_text()) + "'";
    w.push_back(what + "; the reading stops here and uses " + std::to_string(f.kept_count()) +
                " records");
    return false;
  }
  f.records.push_back(r);
  return true;
}

// Takes the last record read off f again.
void drop_last(FileRead& f) {
  f.records.pop_back();
  f.values.resize(f.records.size() * f.layout->fields);
  f.texts.resize(f.records.size() * f.layout->texts);
}

}  // namespace

bool FileRead::kept(const Record& r) const {
  switch (keep) {
    case Keep::All:
      return true;
    case Keep::AboveZero:
      return value(r, keep_at).i > 0;
    case Keep::One:
      return value(r, keep_at).i == 1;
  }
  return true;
}

int32_t FileRead::kept_count() const {
  int32_t n = 0;
  for (const Record& r : records) n += kept(r) ? 1 : 0;
  return n;
}

FileRead unread(const std::string& path, std::string_view ext) {
  FileRead f;
  f.name = path;
  f.layout = &layout(ext);
  if (ext == ".L13") {
    f.keep = FileRead::Keep::AboveZero, f.keep_at = f.layout->at("valid");
  } else if (ext == ".NL4") {
    f.keep = FileRead::Keep::One, f.keep_at = f.layout->at("mark");
  } else if (f.layout->statements[0][0].name == "mark") {
    f.keep = FileRead::Keep::AboveZero, f.keep_at = f.layout->at("mark");
  }
  return f;
}

FileRead read_records(const std::string& path, std::string_view ext, Warnings& w) {
  FileRead f = unread(path, ext);
  FreeReader in;
  f.present = in.open(path);
  if (!f.present) return f;
  for (int32_t number = 1; read_record(in, f, number, w); ++number)
    if (ext == ".L0") return f;  // its one record; the rest is not read
  return f;
}

FileRead read_switches(const std::string& path, Warnings& w) {
  FileRead f = unread(path, ".L13");
  FileRead groups = unread(path, ".L13G");  // the group number in front of a group, alone
  FreeReader in;
  f.present = in.open(path);
  if (!f.present) return f;
  int32_t number = 0;  // switch records read
  for (;;) {
    if (!read_record(in, groups, 0, w)) return f;
    const int32_t group = groups.values[0].i;
    drop_last(groups);
    if (group < 1) continue;
    for (;;) {
      if (!read_record(in, f, number + 1, w)) return f;
      ++number;
      const Value* v = &f.value(f.records.back(), 0);
      if (v[0].i == 0 && v[1].i == 0 && v[2].i == 0 && v[3].i == 0) {
        drop_last(f);
        break;
      }
      f.records.back().group = group;
    }
  }
}

FileRead read_library(const std::string& path, Warnings& w) {
  FileRead head = unread(path, ".DATH");
  FileRead f = unread(path, ".DAT");
  FreeReader in;
  f.present = in.open(path);
  if (!f.present || !read_record(in, head, 1, w)) return f;
  const std::vector<Value>& h = head.values;
  int64_t sections = 0;  // lines of the eight sections, one record a line
  for (int k = 0; k < 8; ++k) sections += std::max(h[k].i, 0);
  for (int64_t r = 0; r < sections; ++r) {
    if (in.skip()) continue;
    w.push_back(path + ": the file ends inside the sections before the parameter sets");
    return f;
  }
  for (int32_t k = 1; k <= h[8].i; ++k) {
    if (!read_record(in, f, k, w)) {
      if (in.at_end() && in.failed_item() <= 1)
        w.push_back(path + ": the header announces " + std::to_string(h[8].i) +
                    " parameter sets, the file holds " + std::to_string(k - 1));
      return f;
    }
  }
  return f;
}

}  // namespace lf::check

#include "casefile/check/strictread.hpp"

#include <algorithm>
#include <array>
#include <vector>

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

// Reads the records of one layout into files of that layout.  The read
// items of every statement are made once, over a scratch record of all the
// fields that each record is read into; its kept fields then join the file.
class RecordReader {
 public:
  explicit RecordReader(const Layout& l) : values_(l.fields), texts_(l.fields) {
    std::size_t k = 0;
    for (const auto& statement : l.statements) {
      std::vector<ReadItem>& items = items_.emplace_back();
      for (const Field& f : statement) {
        Value& zero = blank_.emplace_back();
        if (f.kind == 'I') zero.i = 0;
        items.push_back(f.kind == 'I'   ? ReadItem::of(values_[k].i)
                        : f.kind == 'R' ? ReadItem::of(values_[k].r)
                                        : ReadItem::of(texts_[k]));
        if (f.kept) (f.kind == 'T' ? kept_texts_ : kept_values_).push_back(k);
        ++k;
      }
    }
  }
  RecordReader(const RecordReader&) = delete;
  RecordReader& operator=(const RecordReader&) = delete;

  // Reads one record of all its statements and adds it to f, as record
  // `number` of the file.  False at the end, f as it was: quietly at the end
  // of the file, else with a warning that names the record and field.
  bool read(FreeReader& in, FileRead& f, int32_t number, Warnings& w) {
    const Layout& l = *f.layout;
    const Record r{number, in.line_number() + 1, 0, f.records.size()};
    values_ = blank_;
    for (std::size_t k : kept_texts_) texts_[k].clear();
    std::size_t first = 0;
    for (std::size_t s = 0; s < items_.size(); ++s) {
      if (in.read(items_[s])) {
        first += items_[s].size();
        continue;
      }
      if (s == 0 && in.at_end() && in.failed_item() <= 1) return false;
      const std::size_t item = std::max<std::size_t>(in.failed_item(), 1);
      const Field& field = l.statements[s][std::min(item, l.statements[s].size()) - 1];
      std::string what = f.name + " record " + std::to_string(r.number) + " (line " +
                         std::to_string(r.line) + "), field " + std::to_string(first + item) +
                         " (" + std::string(field.name) + "): ";
      what += in.at_end() ? std::string("the file ends inside the record")
                          : "cannot read '" + shown(in.failed_text()) + "'";
      w.push_back(what + "; the reading stops here and uses " + std::to_string(f.kept_count()) +
                  " records");
      return false;
    }
    for (std::size_t k : kept_values_) f.values.push_back(values_[k]);
    for (std::size_t k : kept_texts_) f.texts.push_back(texts_[k]);
    f.records.push_back(r);
    return true;
  }

 private:
  std::vector<Value> values_;  // the scratch record's integer and real fields, by position
  std::vector<Value> blank_;   // a record of zeros that each reading starts from
  // Its text fields, by position (only the places of text fields are used).
  std::vector<std::string> texts_;
  std::vector<std::size_t> kept_values_, kept_texts_;  // positions of the kept fields, by slot
  std::vector<std::vector<ReadItem>> items_;           // the items of each statement over them
};

// Room for as many records as the file has lines, as each starts a line.
void reserve(FileRead& f, const FreeReader& in) {
  const std::string_view text = in.text();
  std::size_t lines = 1;
  for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
    ++lines;
  f.records.reserve(lines);
  f.values.reserve(lines * f.layout->values);
  f.texts.reserve(lines * f.layout->texts);
}

// Takes the last record read off f again.
void drop_last(FileRead& f) {
  f.records.pop_back();
  f.values.resize(f.records.size() * f.layout->values);
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

FileRead read_records(const std::string& path, std::string_view ext, FreeReader& in, Warnings& w) {
  FileRead f = unread(path, ext);
  f.present = in.is_open();
  if (!f.present) return f;
  reserve(f, in);
  RecordReader records(*f.layout);
  for (int32_t number = 1; records.read(in, f, number, w); ++number)
    if (ext == ".L0") return f;  // its one record; the rest is not read
  return f;
}

FileRead read_switches(const std::string& path, FreeReader& in, Warnings& w) {
  FileRead f = unread(path, ".L13");
  FileRead groups = unread(path, ".L13G");  // the group number in front of a group, alone
  f.present = in.is_open();
  if (!f.present) return f;
  RecordReader group_reader(*groups.layout), switch_reader(*f.layout);
  // A record whose first four fields are all zero ends its group.
  const Layout& l = *f.layout;
  const std::array<std::size_t, 4> ends{l.at("valid"), l.at("type"), l.at("I"), l.at("J")};
  int32_t number = 0;  // switch records read
  for (;;) {
    if (!group_reader.read(in, groups, 0, w)) return f;
    const int32_t group = groups.values[0].i;
    drop_last(groups);
    if (group < 1) continue;
    for (;;) {
      if (!switch_reader.read(in, f, number + 1, w)) return f;
      ++number;
      const Value* v = &f.value(f.records.back(), 0);
      if (std::all_of(ends.begin(), ends.end(), [&](std::size_t at) { return v[at].i == 0; })) {
        drop_last(f);
        break;
      }
      f.records.back().group = group;
    }
  }
}

FileRead read_library(const std::string& path, FreeReader& in, Warnings& w) {
  FileRead head = unread(path, ".DATH");
  FileRead f = unread(path, ".DAT");
  f.present = in.is_open();
  if (!f.present || !RecordReader(*head.layout).read(in, head, 1, w)) return f;
  const std::vector<Value>& h = head.values;
  int64_t sections = 0;  // lines of the eight sections, one record a line
  for (int k = 0; k < 8; ++k) sections += std::max(h[k].i, 0);
  for (int64_t r = 0; r < sections; ++r) {
    if (in.skip()) continue;
    w.push_back(path + ": the file ends inside the sections before the parameter sets");
    return f;
  }
  RecordReader sets(*f.layout);
  for (int32_t k = 1; k <= h[8].i; ++k) {
    if (!sets.read(in, f, k, w)) {
      if (in.at_end() && in.failed_item() <= 1)
        w.push_back(path + ": the header announces " + std::to_string(h[8].i) +
                    " parameter sets, the file holds " + std::to_string(k - 1));
      return f;
    }
  }
  return f;
}

}  // namespace lf::check

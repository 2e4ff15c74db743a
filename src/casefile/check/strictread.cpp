#include "casefile/check/strictread.hpp"

#include <algorithm>
#include <array>
#include <span>

#include "support/freeread.hpp"

namespace lf::check {

namespace {

Record blank(const Layout& l, int32_t number, long line) {
  Record r;
  r.number = number;
  r.line = line;
  r.values.assign(l.fields, {});
  if (l.texts) r.texts.assign(l.fields, {});
  return r;
}

// A text from the file as a warning shows it: at most 24 characters, any
// control character or byte outside ASCII as "?".
std::string shown(const std::string& text) {
  constexpr std::size_t kShown = 24;
  std::string s;
  for (char c : text.substr(0, kShown)) s += (c >= ' ' && c < 0x7f) ? c : '?';
  return text.size() > kShown ? s + "..." : s;
}

// Reads statement s of a record into r; `first` is the position of its
// first field.
bool read_statement(FreeReader& in, const Layout& l, std::size_t s, std::size_t first, Record& r) {
  std::array<ReadItem, kMostFields> items;
  std::size_t k = first;
  for (const Field& f : l.statements[s]) {
    items[k - first] = f.kind == 'I'   ? ReadItem::of(r.values[k].i)
                       : f.kind == 'R' ? ReadItem::of(r.values[k].r)
                                       : ReadItem::of(r.texts[k]);
    ++k;
  }
  return in.read(std::span<const ReadItem>(items.data(), k - first));
}

// Reads one record of all its statements.  False at the end: quietly at the
// end of the file, else with a warning that names the record and field.
bool read_record(FreeReader& in, const FileRead& f, Record& r, Warnings& w) {
  const Layout& l = *f.layout;
  std::size_t first = 0;
  for (std::size_t s = 0; s < l.statements.size(); ++s) {
    if (read_statement(in, l, s, first, r)) {
      first += l.statements[s].size();
      continue;
    }
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
  return true;
}

}  // namespace

bool FileRead::kept(const Record& r) const {
  switch (keep) {
    case Keep::All:
      return true;
    case Keep::AboveZero:
      return r.values[keep_at].i > 0;
    case Keep::One:
      return r.values[keep_at].i == 1;
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
  for (int32_t number = 1;; ++number) {
    Record r = blank(*f.layout, number, in.line_number() + 1);
    if (!read_record(in, f, r, w)) return f;
    f.records.push_back(std::move(r));
    if (ext == ".L0") return f;  // its one record; the rest is not read
  }
}

FileRead read_switches(const std::string& path, Warnings& w) {
  FileRead f = unread(path, ".L13");
  const FileRead groups = unread(path, ".L13G");
  FreeReader in;
  f.present = in.open(path);
  if (!f.present) return f;
  int32_t number = 0;  // switch records read
  for (;;) {
    Record g = blank(*groups.layout, 0, in.line_number() + 1);
    if (!read_record(in, groups, g, w)) return f;
    const int32_t group = g.values[0].i;
    if (group < 1) continue;
    for (;;) {
      Record r = blank(*f.layout, number + 1, in.line_number() + 1);
      if (!read_record(in, f, r, w)) return f;
      ++number;
      if (r.values[0].i == 0 && r.values[1].i == 0 && r.values[2].i == 0 && r.values[3].i == 0)
        break;
      r.group = group;
      f.records.push_back(std::move(r));
    }
  }
}

FileRead read_library(const std::string& path, Warnings& w) {
  const FileRead head = unread(path, ".DATH");
  FileRead f = unread(path, ".DAT");
  FreeReader in;
  f.present = in.open(path);
  Record h = blank(*head.layout, 1, 1);
  if (!f.present || !read_record(in, head, h, w)) return f;
  int64_t sections = 0;  // lines of the eight sections, one record a line
  for (int k = 0; k < 8; ++k) sections += std::max(h.values[k].i, 0);
  for (int64_t r = 0; r < sections; ++r) {
    if (in.skip()) continue;
    w.push_back(path + ": the file ends inside the sections before the parameter sets");
    return f;
  }
  for (int32_t k = 1; k <= h.values[8].i; ++k) {
    Record r = blank(*f.layout, k, in.line_number() + 1);
    if (!read_record(in, f, r, w)) {
      if (in.at_end() && in.failed_item() <= 1)
        w.push_back(path + ": the header announces " + std::to_string(h.values[8].i) +
                    " parameter sets, the file holds " + std::to_string(k - 1));
      return f;
    }
    f.records.push_back(std::move(r));
  }
  return f;
}

}  // namespace lf::check

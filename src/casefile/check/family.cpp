#include "casefile/check/family.hpp"

#include <algorithm>
#include <iterator>

#include "casefile/check/encoding.hpp"
#include "store/store.hpp"
#include "support/freeread.hpp"

namespace lf::check {

int32_t Family::header(std::string_view field) const {
  if (l0.records.empty()) return 0;
  return std::max(l0.integer(l0.records[0], field), 0);
}

namespace {

// Whether the engine opens file f of the family, by the counts of .L0.
bool engine_reads(const Family& fam, const FileRead& f) {
  if (!f.present) return false;
  if (&f == &fam.l0) return true;
  if (&f == &fam.l1) return fam.header("nbus") > 0;
  if (&f == &fam.l2) return fam.header("nacline") > 0;
  if (&f == &fam.l3) return fam.header("ntrans") > 0;
  if (&f == &fam.nl4) return fam.header("ndcline") > 0;
  if (&f == &fam.l5) return fam.header("ngenerat") > 0;
  if (&f == &fam.l6) return fam.header("nload") > 0;
  if (&f == &fam.l7) return fam.header("narea") > 0;
  if (&f == &fam.l10) return fam.header("ctrl_fact") > 0;
  if (&f == &fam.l13) return fam.header("ctrl_sub") > 0 && fam.header("nswitch") > 0;
  return &f == &fam.dat;
}

}  // namespace

int32_t Family::nbus() const {
  return reads(l1) ? static_cast<int32_t>(l1.records.size()) : 0;
}

std::string Family::bus(int32_t b) const {
  std::string s = "bus " + std::to_string(b);
  if (b < 1 || b > nbus()) return s;
  std::string name = l1.text(l1.records[static_cast<std::size_t>(b - 1)], "busname");
  while (!name.empty() && name.back() == ' ') name.pop_back();
  return s + " '" + name + "'";
}

Family read_family(const std::string& stem, const std::string& dat_stem, Warnings& w) {
  Family f;
  f.stem = stem;
  // Each file is taken in once, into one buffer that serves them all in
  // turn; the warnings about the encodings of all of them come first, those
  // about their records after.
  constexpr std::string_view kExt[] = {".L0", ".L1", ".L2", ".L3",  ".NL4",
                                       ".L5", ".L6", ".L7", ".L10", ".L13"};
  FileRead* const files[] = {&f.l0, &f.l1, &f.l2, &f.l3,  &f.nl4,
                             &f.l5, &f.l6, &f.l7, &f.l10, &f.l13};
  Warnings records;
  FreeReader in;
  for (std::size_t k = 0; k < std::size(kExt); ++k) {
    const std::string path = stem + std::string(kExt[k]);
    if (in.open(path)) check_encoding(path, in.text(), w);
    *files[k] = files[k] == &f.l13 ? read_switches(path, in, records)
                                   : read_records(path, kExt[k], in, records);
    in.close();
  }
  w.insert(w.end(), records.begin(), records.end());
  for (FileRead* file : files) file->read = engine_reads(f, *file);
  const std::size_t type_at = f.l6.layout->at("mode_ctrl");
  const bool typed = std::any_of(f.l6.records.begin(), f.l6.records.end(), [&](const Record& r) {
    return f.uses(f.l6, r) && f.l6.value(r, type_at).i >= kTypeFirstLoadSet;
  });
  const std::string library = dat_stem + ".DAT";
  f.dat = typed ? (in.open(library), read_library(library, in, w)) : unread(library, ".DAT");
  if (f.dat.present) check_encoding(library, in.text(), w);
  f.dat.read = engine_reads(f, f.dat);
  return f;
}

}  // namespace lf::check

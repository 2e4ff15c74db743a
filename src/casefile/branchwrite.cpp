// Writing the branch files back: the .L2 and .L3 rows of the case are read
// again and written with R, X and the third real (B or the ratio T) that
// the calculation left in the branch records.
//
// A row is read with the fields that the case reader takes (13 in .L2, 17
// in .L3, the rest of its line passed over) and written with two (.L2) or
// five (.L3) more fields behind them, all zero: the case reader takes the
// leading fields of each line, so a file written here reads back as it was
// meant, and so does one written before, read here again.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "casefile/readers.hpp"
#include "support/fmt.hpp"
#include "support/freeread.hpp"

namespace lf {

namespace {

// How the rows of one branch file are laid out.
struct BranchLayout {
  const char* extension;
  const char* pattern;  // I: integer, R: real, in file order
  const int* widths;    // output width of each field; reals are F14.6
  std::size_t fields;   // fields a row of the case reader holds, read here
};

constexpr int kL2Widths[] = {2, 4, 4, 4, 14, 14, 14, 2, 2, 2, 4, 4, 14, 14, 4};
constexpr int kL3Widths[] = {2, 4, 4, 4, 14, 14, 14, 14, 14, 3, 3,
                             3, 3, 4, 4, 14, 14, 14, 4,  2,  2, 2};
constexpr BranchLayout kL2{".L2", "IIIIRRRIIIIIRRI", kL2Widths, 13};
constexpr BranchLayout kL3{".L3", "IIIIRRRRRIIIIIIRRRIIII", kL3Widths, 17};

bool read_row(FreeReader& in, const std::string& pattern, std::size_t fields, BranchRow& row) {
  row.ints.assign(pattern.size(), 0);
  row.reals.assign(pattern.size(), 0.0);
  std::vector<ReadItem> items;
  for (std::size_t k = 0; k < fields; ++k) {
    items.push_back(pattern[k] == 'I' ? ReadItem::of(row.ints[k]) : ReadItem::of(row.reals[k]));
  }
  return in.read(items);
}

void read_branch_file(const std::string& stem, const BranchLayout& layout, BranchRows& file) {
  FreeReader in;
  if (!in.open(stem + layout.extension)) return;
  std::size_t n = 0;
  BranchRow row;
  while (read_row(in, layout.pattern, layout.fields, row)) {
    if (n == file.rows.size()) file.rows.emplace_back();
    file.rows[n++] = row;
  }
  file.count = n;
}

// Writes the rows back, with R, X and the third real taken from the first
// branch of equal ends and number; `ends` turns a row's ends into the form
// that is compared.
template <typename Ends>
void write_branch_file(const std::string& stem, const BranchLayout& layout, BranchRows& file,
                       Ends ends, bool third_is_ratio) {
  std::map<std::tuple<int32_t, int32_t, int32_t>, int32_t> first;
  for (int32_t b = NO.nbranch; b >= 1; --b) first[{IJB.I[b], IJB.J[b], IJB.No[b]}] = b;
  std::FILE* out = std::fopen((stem + layout.extension).c_str(), "w");
  if (!out) return;
  const std::string pattern = layout.pattern;
  for (std::size_t r = 0; r < file.count; ++r) {
    BranchRow& row = file.rows[r];
    auto hit = first.find({ends(row.ints[1]), ends(row.ints[2]), row.ints[3]});
    if (hit != first.end()) {
      const int32_t b = hit->second;
      row.reals[4] = RXB.R[b];
      row.reals[5] = RXB.X[b];
      row.reals[6] = third_is_ratio ? RXB.T[b] : RXB.B[b];
    }
    std::string line = " ";
    for (std::size_t k = 0; k < pattern.size(); ++k) {
      line += pattern[k] == 'I' ? fmt_i(row.ints[k], layout.widths[k])
                                : fmt_f(row.reals[k], layout.widths[k], 6);
      line += ',';
    }
    line += '\n';
    std::fputs(line.c_str(), out);
  }
  std::fclose(out);
}

}  // namespace

L23ROWSRec L23ROWS;

void wrl23(const CaseName& name) {
  const std::string stem = name.trimmed();
  if (LFINF.nacline > 0) read_branch_file(stem, kL2, L23ROWS.l2);
  if (LFINF.ntrans > 0) read_branch_file(stem, kL3, L23ROWS.l3);
  if (L23ROWS.l2.count > 0)
    write_branch_file(
        stem, kL2, L23ROWS.l2, [](int32_t v) { return v; }, false);
  if (L23ROWS.l3.count > 0)
    write_branch_file(
        stem, kL3, L23ROWS.l3, [](int32_t v) { return std::abs(v); }, true);
}

}  // namespace lf

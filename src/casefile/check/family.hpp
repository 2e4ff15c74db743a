// The case family as the engine reads it: every file of the stem read
// strictly, the counts of .L0, and which files and records the engine takes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "casefile/check/strictread.hpp"

namespace lf::check {

struct Family {
  std::string stem;                                    // the case's path without extension
  FileRead l0, l1, l2, l3, nl4, l5, l6, l7, l10, l13;  // the case files
  FileRead dat;                                        // the load library, when some load needs it

  // A count or switch of .L0's first record; 0 when .L0 gave none or a
  // negative one (the engine reads a negative count as none).
  int32_t header(std::string_view field) const;
  // Whether the engine opens the file, by the counts of .L0.
  bool reads(const FileRead& f) const { return f.read; }
  // Whether the engine takes the record: its file is read and it is kept.
  bool uses(const FileRead& f, const Record& r) const { return reads(f) && f.kept(r); }
  // The buses of the case: the records of .L1 when it is read.
  int32_t nbus() const;
  // "bus 3 'NAME'" for a bus number in range, else "bus 3".
  std::string bus(int32_t b) const;
};

// The bus number that a branch end stands for: its magnitude (the sign of a
// transformer's end says nothing); the one number without a magnitude in 32
// bits stays as it is, outside every case.
inline int32_t end_bus(int32_t v) {
  return v == INT32_MIN ? v : (v < 0 ? -v : v);
}

// Reads every file of the stem and, when a load names a parameter set, the
// library dat_stem.DAT.
Family read_family(const std::string& stem, const std::string& dat_stem, Warnings& w);

}  // namespace lf::check

// The whole case-family reader: the input, cut at NUL bytes, gives the
// files .L0, .L1, .L2, .L3, .NL4, .L5, .L6, .L7, .L10, .L13 and the load
// library .DAT, each written even when empty so that no mandatory file is
// missing.
#include <cstddef>
#include <cstdint>

#include "casefile/readers.hpp"
#include "fuzz/scratch.hpp"
#include "store/store.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const char* const kExt[] = {".L0", ".L1", ".L2",  ".L3",  ".NL4", ".L5",
                                     ".L6", ".L7", ".L10", ".L13", ".DAT"};
  const std::string stem = lf::fuzz::scratch() + "/F";
  const auto files = lf::fuzz::parts(data, size, std::size(kExt));
  for (std::size_t k = 0; k < std::size(kExt); ++k) lf::fuzz::write_file(stem + kExt[k], files[k]);
  lf::LFINF = {};
  lf::LF93 = {};
  lf::NO = {};
  lf::rdlf(lf::CaseName(stem), lf::CaseName(stem));
  return 0;
}

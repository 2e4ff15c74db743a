// The load library reader on one .DAT file.
#include <cstddef>
#include <cstdint>

#include "casefile/readers.hpp"
#include "fuzz/scratch.hpp"
#include "store/store.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string stem = lf::fuzz::scratch() + "/D";
  lf::fuzz::write_file(stem + ".DAT", std::string_view(reinterpret_cast<const char*>(data), size));
  lf::LFINF.nloadpar = 0;
  lf::rpalib(stem);
  return 0;
}

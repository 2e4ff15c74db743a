// The substation switch reader on one .L13 file, for a case of 30 buses.
#include <cstddef>
#include <cstdint>

#include "casefile/readers.hpp"
#include "fuzz/scratch.hpp"
#include "store/store.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string stem = lf::fuzz::scratch() + "/S";
  lf::fuzz::write_file(stem + ".L13", std::string_view(reinterpret_cast<const char*>(data), size));
  lf::LFINF.nbus = 30;
  lf::LF93.ctrl_sub = 1;
  lf::LF93.nswitch = 1;
  lf::rl13(stem);
  return 0;
}

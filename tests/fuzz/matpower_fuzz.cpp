// The MATPOWER case parser: a case it cannot read must end in its error.
#include <cstddef>
#include <cstdint>
#include <string>

#include "mpcase.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  try {
    mp2lf::parse_case(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const mp2lf::ParseError&) {
  }
  return 0;
}

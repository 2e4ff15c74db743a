#include "casefile/indexcheck.hpp"

#include <string>

#include "store/store.hpp"
#include "support/stop.hpp"

namespace lf {

void check_range(int32_t value, int32_t top, std::string_view what, std::string_view source,
                 int32_t record) {
  if (value >= 1 && value <= top) return;
  stop_run(std::string(source) + " record " + std::to_string(record) + ": " + std::string(what) +
           " " + std::to_string(value) + " is not in 1.." + std::to_string(top));
}

void check_bus(int32_t bus, std::string_view source, int32_t record) {
  check_range(bus, LFINF.nbus, "bus number", source, record);
}

void check_load_types(std::string_view source) {
  const auto room = static_cast<int32_t>(ABCLC.ap.size());
  for (int32_t d = 1; d <= LFINF.nload; ++d) {
    const int32_t type = L6.mode_ctrl[d];
    if (type <= room) continue;
    stop_run(std::string(source) + " load No " + std::to_string(L6.No[d]) + " at bus " +
             std::to_string(L6.ibs[d]) + ": type " + std::to_string(type) +
             " names no parameter set; the library has room for " + std::to_string(room));
  }
}

}  // namespace lf

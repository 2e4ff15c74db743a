// A build without a window library: the headless screen always serves.
#include "toolkit/toolkit.hpp"

namespace lf {

ToolkitBackend* real_window_backend() {
  return nullptr;
}

}  // namespace lf

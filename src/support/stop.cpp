#include "support/stop.hpp"

#include <cstdio>
#include <cstdlib>

namespace lf {

void print_stop_text(std::string_view text) {
  std::fflush(stdout);
  std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
  std::fflush(stderr);
}

void stop_run(std::string_view text) {
  print_stop_text(text);
  std::exit(1);
}

}  // namespace lf

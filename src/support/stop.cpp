#include "support/stop.hpp"

#include <cstdio>
#include <cstdlib>

namespace lf {

void print_stop_text(std::string_view text) {
  std::fflush(stdout);
  std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
  std::fflush(stderr);
}

namespace {
void (*stop_action)(std::string_view) = nullptr;  // set_stop_action's; none by default
}  // namespace

void set_stop_action(void (*action)(std::string_view text)) {
  stop_action = action;
}

void stop_run(std::string_view text) {
  if (stop_action) stop_action(text);
  print_stop_text(text);
  std::exit(1);
}

}  // namespace lf

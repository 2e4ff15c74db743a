// The one way the engine ends the process: a stop text on standard error and
// a non-zero exit status.  Used for a missing mandatory case file, a number
// of the case data that indexes outside the store, and a failed allocation.
#pragma once

#include <string_view>

namespace lf {

[[noreturn]] void stop_run(std::string_view text);

// Writes a stop text to standard error without ending the process: the
// exports use it when they end a call on an exception.
void print_stop_text(std::string_view text);

}  // namespace lf

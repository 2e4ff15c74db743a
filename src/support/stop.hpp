// The one way the engine ends the process: a stop text on standard error and
// a non-zero exit status.  Used for a missing mandatory case file and for a
// failed allocation; nothing else is fatal.
#pragma once

#include <string_view>

namespace lf {

[[noreturn]] void stop_run(std::string_view text);

}  // namespace lf

// Asking the processor early for data that a loop will reach through an
// index: on a large network the arrays by bus no longer fit in the cache,
// and a loop that walks one list while it reaches into another in a
// scattered order waits on memory at every step unless it asks ahead.
#pragma once

#include <cstdint>

namespace lf {

// Asks for element `at` of each array (anything with data()).  Inlined
// before the compiler judges it: on its own it has no effect that the
// compiler sees, and a call to it would be dropped.
template <typename... A>
[[gnu::always_inline]] inline void prefetch_at(int32_t at, const A&... arrays) {
  (__builtin_prefetch(arrays.data() + at), ...);
}

}  // namespace lf

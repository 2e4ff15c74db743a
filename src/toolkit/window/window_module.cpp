// The on-screen window as a module loaded on first use: the window library
// and the X libraries behind it come into the process only when a window is
// asked for.  The module stands beside the library that holds this code (or
// where the dynamic loader finds it) and hands out its backend through one
// function.
#include <dlfcn.h>

#include <cstdio>

#include "support/beside.hpp"
#include "toolkit/toolkit.hpp"

namespace lf {

namespace {

constexpr const char* kModule = LF_WINDOW_MODULE;    // file name of the module
constexpr const char* kEntry = "lf_window_backend";  // its one entry point

ToolkitBackend* load_backend() {
  // First beside this library, then by name.
  void* handle = open_beside(reinterpret_cast<const void*>(&real_window_backend), kModule);
  using Entry = ToolkitBackend* (*)();
  auto entry = handle ? reinterpret_cast<Entry>(dlsym(handle, kEntry)) : nullptr;
  if (!entry) {
    // The calculation goes on with the off-screen page; the user learns why
    // no window came.
    const char* why = dlerror();
    std::fprintf(stderr, "lfengine: no progress window: cannot load %s (%s)\n", kModule,
                 why ? why : "no entry point");
    return nullptr;
  }
  return entry();
}

}  // namespace

ToolkitBackend* real_window_backend() {
  static ToolkitBackend* const backend = load_backend();
  return backend;
}

}  // namespace lf

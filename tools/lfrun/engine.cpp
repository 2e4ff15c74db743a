#include "engine.hpp"

#include <dlfcn.h>

#include "cli.h"

namespace {

constexpr const char* kLibrary = LF_ENGINE_LIBRARY;  // file name of the engine library

template <typename F>
bool resolve(void* handle, const char* name, F& f) {
  f = reinterpret_cast<F>(dlsym(handle, name));
  return f != nullptr;
}

// Opens the engine: first beside the database client library, which lfrun
// links and which is installed with the engine, then by name.  The path
// comes first since a loader that stands between lfrun and dlopen (the
// address checker's) would search its own paths for a bare name.
void* open_engine() {
  Dl_info client{};
  if (dladdr(reinterpret_cast<void*>(&lfcli_writes), &client) && client.dli_fname) {
    std::string path = client.dli_fname;
    path = path.substr(0, path.find_last_of('/') + 1) + kLibrary;
    if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
  }
  return dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
}

}  // namespace

bool load_engine(Engine& engine, std::string& why) {
  void* handle = open_engine();
  if (handle && resolve(handle, "LFInit", engine.init) && resolve(handle, "LFCal", engine.cal) &&
      resolve(handle, "LFFinilize", engine.finish))
    return true;
  const char* error = dlerror();
  why =
      std::string("cannot load the engine ") + kLibrary + ": " + (error ? error : "no error text");
  return false;
}

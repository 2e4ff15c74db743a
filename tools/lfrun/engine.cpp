#include "engine.hpp"

#include <dlfcn.h>

#include "cli.h"
#include "support/beside.hpp"

namespace {

constexpr const char* kLibrary = LF_ENGINE_LIBRARY;  // file name of the engine library

template <typename F>
bool resolve(void* handle, const char* name, F& f) {
  f = reinterpret_cast<F>(dlsym(handle, name));
  return f != nullptr;
}

}  // namespace

bool load_engine(Engine& engine, std::string& why) {
  // First beside the database client library, which lfrun links and which
  // is installed with the engine, then by name.
  void* handle = lf::open_beside(reinterpret_cast<const void*>(&lfcli_writes), kLibrary);
  if (handle && resolve(handle, "LFInit", engine.init) && resolve(handle, "LFCal", engine.cal) &&
      resolve(handle, "LFFinilize", engine.finish))
    return true;
  const char* error = dlerror();
  why =
      std::string("cannot load the engine ") + kLibrary + ": " + (error ? error : "no error text");
  return false;
}

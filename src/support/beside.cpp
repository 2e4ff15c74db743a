#include "support/beside.hpp"

#include <dlfcn.h>

#include <string>

namespace lf {

void* open_beside(const void* anchor, const char* file) {
  Dl_info holder{};
  if (dladdr(anchor, &holder) && holder.dli_fname) {
    std::string path = holder.dli_fname;
    path = path.substr(0, path.find_last_of('/') + 1) + file;
    if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
  }
  return dlopen(file, RTLD_NOW | RTLD_LOCAL);
}

}  // namespace lf

// Loading a shared library installed beside another one.
#pragma once

namespace lf {

// Opens the shared library named file (a file name, no folder) from the
// folder of the loaded object that holds anchor (the address of a function
// or variable in it), else by name where the dynamic loader finds it.  The
// folder comes first since a loader that stands between the program and
// dlopen (the address checker's) searches its own paths for a bare name.
// Gives dlopen's handle (RTLD_NOW | RTLD_LOCAL), or nullptr when neither
// opens, with dlerror() telling why.
void* open_beside(const void* anchor, const char* file);

}  // namespace lf

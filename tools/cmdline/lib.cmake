# The command-line walk that the host programs share: options with and
# without a value, the plain arguments, the usage messages.  A library of
# its own, with nothing of the engine.
add_library(lfcmdline STATIC ${dir}/cmdline.cpp)
target_include_directories(lfcmdline PUBLIC ${dir})

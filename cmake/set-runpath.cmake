# Sets the library search path of the program FILE to RUNPATH, in the room
# the linker left for its installed path (see runpath.cmake).  Run with
# cmake -P and the variables FILE and RUNPATH.
file(RPATH_SET FILE "${FILE}" NEW_RPATH "${RUNPATH}")

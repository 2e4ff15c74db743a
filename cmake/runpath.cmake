# Where the dynamic loader looks for our shared libraries, written at link
# time and never padded: the path CMake writes into the build tree to edit
# it at installation ends in an empty entry, which the loader takes for the
# current folder (a library planted in a case folder would be loaded).
#
# A program is linked with its installed path; set-runpath.cmake shortens it
# in the build tree to the library folder there, and install.cmake writes
# the installed path back into the installed copy, in the same room.
set(LF_INSTALLED_RUNPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

function(lf_program_runpath program)
  get_target_property(program_dir ${program} RUNTIME_OUTPUT_DIRECTORY)
  get_target_property(library_dir lfcli BINARY_DIR)
  file(RELATIVE_PATH library_dir ${program_dir} ${library_dir})
  set_target_properties(${program} PROPERTIES BUILD_WITH_INSTALL_RPATH ON
                                              INSTALL_RPATH "${LF_INSTALLED_RUNPATH}")
  add_custom_command(TARGET ${program} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -D FILE=$<TARGET_FILE:${program}>
            -D "RUNPATH=$ORIGIN/${library_dir}" -P ${PROJECT_SOURCE_DIR}/cmake/set-runpath.cmake
    VERBATIM)
endfunction()

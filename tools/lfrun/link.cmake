# lfrun is a host like any other: it uses nothing of the engine but the
# shared library's four exported functions, which it loads when the first
# calculation needs them (see engine.hpp), and in database mode the client
# library to open the session it hands to the engine.  The summary after
# each calculation reads the results back with lfresults; the case check
# before the calculations is the case checker lfcheck; the options are
# walked by lfcmdline.
target_link_libraries(lfrun PRIVATE lfcli lfresults lfcheck lfcmdline ${CMAKE_DL_LIBS})
target_include_directories(lfrun PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(lfrun PRIVATE LF_ENGINE_LIBRARY="$<TARGET_SONAME_FILE_NAME:lfengine>")
add_dependencies(lfrun lfengine)

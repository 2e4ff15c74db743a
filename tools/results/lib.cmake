# The results of a calculation as the host programs read them back (case
# files, report files, run log) and the summary built from them: a library
# that lfrun and lfreport share.  It uses the free-form reader of the
# support folder and nothing else of the engine.
file(GLOB lfresults_sources CONFIGURE_DEPENDS ${dir}/*.cpp)
add_library(lfresults STATIC ${lfresults_sources} $<TARGET_OBJECTS:lf_support>)
target_include_directories(lfresults PUBLIC ${dir} PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(lfresults PUBLIC lfcli)

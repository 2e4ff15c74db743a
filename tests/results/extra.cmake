# These tests run the host programs on copies of the bundled examples.
add_dependencies(test_${name} lfrun lfreport lfdb mp2lf)
target_compile_definitions(test_${name} PRIVATE LF_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples")
# One test reads the results through the hosts' own reading library.
target_link_libraries(test_${name} PRIVATE lfresults)

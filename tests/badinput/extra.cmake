# The rows run the host programs, and each row of the table is a test of its
# own: a changed table builds the program again, so that its tests are found.
add_dependencies(test_${name} lfrun mp2lf lfdb)
set_property(SOURCE ${dir}/badinput_test.cpp APPEND PROPERTY OBJECT_DEPENDS
             ${CMAKE_CURRENT_SOURCE_DIR}/data/badinput/cases.tsv)

# The importer's tests run the program.
add_dependencies(test_${name} mp2lf)

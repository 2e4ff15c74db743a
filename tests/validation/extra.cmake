# The validation cases are converted by the MATPOWER importer before they run.
add_dependencies(test_${name} mp2lf)

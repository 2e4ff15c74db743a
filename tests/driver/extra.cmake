# These tests listen on the link's fixed loopback port: each runs alone.
set(extra_properties RUN_SERIAL TRUE)
# They run the host programs as well.
add_dependencies(test_${name} lfrun lfstatus)

# These tests listen on the link's fixed loopback port: each runs alone.
set(extra_properties RUN_SERIAL TRUE)

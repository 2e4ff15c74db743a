# lfrun is a host like any other: it loads the engine through the shared
# library and uses nothing but its four exported functions.
target_link_libraries(lfrun PRIVATE lfengine)

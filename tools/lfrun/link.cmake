# lfrun is a host like any other: it loads the engine through the shared
# library and uses nothing but its four exported functions, and in database
# mode the client library to open the session it hands to the engine.  The
# summary after each calculation reads the results back with lfresults; the
# case check before the calculations is the case checker lfcheck; the
# options are walked by lfcmdline.
target_link_libraries(lfrun PRIVATE lfengine lfcli lfresults lfcheck lfcmdline)

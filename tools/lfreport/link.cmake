# lfreport reads a case's files back through lfresults; it needs nothing of
# the engine itself.
target_link_libraries(lfreport PRIVATE lfresults lfcmdline)

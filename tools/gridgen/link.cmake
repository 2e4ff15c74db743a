# gridgen works on the case files as text and needs nothing of the engine;
# its options are walked by lfcmdline.
target_link_libraries(${tool} PRIVATE lfcmdline)

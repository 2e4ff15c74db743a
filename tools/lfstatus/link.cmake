# lfstatus takes the port of the message link from the engine's headers; its
# options are walked by lfcmdline.
target_link_libraries(${tool} PRIVATE lfcore lfcmdline)

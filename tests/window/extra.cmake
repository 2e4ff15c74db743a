# The window's tests need an X server: each runs under its own virtual one
# (xvfb-run), one at a time, since xvfb-run picks its display number
# without a lock.  Without xvfb-run, or in a build without the window
# library, they skip.  The X libraries keep some memory to the end of the
# process, which is no leak of ours.
find_program(LF_XVFB_RUN xvfb-run)
if(LF_XVFB_RUN)
  set_target_properties(test_${name} PROPERTIES
    CROSSCOMPILING_EMULATOR "${LF_XVFB_RUN};-a;-s;-screen 0 1024x768x24")
endif()
target_compile_definitions(test_${name} PRIVATE LF_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples")
# The tests look into the real window, so they link its module, which the
# engine then finds loaded.
if(TARGET lfwindow)
  target_link_libraries(test_${name} PRIVATE lfwindow X11)
endif()
set(extra_properties RUN_SERIAL TRUE TIMEOUT 60 ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)

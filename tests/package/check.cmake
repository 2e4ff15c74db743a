# Installs the built engine into SCRATCH/prefix, then configures, builds and
# runs the project in CONSUMER_DIR against it.  Run with cmake -P and the
# variables BUILD_DIR, CONSUMER_DIR, SCRATCH and SANITIZE.
file(REMOVE_RECURSE ${SCRATCH})
set(prefix ${SCRATCH}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}")
  endif()
endfunction()

set(flags)
if(SANITIZE)
  # An engine built with the sanitizers needs their run-time in the host.
  set(flags -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=address,undefined)
endif()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${SCRATCH}/build -DCMAKE_PREFIX_PATH=${prefix} ${flags})
run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
run(${SCRATCH}/build/consumer)
foreach(program lfrun lfdb lfstatus mp2lf lfreport)
  if(NOT EXISTS ${prefix}/bin/${program})
    message(FATAL_ERROR "not installed: bin/${program}")
  endif()
endforeach()
run(${prefix}/bin/lfrun --help)
# Library search paths, built and installed, are relative to the file and
# have no empty entry (which the loader would take for the current folder).
file(GLOB binaries ${BUILD_DIR}/lfrun ${BUILD_DIR}/src/liblf*.so ${prefix}/bin/*
     ${prefix}/lib/liblf*.so)
foreach(binary ${binaries})
  file(READ_ELF ${binary} RUNPATH runpath)
  if(runpath AND (runpath MATCHES "(^|[:;])([:;]|$)" OR NOT runpath MATCHES "^\\$ORIGIN"))
    message(FATAL_ERROR "${binary}: library search path '${runpath}'")
  endif()
endforeach()
file(REMOVE_RECURSE ${SCRATCH})

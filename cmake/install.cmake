# Installation: the engine (liblfengine.so with its header), the database
# client library it runs on, and the host programs; and a package
# configuration, so that another CMake project can say
#   find_package(lfengine) ... target_link_libraries(app lfengine::lfengine)
include(CMakePackageConfigHelpers)

set(LF_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/lfengine)

# The host programs of tools/ that a user runs.
set(LF_PROGRAMS)
foreach(program lfrun lfdb lfstatus mp2lf lfreport)
  if(TARGET ${program})
    list(APPEND LF_PROGRAMS ${program})
  endif()
endforeach()

# The engine finds the database client beside itself, in the build tree
# and installed alike; the client needs none of our libraries; the programs
# take their installed path back (see runpath.cmake).
set_target_properties(lfengine lfcli PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
set_target_properties(lfengine PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS lfengine EXPORT lfengineTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# The progress window's module, which the engine loads from beside itself.
if(TARGET lfwindow)
  install(TARGETS lfwindow LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(TARGETS lfcli EXPORT lfengineTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lfcli)
install(TARGETS ${LF_PROGRAMS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(program ${LF_PROGRAMS})
  set(installed "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${program}")
  install(CODE "file(RPATH_SET FILE \"${installed}\" NEW_RPATH \"\\${LF_INSTALLED_RUNPATH}\")")
endforeach()

install(EXPORT lfengineTargets NAMESPACE lfengine:: DESTINATION ${LF_PACKAGE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/lfengineConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/lfengineConfig.cmake INSTALL_DESTINATION ${LF_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/lfengineConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lfengineConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/lfengineConfigVersion.cmake
        DESTINATION ${LF_PACKAGE_DIR})

# The standard model library, for users to place beside their model
# libraries (see docs/models.md).
install(FILES ${PROJECT_SOURCE_DIR}/lib/SYSMODEL.DLF DESTINATION ${CMAKE_INSTALL_DATADIR}/lfengine)

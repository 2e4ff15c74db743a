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

# Installed programs find the installed libraries beside them.
set_target_properties(lfengine lfcli ${LF_PROGRAMS} PROPERTIES
  INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

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

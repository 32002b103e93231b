# cmake --install, and find_package(zunopathfinder) for hosts.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zunopathfinder)
install(TARGETS zunopathfinder zunocommon zunonavmesh zunohostkit EXPORT zunopathfinder-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(ZUNO_BUILD_TOOLS)
  set(tools zunopath zunotrace)
  if(TARGET zunobake)
    list(APPEND tools zunobake)
  endif()
  set_target_properties(${tools} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS ${tools} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zunopathfinder
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY hostkit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zunopathfinder
  FILES_MATCHING PATTERN "*.h")
install(EXPORT zunopathfinder-targets NAMESPACE zuno:: DESTINATION ${package_folder})
configure_package_config_file(cmake/zunopathfinder-config.cmake.in
  ${PROJECT_BINARY_DIR}/zunopathfinder-config.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zunopathfinder-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/zunopathfinder-config.cmake
  ${PROJECT_BINARY_DIR}/zunopathfinder-config-version.cmake
  DESTINATION ${package_folder})

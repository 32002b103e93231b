# cmake --install, for hosts that use find_package(zunopathfinder) or pkg-config. Components:
# runtime (what programs load), development (what hosts are built with), tools.
include(CMakePackageConfigHelpers)
include(cmake/publicheaders.cmake)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zunopathfinder)
install(TARGETS zunopathfinder EXPORT zunopathfinder-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(TARGETS zunocommon zunonavmesh zunohostkit EXPORT zunopathfinder-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(EXPORT zunopathfinder-targets NAMESPACE zuno:: DESTINATION ${package_folder}
  COMPONENT development)
configure_package_config_file(cmake/zunopathfinder-config.cmake.in
  ${PROJECT_BINARY_DIR}/zunopathfinder-config.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zunopathfinder-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/zunopathfinder-config.cmake
  ${PROJECT_BINARY_DIR}/zunopathfinder-config-version.cmake
  cmake/compilers.cmake
  DESTINATION ${package_folder} COMPONENT development)

if(zuno_library_kind STREQUAL STATIC)
  set(static_of_pc "-lzunonavmesh ")
  set(define_of_pc " -DZUNO_PATHFINDER_STATIC")
endif()
file(RELATIVE_PATH prefix_of_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /) # wherever it is unpacked
foreach(library zunopathfinder zunohostkit)
  configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

if(ZUNO_BUILD_TOOLS)
  set(tools zunopath zunotrace)
  if(TARGET zunobake)
    list(APPEND tools zunobake)
  endif()
  set_target_properties(${tools} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS ${tools} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  if(NOT CMAKE_CROSSCOMPILING)
    # where Debian's zsh looks below /usr; below /usr/local it is share/zsh/site-functions
    set(ZUNO_ZSH_FOLDER ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions CACHE STRING
      "Where zsh finds completions")
    install(FILES tools/completion/zsh DESTINATION ${ZUNO_ZSH_FOLDER} RENAME _zunotools
      COMPONENT tools)
    foreach(tool ${tools})
      install(FILES tools/completion/bash RENAME ${tool} COMPONENT tools
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
      install(FILES ${PROJECT_BINARY_DIR}/man/${tool}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
        COMPONENT tools)
    endforeach()
  endif()
endif()

if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  install(FILES ${unwinder} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endif()

# Debugger views: gdb loads its own when a program loads the library that they are named after.
if(WIN32)
  install(FILES tools/debugger/zunopathfinder.natvis
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zunopathfinder COMPONENT development)
elseif(zuno_library_kind STREQUAL SHARED)
  install(FILES tools/debugger/zunopathfinder-gdb.py COMPONENT development
    DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR}
    RENAME libzunopathfinder.so.${PROJECT_VERSION}-gdb.py)
endif()

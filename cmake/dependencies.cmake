# The libraries of tools and tests. A build for another system takes the same packages, but only
# what is independent of the machine: the header libraries, and the test framework's sources.
if(NOT CMAKE_CROSSCOMPILING)
  if(ZUNO_BUILD_TOOLS)
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
  endif()
  if(ZUNO_BUILD_TESTS)
    find_package(GTest REQUIRED)
  endif()
  return()
endif()

# a folder of its own: beside them lie the headers of the building machine
set(headers ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${headers})
foreach(library CLI nlohmann)
  if(NOT EXISTS /usr/include/${library})
    message(FATAL_ERROR "/usr/include/${library} is missing: install libcli11-dev, nlohmann-json3-dev")
  endif()
  file(CREATE_LINK /usr/include/${library} ${headers}/${library} SYMBOLIC)
endforeach()
foreach(library CLI11::CLI11 nlohmann_json::nlohmann_json)
  add_library(${library} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${library} SYSTEM INTERFACE ${headers})
endforeach()

if(ZUNO_BUILD_TESTS)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  if(WIN32)
    target_compile_options(gtest PUBLIC
      "SHELL:-include ${PROJECT_SOURCE_DIR}/tests/platform/win32/notification.h")
  endif()
endif()

# Says at once which compilers fit, instead of failing late in a header.
function(zuno_check_compiler)
  set(id ${CMAKE_CXX_COMPILER_ID})
  set(version ${CMAKE_CXX_COMPILER_VERSION})
  if((id STREQUAL GNU AND version VERSION_GREATER_EQUAL 12)
      OR (id MATCHES "Clang" AND NOT MSVC AND version VERSION_GREATER_EQUAL 14))
    return()
  endif()
  message(FATAL_ERROR "zunopathfinder's C++ interface needs g++ 12 or clang++ 14, or newer, on every "
    "system (on Windows MinGW's): its strings, shared pointers and exceptions cross the library's "
    "border. This is ${id} ${version}. Other compilers take the C interface: "
    "find_package(zunopathfinder COMPONENTS c) and zuno::c.")
endfunction()
zuno_check_compiler()

# 32-bit Windows by MinGW-w64. Exceptions unwind by tables of libgcc, which the DLL and its hosts
# must share; the C++ library is linked in.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-win32) # for the test framework
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-shared-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-shared-libgcc -static-libstdc++")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine32)

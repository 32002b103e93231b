/// The Win32 declarations, without the macros that collide with names of ours.
#pragma once

#define WIN32_LEAN_AND_MEAN
#undef NOMINMAX // the C++ library sets it, differently
#define NOMINMAX
#define NOGDI // ERROR, and more
#include <windows.h>

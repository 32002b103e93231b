/// How a function is marked as part of the shared library's interface.
#pragma once

#if defined(ZUNO_PATHFINDER_STATIC)
#define ZUNO_PATHFINDER_EXPORT
#elif defined(_WIN32)
#if defined(ZUNO_PATHFINDER_BUILD)
#define ZUNO_PATHFINDER_EXPORT __declspec(dllexport)
#else
#define ZUNO_PATHFINDER_EXPORT __declspec(dllimport)
#endif
#else
#define ZUNO_PATHFINDER_EXPORT __attribute__((visibility("default")))
#endif

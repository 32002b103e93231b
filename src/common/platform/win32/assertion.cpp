#include "common/platform/assertion.h"

#include "common/platform/win32/windows.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace ZUNO::Common::Platform {

void showAssertion(const char* text, const char* file, unsigned int line) noexcept {
    std::fprintf(stderr, "%s(%u): Assertion failed: %s\n", file, line, text);
    // in parts: the text may be of any length, and no memory may be left
    char place[32];
    std::snprintf(place, sizeof(place), "(%u): Assertion failed: ", line);
    for (const char* const part : {file, static_cast<const char*>(place), text, "\n"})
        OutputDebugStringA(part);
}

void stopOnAssertion(const char* text, const char* file, unsigned int line) noexcept {
    _assert(text, file, line);
    std::abort(); // a debugger let it go on
}

} // namespace ZUNO::Common::Platform

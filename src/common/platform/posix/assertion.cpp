#include "common/platform/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace ZUNO::Common::Platform {

void showAssertion(const char* text, const char* file, unsigned int line) noexcept {
    std::fprintf(stderr, "%s(%u): Assertion failed: %s\n", file, line, text);
}

void stopOnAssertion(const char* text, const char* file, unsigned int line) noexcept {
    showAssertion(text, file, line);
    std::abort();
}

} // namespace ZUNO::Common::Platform

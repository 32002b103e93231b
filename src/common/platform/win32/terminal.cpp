#include "common/platform/terminal.h"

#include <io.h>

namespace ZUNO::Common::Platform {

bool isTerminal(std::FILE* file) noexcept {
    return _isatty(_fileno(file)) != 0;
}

void printLine(const char* begin, const char* text) noexcept {
    std::printf("%s%s\n", begin, text);
    std::fflush(stdout);
}

} // namespace ZUNO::Common::Platform

#include "common/platform/terminal.h"

#include <unistd.h>

namespace ZUNO::Common::Platform {

bool isTerminal(std::FILE* file) noexcept {
    return isatty(fileno(file)) != 0;
}

void printLine(const char* text) noexcept {
    std::printf("%s\n", text);
    std::fflush(stdout);
}

} // namespace ZUNO::Common::Platform

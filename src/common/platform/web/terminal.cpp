#include "common/platform/terminal.h"

namespace ZUNO::Common::Platform {

// A page has neither a terminal nor standard output: its host listens to log lines and reports.

bool isTerminal(std::FILE*) noexcept {
    return false;
}

void printLine(const char*, const char*) noexcept {}

} // namespace ZUNO::Common::Platform

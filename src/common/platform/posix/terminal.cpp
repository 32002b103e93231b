#include "common/platform/terminal.h"

#include <unistd.h>

namespace ZUNO::Common::Platform {

bool isTerminal(std::FILE* file) noexcept {
    return isatty(fileno(file)) != 0;
}

} // namespace ZUNO::Common::Platform

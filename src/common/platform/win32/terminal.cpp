#include "common/platform/terminal.h"

#include <io.h>

namespace ZUNO::Common::Platform {

bool isTerminal(std::FILE* file) noexcept {
    return _isatty(_fileno(file)) != 0;
}

} // namespace ZUNO::Common::Platform

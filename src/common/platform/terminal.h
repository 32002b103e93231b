#pragma once

#include <cstdio>

namespace ZUNO::Common::Platform {

/// Whether a person reads or writes there, rather than a file or another program.
bool isTerminal(std::FILE* file) noexcept;

} // namespace ZUNO::Common::Platform

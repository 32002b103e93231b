#pragma once

#include <cstdio>

namespace ZUNO::Common::Platform {

/// Whether a person reads or writes there, rather than a file or another program.
bool isTerminal(std::FILE* file) noexcept;

/// Writes a line of two parts to standard output, at once. A page has none.
void printLine(const char* begin, const char* text) noexcept;

} // namespace ZUNO::Common::Platform

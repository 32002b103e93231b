#pragma once

namespace ZUNO::Common::Platform {

/// Shows a failed check to the developer: "file(line): Assertion failed: text" on standard error
/// (on Windows also on the debugger's channel). Returns to the caller.
void showAssertion(const char* text, const char* file, unsigned int line) noexcept;

/// Hands a failed check to the platform's own assertion handler, which ends the program.
[[noreturn]] void stopOnAssertion(const char* text, const char* file, unsigned int line) noexcept;

} // namespace ZUNO::Common::Platform

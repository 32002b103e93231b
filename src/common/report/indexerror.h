#pragma once

namespace ZUNO::Common::Exceptions {

/// Throws an ArgumentOutOfRangeException for the named index or id: there is no element to go on
/// with. For templates that come before the exceptions.
[[noreturn]] void throwIndexError(const char* argumentName);

} // namespace ZUNO::Common::Exceptions

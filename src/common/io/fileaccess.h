/// How files are opened and positioned, by streams and by the callbacks of hosts.
#pragma once

#include <cstdint>

namespace ZUNO::Common::IO {

/// What a file is opened for.
enum FileAccess : std::int32_t { FACCESS_READ = 1, FACCESS_READWRITE = 2, FACCESS_WRITE = 3 };

/// What an offset counts from.
enum SeekOrigin : std::int32_t { ORIGIN_CURRENT = 1, ORIGIN_END = 2, ORIGIN_BEGIN = 3 };

} // namespace ZUNO::Common::IO

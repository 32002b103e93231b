#pragma once

#include "common/platform/files.h"

#include <algorithm>

namespace ZUNO::Common::Platform {

/// Writes what no system takes in one call, in pieces of at most 1 GiB. `write(offset, size,
/// error)` writes one and returns its bytes, or a negative number; it sets `error` when they are
/// fewer than asked. Returns the bytes written. After a piece that fell short there is no other.
template <typename Write>
std::int64_t writeInPieces(std::uint32_t size, FileError& error, Write write) {
    constexpr std::uint32_t mostAtOnce = 1U << 30U;
    error = FileError::NONE;
    std::uint32_t done = 0;
    while (done < size && error == FileError::NONE) {
        const std::int64_t written = write(done, std::min(size - done, mostAtOnce), error);
        done += static_cast<std::uint32_t>(std::max<std::int64_t>(written, 0));
    }
    return done;
}

} // namespace ZUNO::Common::Platform

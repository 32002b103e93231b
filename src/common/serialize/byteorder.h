#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>

namespace ZUNO::Common::Serialize {

/// Byte orders, as streams carry them.
struct Endian {
    static constexpr int little = 1;
    static constexpr int big = 0;
    /// Returns the marker of this machine's byte order.
    static int getSystemEncoding() {
        return std::endian::native == std::endian::little ? little : big;
    }
};

/// Turns a value's bytes round.
template <typename T>
void swapBytes(T& value) {
    auto* const first = reinterpret_cast<std::byte*>(&value);
    std::reverse(first, first + sizeof(T));
}

} // namespace ZUNO::Common::Serialize

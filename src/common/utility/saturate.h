#pragma once

#include <cstdint>
#include <limits>

namespace ZUNO::Common::Utility {

/// `value` truncated toward zero. What an int can't hold becomes the nearest one that it can;
/// NaN becomes 0.
inline std::int32_t truncateToInt(float value) {
    constexpr float limit = 2147483648.0F; // 2^31, the first float above every int
    if (value >= limit)
        return std::numeric_limits<std::int32_t>::max();
    if (value < -limit)
        return std::numeric_limits<std::int32_t>::min();
    return value == value ? static_cast<std::int32_t>(value) : 0;
}

} // namespace ZUNO::Common::Utility

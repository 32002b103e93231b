#pragma once

#include <cstdint>

namespace ZUNO::Common::Utility {

/// The number whose lowest `Bits` bits are set: 2^Bits - 1.
template <unsigned int Bits>
requires(Bits < 32) struct BitMask {
    static constexpr std::uint32_t MASK = (std::uint32_t{1} << Bits) - 1;
};

} // namespace ZUNO::Common::Utility

#pragma once

#include <bit>
#include <cstdint>

namespace ZUNO::Reference {

/// FNV-1a over 32-bit words, so that many answers can be compared to the bit at once.
class Digest {
public:
    void add(std::uint32_t word) { mHash = (mHash ^ word) * 0x100000001B3U; }
    void add(float number) { add(std::bit_cast<std::uint32_t>(number)); }
    std::uint64_t value() const { return mHash; }

private:
    std::uint64_t mHash = 0xCBF29CE484222325U;
};

} // namespace ZUNO::Reference

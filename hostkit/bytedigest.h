#pragma once

#include <cstdint>

namespace ZUNO::HostKit {

/// FNV-1a: a number for a sequence of bytes, the same on every system.
class ByteDigest {
public:
    void add(std::uint8_t byte) { mHash = (mHash ^ byte) * 0x100000001B3U; }
    std::uint64_t value() const { return mHash; }

private:
    std::uint64_t mHash = 0xCBF29CE484222325U;
};

} // namespace ZUNO::HostKit

#pragma once

#include "common/io/stream.h"
#include "common/memory/stlallocator.h"
#include "common/serialize/byteorder.h"

#include <cstring>
#include <vector>

namespace ZUNO::Common::Serialize {

/// Reads numbers from a stream through a buffer, since most are a handful of bytes. Never asks the
/// stream for bytes behind its end. Throws a SerializeException when the stream ends early.
class ByteReader {
public:
    ByteReader();

    /// Begins at the stream's position. The stream must live as long as it is read.
    void open(IO::Stream& stream);
    /// Moves the stream to where reading came.
    void close();

    /// The marker of the byte order in which numbers come; any other than `Endian::little` swaps.
    void setByteOrder(int marker) { mByteOrder = marker; }

    template <typename T>
    T get() {
        T value;
        if (mEnd - mPosition >= sizeof(T)) {
            std::memcpy(&value, mBuffer.data() + mPosition, sizeof(T));
            mPosition += sizeof(T);
        } else {
            getBytes(&value, sizeof(T));
        }
        if (mByteOrder != Endian::little)
            swapBytes(value);
        return value;
    }
    void getBytes(void* bytes, std::size_t count);
    /// Returns the next byte, which stays the next.
    std::uint8_t peek();

    /// Returns the place of the next byte in the stream.
    std::uint64_t offset() const { return mStreamOffset - (mEnd - mPosition); }
    void seekTo(std::uint64_t offset);
    /// Returns how many bytes there are from here to the stream's end.
    std::uint64_t remaining() const { return offset() < mLength ? mLength - offset() : 0; }

private:
    static constexpr std::size_t largestBuffer = 16384; ///< a shorter stream takes no more

    void refill();

    IO::Stream* mStream = nullptr;
    int mByteOrder = Endian::little;
    std::uint64_t mLength = 0;       ///< of the stream
    std::uint64_t mStreamOffset = 0; ///< where the stream stands: at the buffer's end
    std::vector<std::byte, Memory::STLAllocator<std::byte>> mBuffer;
    std::size_t mPosition = 0;
    std::size_t mEnd = 0;
};

} // namespace ZUNO::Common::Serialize

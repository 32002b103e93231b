#pragma once

#include "common/io/stream.h"
#include "common/serialize/byteorder.h"

namespace ZUNO::Common::Serialize {

/// Writes numbers to a stream, each with one call. Throws what the stream throws.
class ByteWriter {
public:
    /// `marker`: the byte order to write in; any other than `Endian::little` swaps.
    explicit ByteWriter(int marker) : mByteOrder(marker) {}

    /// The stream must live as long as it is written to.
    void open(IO::Stream& stream) { mStream = &stream; }

    template <typename T>
    void put(T value) {
        if (mByteOrder != Endian::little)
            swapBytes(value);
        mStream->write(&value, sizeof(T));
    }
    void putBytes(const void* bytes, std::size_t count) { mStream->write(bytes, count); }

private:
    IO::Stream* mStream = nullptr;
    int mByteOrder;
};

} // namespace ZUNO::Common::Serialize

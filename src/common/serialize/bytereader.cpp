#include "common/serialize/bytereader.h"

#include "common/memory/globalallocators.h"
#include "common/serialize/serializeexceptions.h"

namespace ZUNO::Common::Serialize {

ByteReader::ByteReader() : mBuffer(gStringAllocator) {}

void ByteReader::open(IO::Stream& stream) {
    mByteOrder = Endian::little;
    mPosition = mEnd = 0;
    mStreamOffset = static_cast<std::uint64_t>(stream.getPosition());
    mLength = static_cast<std::uint64_t>(std::max<std::int64_t>(stream.getLength(), 0));
    mBuffer.resize(static_cast<std::size_t>(std::min<std::uint64_t>(largestBuffer, mLength)));
    mStream = &stream;
}

void ByteReader::close() {
    if (mPosition != mEnd)
        seekTo(offset());
}

void ByteReader::refill() {
    const auto wanted =
        static_cast<std::int64_t>(std::min<std::uint64_t>(mBuffer.size(), remaining()));
    const std::int64_t length =
        wanted != 0 ? mStream->read(mBuffer.data(), static_cast<std::uint64_t>(wanted)) : 0;
    if (length <= 0 || length > wanted)
        throw new SerializeException("The stream is corrupted. It ends early");
    mStreamOffset += static_cast<std::uint64_t>(length);
    mPosition = 0;
    mEnd = static_cast<std::size_t>(length);
}

void ByteReader::getBytes(void* bytes, std::size_t count) {
    auto* destination = static_cast<std::byte*>(bytes);
    while (count != 0) {
        if (mPosition == mEnd)
            refill();
        const std::size_t taken = std::min(count, mEnd - mPosition);
        std::memcpy(destination, mBuffer.data() + mPosition, taken);
        mPosition += taken;
        destination += taken;
        count -= taken;
    }
}

std::uint8_t ByteReader::peek() {
    if (mPosition == mEnd)
        refill();
    return static_cast<std::uint8_t>(mBuffer[mPosition]);
}

void ByteReader::seekTo(std::uint64_t offset) {
    mPosition = mEnd = 0;
    mStream->seek(static_cast<std::int64_t>(offset), IO::ORIGIN_BEGIN);
    mStreamOffset = offset;
}

} // namespace ZUNO::Common::Serialize

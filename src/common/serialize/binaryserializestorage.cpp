#include "common/serialize/binaryserializestorage.h"

#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/ioexceptions.h"
#include "common/memory/objectcreation.h"
#include "common/serialize/serializeexceptions.h"

namespace ZUNO::Common::Serialize {

bool BinarySerializeStorage::BinaryPosition::operator==(const Position& other) const {
    return other.getStorageType() == STORAGE_BINARY &&
           static_cast<const BinaryPosition&>(other).mOffset == mOffset;
}

BinarySerializeStorage::BinarySerializeStorage(std::int32_t mode, int marker)
    : SerializeStorage(mode, STORAGE_BINARY), mEndiness(marker), mOut(marker),
      mInstanceNames(mAllocator), mTypeNames(mAllocator) {}

BinarySerializeStorage::~BinarySerializeStorage() {
    try {
        BinarySerializeStorage::close();
    } catch (const Exceptions::Exception* exception) {
        ZUNO_REPORT("", "The lookup tables could not be written: " << exception->getMessage());
        delete exception;
    } catch (...) {
        ZUNO_REPORT("", "The lookup tables could not be written: the stream raised what is no "
                        "exception of this library");
    }
}

void BinarySerializeStorage::open(const SharedPtr<IO::Stream>& stream) {
    close();
    requireFitFor(stream);
    mInstanceNames.clear();
    mTypeNames.clear();
    mStream = stream;
    try {
        if (getSerializeMode() == SMODE_OUTPUT)
            openOutput();
        else
            openInput();
    } catch (...) {
        mStream = nullptr; // what is no storage gets no tables
        throw;
    }
}

void BinarySerializeStorage::requireFitFor(const SharedPtr<IO::Stream>& stream) const {
    const auto require = [](bool isSo, const char* message) {
        if (!isSo)
            throw new Exceptions::ArgumentException("stream", message);
    };
    if (getSerializeMode() == SMODE_OUTPUT) {
        require(stream != nullptr && stream->canWrite(),
                "IO stream has to be writable for an output serialize stream");
        require(stream->canSeek(), "IO stream has to be seekable for an output serialize stream");
    } else {
        require(stream != nullptr && stream->canRead(),
                "IO stream has to be readable for an input serialize stream");
        require(stream->canSeek(), "IO stream has to be seekable for an input serialize stream");
    }
}

void BinarySerializeStorage::openOutput() {
    mOut.open(*mStream);
    mOut.put(static_cast<std::uint8_t>(mEndiness));
    mOut.put(formatVersion);
    mOut.put(std::uint64_t{0});
}

void BinarySerializeStorage::openInput() {
    mIn.open(*mStream);
    mEndiness = mIn.get<std::uint8_t>();
    mIn.setByteOrder(mEndiness);
    ZUNO_CHECK_AS(mEndiness == Endian::getSystemEncoding(),
                  "this->mEndiness == Endian::getSystemEncoding()",
                  "Stream stored has not the same endiness as the current system. Performance "
                  "warning, can be ignored !");
    const auto version = mIn.get<std::uint32_t>();
    if (version != formatVersion)
        throw new VersionMismatchException(
            "The input stream has a wrong version for this serialize storage. We found version '" +
                String(version) + "' but expected version '" + String(formatVersion) + "'",
            version, formatVersion);
    const auto tables = mIn.get<std::uint64_t>();
    if (tables == 0)
        throw new SerializeException("Stream is corrupted, no lookup table stored in the stream");
    const std::uint64_t firstItem = mIn.offset();
    if (tables < firstItem || tables > firstItem + mIn.remaining())
        throwCorrupted("The lookup tables lie outside the stream");
    mIn.seekTo(tables);
    mInstanceNames.read(mIn);
    mTypeNames.read(mIn);
    mIn.seekTo(firstItem);
}

void BinarySerializeStorage::close() {
    if (mStream == nullptr)
        return;
    const SharedPtr<IO::Stream> stream = mStream; // released whatever happens
    struct Release {
        SharedPtr<IO::Stream>& mStream;
        ~Release() { mStream = nullptr; }
    } const release{mStream};
    if (getSerializeMode() == SMODE_OUTPUT)
        closeOutput();
    else
        mIn.close();
}

void BinarySerializeStorage::closeOutput() {
    const std::int64_t tables = mStream->getPosition();
    if (tables < 0)
        throw new IO::IOException("BinarySerializeStorage: The stream does not tell its position");
    mInstanceNames.write(mOut);
    mTypeNames.write(mOut);
    mStream->seek(tableOffsetPlace, IO::ORIGIN_BEGIN);
    mOut.put(static_cast<std::uint64_t>(tables));
    mStream->seek(0, IO::ORIGIN_END);
}

SharedPtr<SerializeStorage::Position> BinarySerializeStorage::getPosition() {
    requireOpen();
    const std::uint64_t offset = getSerializeMode() == SMODE_INPUT
                                     ? mIn.offset()
                                     : static_cast<std::uint64_t>(mStream->getPosition());
    return SharedPtr<Position>(Memory::createManaged<BinaryPosition>(mAllocator, offset));
}

void BinarySerializeStorage::setPosition(const SharedPtr<Position>& position) {
    requireOpen();
    const bool isBinary = position != nullptr && position->getStorageType() == STORAGE_BINARY;
    if (ZUNO_CHECK_AS(isBinary, "storagePos->getStorageType() == STORAGE_BINARY",
                      "Cannot use StoragePosition from wrong type"))
        mIn.seekTo(static_cast<const BinaryPosition*>(position.get())->getOffset());
}

void BinarySerializeStorage::throwClosed() {
    throw new Exceptions::InvalidStateException("BinarySerializeStorage: There is no stream");
}

void BinarySerializeStorage::throwCorrupted(const char* what) {
    throw new SerializeException("The stream is corrupted. " + String(what));
}

} // namespace ZUNO::Common::Serialize

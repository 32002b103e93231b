#include "common/callback/callbackfilestream.h"

#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/ioexceptions.h"

namespace ZUNO::Common::Callback {

using namespace Exceptions;

CallbackFileStream::CallbackFileStream(const SharedPtr<FileIOCallback>& fileIO) : mFileIO(fileIO) {
    if (ZUNO_CHECK_AS(mFileIO != nullptr, "mFileIO != NULL",
                      "File callback cannot be a NULL pointer"))
        mHandle = mFileIO->getInvalidHandle();
}

CallbackFileStream::~CallbackFileStream() {
    CallbackFileStream::close();
}

bool CallbackFileStream::canRead() {
    return !isClosed() && (mMode == IO::FACCESS_READ || mMode == IO::FACCESS_READWRITE ||
                           mMode == IO::FACCESS_WRITE);
}

bool CallbackFileStream::canWrite() {
    return !isClosed() && (mMode == IO::FACCESS_READWRITE || mMode == IO::FACCESS_WRITE);
}

bool CallbackFileStream::canSeek() {
    return !isClosed();
}

bool CallbackFileStream::isClosed() {
    return mFileIO == nullptr || !mFileIO->isValidHandle(mHandle);
}

std::int64_t CallbackFileStream::getLength() {
    requireOpen("CallbackFileStream: Try to get length of closed stream");
    return mFileIO->getFileLength(mHandle);
}

std::int64_t CallbackFileStream::getPosition() {
    requireOpen("CallbackFileStream: Try to get position of closed stream.");
    return mFileIO->getFilePosition(mHandle);
}

const String& CallbackFileStream::getFilename() {
    requireOpen("CallbackFileStream: Try to get filename from a closed stream");
    return mFilename;
}

std::int64_t CallbackFileStream::read(void* dstBuffer, std::uint64_t numBytes) {
    requireOpen("CallbackFileStream: Cannot read on closed streams.");
    if (!canRead())
        throw new NotSupportedException(
            "CallbackFileStream: Cannot read from the file. Not opened for reading.");
    if (dstBuffer == nullptr)
        throw new ArgumentNullException(
            "dstBuffer", "CallbackFileStream: The destination buffer in a read cannot be NULL.");
    return mFileIO->readFile(dstBuffer, static_cast<std::uint32_t>(numBytes), mHandle);
}

void CallbackFileStream::write(const void* srcBuffer, std::uint64_t numBytes) {
    requireOpen("CallbackFileStream: Cannot write on closed streams.");
    if (!canWrite())
        throw new NotSupportedException(
            "CallbackFileStream: Cannot write to the file. Not opened for writing.");
    if (srcBuffer == nullptr)
        throw new ArgumentNullException(
            "srcBuffer", "CallbackFileStream: The source buffer in a write cannot be NULL.");
    const auto length = static_cast<std::uint32_t>(numBytes);
    const std::int32_t written = mFileIO->writeFile(srcBuffer, length, mHandle);
    if (static_cast<std::uint32_t>(written) == length)
        return;
    if (written == FILE_DISK_FULL)
        throw new IO::OutOfSpaceException("CallbackFileStream: Cannot write to file, disk full.");
    ZUNO_REPORT("", "Internal error: Unhandeled error condition during write.");
}

std::int64_t CallbackFileStream::seek(std::int64_t offset, IO::SeekOrigin origin) {
    requireOpen("CallbackFileStream: Cannot seek on closed streams.");
    if (!canSeek())
        throw new NotSupportedException(
            "CallbackFileStream: Cannot seek on the file. No random access to the file.");
    const std::int64_t position = mFileIO->seekFile(offset, origin, mHandle);
    if (position >= 0)
        return position;
    if (position == FILE_OUT_OF_RANGE)
        throw new ArgumentOutOfRangeException("offset",
                                              "FileStream: Offset seeks out of file range.");
    ZUNO_REPORT("", "Unhandled error condition from seekFile callback.");
    return 0;
}

void CallbackFileStream::close() {
    if (isClosed())
        return;
    mFileIO->closeFile(mHandle);
    mHandle = mFileIO->getInvalidHandle();
    mFilename.clear();
    mMode = 0;
}

void CallbackFileStream::open(const String& filename, int mode) {
    if (mFileIO == nullptr)
        throw new InvalidStateException("CallbackFileStream: There is no file callback.");
    // Closing clears mFilename, which the argument may refer to.
    const String name(filename); // NOLINT(performance-unnecessary-copy-initialization)
    close();
    // Copy the name before opening: if the copy throws, no handle leaks.
    mFilename = name;
    const std::int32_t result = mFileIO->openFile(&mHandle, name, mode);
    if (result >= 0) {
        mMode = mode;
        return;
    }
    mFilename.clear();
    // The host may have filled in a handle nonetheless, even one that denotes another open file.
    mHandle = mFileIO->getInvalidHandle();
    if (result == FILE_ACCESS_DENIED)
        throw new UnAuthorizedAccessException(
            "CallbackFileStream: Given path is a directory, or file is read-only, but an "
            "open-for-writing operation was attempted");
    if (result == FILE_NOT_FOUND)
        throw new IO::FileNotFoundException(name, mFileIO->getFullPathName(name),
                                            "CallbackFileStream: File or path not found");
    throw new IO::IOException("CallbackFileStream: Unknown file open error");
}

void CallbackFileStream::requireOpen(const char* message) {
    if (isClosed())
        throw new InvalidStateException(message);
}

} // namespace ZUNO::Common::Callback

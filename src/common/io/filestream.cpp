#include "common/io/filestream.h"

#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/filesystem.h"
#include "common/io/ioexceptions.h"
#include "common/platform/files.h"

#include <cstdio>

namespace ZUNO::Common::IO {

using namespace Exceptions;
using Platform::FileError;

namespace {

unsigned int flagsOf(FileAccess access) {
    switch (access) {
    case FACCESS_READ:
        return Platform::OPEN_READ;
    case FACCESS_READWRITE:
        return Platform::OPEN_READ | Platform::OPEN_WRITE;
    case FACCESS_WRITE:
        return Platform::OPEN_WRITE;
    }
    throw new ArgumentOutOfRangeException("fAccess", "FileStream: Unknown access mode");
}

unsigned int flagsOf(FileMode mode) {
    switch (mode) {
    case FMODE_OPEN:
        return 0;
    case FMODE_APPEND:
        return Platform::OPEN_APPEND;
    case FMODE_CREATE:
        return Platform::OPEN_CREATE | Platform::OPEN_TRUNCATE;
    case FMODE_CREATENEW:
        return Platform::OPEN_CREATE | Platform::OPEN_EXCLUSIVE;
    case FMODE_OPENORCREATE:
        return Platform::OPEN_CREATE;
    }
    throw new ArgumentOutOfRangeException("fMode", "FileStream: Unknown file open mode");
}

/// Raises or reports why a file was not opened.
void failOpen(FileError error, const String& filename) {
    switch (error) {
    case FileError::ACCESS_DENIED:
        throw new UnAuthorizedAccessException(
            "FileStream: Given path is a directory, or file is read-only, but an open-for-writing "
            "operation was attempted");
    case FileError::EXISTS:
        throw new FileExistException(filename, FileSystem::fullPathOf(filename),
                                     "FileStream: File has been opened with FMODE_CREATENEW but "
                                     "the file exists already");
    case FileError::INVALID_ARGUMENT:
        ZUNO_REPORT("", "Internal error: The combination of the flags for open() is wrong");
        break;
    case FileError::TOO_MANY_OPEN:
        throw new IOException("FileStream: No more file descriptors available");
    case FileError::NOT_FOUND:
        throw new FileNotFoundException(filename, FileSystem::fullPathOf(filename),
                                        "FileStream: File or path not found");
    default:
        ZUNO_REPORT("retVal == 0", "Internal error: Unhandled error code from open()");
    }
}

} // namespace

FileStream::FileStream(const String& filename, FileAccess fAccess, FileMode fMode) {
    FileStream::open(filename, fAccess, fMode);
}

FileStream::~FileStream() {
    FileStream::close();
}

void FileStream::open(const String& filename, FileAccess fAccess, FileMode fMode) {
    // Closing clears mFilename, which the argument may refer to.
    const String name(filename); // NOLINT(performance-unnecessary-copy-initialization)
    close();
    const unsigned int accessFlags = flagsOf(fAccess);
    const unsigned int flags = accessFlags | flagsOf(fMode);
    // Copy the name before opening: if the copy throws, no descriptor leaks.
    mFilename = name;
    int descriptor = -1;
    const FileError error = Platform::openFile(name.getConstCharPtr(), flags, descriptor);
    if (error != FileError::NONE) {
        mFilename.clear();
        failOpen(error, name);
        return;
    }
    mDescriptor = descriptor;
    mAccess = fAccess;
    mMode = fMode;
}

bool FileStream::canRead() {
    return !isClosed() && (mAccess == FACCESS_READ || mAccess == FACCESS_READWRITE);
}

bool FileStream::canWrite() {
    return !isClosed() && (mAccess == FACCESS_WRITE || mAccess == FACCESS_READWRITE);
}

std::int64_t FileStream::getLength() {
    requireOpen("FileStream: Try to get length of closed stream");
    return Platform::getFileLength(mDescriptor);
}

std::int64_t FileStream::getPosition() {
    requireOpen("FileStream: Try to get position of closed stream.");
    return Platform::seekFile(mDescriptor, 0, SEEK_CUR);
}

const String& FileStream::getFilename() {
    requireOpen("FileStream: Try to get filename from a closed stream");
    return mFilename;
}

std::int64_t FileStream::read(void* dstBuffer, std::uint64_t numBytes) {
    requireOpen("FileStream: Cannot read on closed streams.");
    if (!canRead())
        throw new NotSupportedException(
            "FileStream: Cannot read from the file. Not opened for reading.");
    if (dstBuffer == nullptr)
        throw new ArgumentNullException(
            "dstBuffer", "FileStream: The destination buffer in a read cannot be NULL.");
    const std::int64_t readBytes =
        Platform::readFile(mDescriptor, dstBuffer, static_cast<std::uint32_t>(numBytes));
    ZUNO_CHECK(readBytes >= 0, "Internal error: read should not return negative values, since all "
                               "error conditions are checked.");
    return readBytes;
}

void FileStream::write(const void* srcBuffer, std::uint64_t numBytes) {
    requireOpen("FileStream: Cannot write on closed streams.");
    if (!canWrite())
        throw new NotSupportedException(
            "FileStream: Cannot write to the file. Not opened for writing.");
    if (srcBuffer == nullptr)
        throw new ArgumentNullException("srcBuffer",
                                        "FileStream: The source buffer in a write cannot be NULL.");
    FileError error = FileError::NONE;
    const std::int64_t written =
        Platform::writeFile(mDescriptor, srcBuffer, static_cast<std::uint32_t>(numBytes), error);
    if (static_cast<std::uint64_t>(written) == numBytes)
        return;
    if (error == FileError::NO_SPACE)
        throw new OutOfSpaceException("FileStream: Cannot write to file, disk full.");
    ZUNO_REPORT("", "Internal error: Unhandeled error condition during write.");
}

std::int64_t FileStream::seek(std::int64_t offset, SeekOrigin origin) {
    requireOpen("FileStream: Cannot seek on closed streams.");
    if (!canSeek())
        throw new NotSupportedException(
            "FileStream: Cannot seek on the file. No random access to the file.");
    int base = SEEK_SET;
    switch (origin) {
    case ORIGIN_CURRENT:
        base = SEEK_CUR;
        break;
    case ORIGIN_END:
        base = SEEK_END;
        break;
    case ORIGIN_BEGIN:
        break;
    default:
        throw new ArgumentOutOfRangeException("origin", "FileStream: Unknown origin '" +
                                                            String(int{origin}) + "' specified.");
    }
    const std::int64_t position = Platform::seekFile(mDescriptor, offset, base);
    if (position < 0)
        throw new ArgumentOutOfRangeException("offset",
                                              "FileStream: Offset seeks out of file range.");
    return position;
}

void FileStream::flush() {
    requireOpen("FileStream: Cannot flush on closed streams.");
    if (!Platform::commitFile(mDescriptor))
        throw new IOException("FileStream: Unknown error on flush");
}

void FileStream::close() {
    if (isClosed())
        return;
    Platform::closeFile(mDescriptor);
    mDescriptor = -1;
    mAccess = 0;
    mFilename.clear();
}

void FileStream::requireOpen(const char* message) {
    if (isClosed())
        throw new InvalidStateException(message);
}

} // namespace ZUNO::Common::IO

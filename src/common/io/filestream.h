#pragma once

#include "common/io/stream.h"

namespace ZUNO::Common::IO {

/// A file of the operating system as a stream. Errors are the exceptions that `Stream` and the
/// functions here name; a failed call leaves the stream as it was, a failed `open` leaves it
/// closed.
class FileStream : public Stream {
public:
    FileStream() = default;
    FileStream(const String& filename, FileAccess fAccess, FileMode fMode);
    /// Keeps quiet about what can't be written any more: `flush` first tells.
    ~FileStream() override;

    bool canRead() override;
    bool canWrite() override;
    bool canSeek() override { return !isClosed(); }
    bool isClosed() override { return mDescriptor < 0; }
    std::int64_t getLength() override;
    std::int64_t getPosition() override;
    const String& getFilename() override;
    /// One call of the platform's: fewer bytes than asked near the end, 0 at the end.
    std::int64_t read(void* dstBuffer, std::uint64_t numBytes) override;
    /// Raises an OutOfSpaceException when the device is full.
    void write(const void* srcBuffer, std::uint64_t numBytes) override;
    /// Raises an ArgumentOutOfRangeException for an unknown origin or a place before the file.
    std::int64_t seek(std::int64_t offset, SeekOrigin origin) override;
    /// Has everything written to the device; raises an IOException when that fails.
    void flush() override;
    void close() override;

    /// Opens a file, and closes the one that was open. Raises an ArgumentOutOfRangeException
    /// (unknown access or mode), a FileNotFoundException, a FileExistException, an
    /// UnAuthorizedAccessException (a folder, or not to be written) or an IOException.
    virtual void open(const String& filename, FileAccess fAccess, FileMode fMode);

private:
    void requireOpen(const char* message);

    std::int32_t mAccess = 0; ///< a FileAccess; 0 while closed
    std::int32_t mMode = 0;   ///< of the last successful open
    int mDescriptor = -1;     ///< negative while closed
    String mFilename;
};

} // namespace ZUNO::Common::IO

#pragma once

#include "common/callback/fileiocallback.h"
#include "common/io/stream.h"

namespace ZUNO::Common::Callback {

/// A file of the host's as a stream: hands each operation to the callback and turns its result
/// codes into exceptions. A stream without a callback can't be opened; making one is reported.
/// On a closed stream every operation that needs the file throws an InvalidStateException, and on
/// one that was opened for something else a NotSupportedException.
class CallbackFileStream : public IO::Stream {
public:
    explicit CallbackFileStream(const SharedPtr<FileIOCallback>& fileIO);
    ~CallbackFileStream() override;

    bool canRead() override;
    bool canWrite() override;
    bool canSeek() override;
    bool isClosed() override;
    std::int64_t getLength() override;
    std::int64_t getPosition() override;
    const String& getFilename() override;
    /// Returns what the callback returned, a negative result included.
    /// Throws an ArgumentNullException without a buffer.
    std::int64_t read(void* dstBuffer, std::uint64_t numBytes) override;
    /// Throws an OutOfSpaceException when the disk is full, an ArgumentNullException without a
    /// buffer. Reports every other write that fell short.
    void write(const void* srcBuffer, std::uint64_t numBytes) override;
    /// Returns the new position. Throws an ArgumentOutOfRangeException for an offset outside the
    /// file. Reports every other failure, and returns 0 then.
    std::int64_t seek(std::int64_t offset, IO::SeekOrigin origin) override;
    /// Does nothing: buffers are the host's affair, and so is what is lost in them.
    void flush() override {}
    void close() override;

    /// Closes the file that is open, and opens another for the IO::FileAccess `mode`. After a
    /// failure the stream is closed.
    /// Throws a FileNotFoundException, an UnAuthorizedAccessException (a folder, or not to be
    /// written), an IOException (anything else), or an InvalidStateException without a callback.
    virtual void open(const String& filename, int mode);

private:
    void requireOpen(const char* message);

    SharedPtr<FileIOCallback> mFileIO;
    String mFilename; ///< empty while closed
    std::int32_t mMode = 0;
    FileHandle mHandle = 0;
};

} // namespace ZUNO::Common::Callback

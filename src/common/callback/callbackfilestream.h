#pragma once

#include "common/callback/fileiocallback.h"
#include "common/io/stream.h"

namespace ZUNO::Common::Callback {

/// A file of the host's as a stream: hands each operation to the callback and turns its result
/// codes into exceptions. Without a callback (which is reported) it can't be opened.
class CallbackFileStream : public IO::Stream {
public:
    explicit CallbackFileStream(const SharedPtr<FileIOCallback>& fileIO);
    /// Closes the file.
    ~CallbackFileStream() override;

    bool canRead() override;
    bool canWrite() override;
    bool canSeek() override;
    bool isClosed() override;
    std::int64_t getLength() override;
    std::int64_t getPosition() override;
    const String& getFilename() override;
    /// Returns the callback's own result, a negative one included.
    std::int64_t read(void* dstBuffer, std::uint64_t numBytes) override;
    /// Raises an OutOfSpaceException when the disk is full; another short write is reported.
    void write(const void* srcBuffer, std::uint64_t numBytes) override;
    /// Raises an ArgumentOutOfRangeException for an offset outside the file; another failure is
    /// reported and gives 0.
    std::int64_t seek(std::int64_t offset, IO::SeekOrigin origin) override;
    /// Does nothing: buffers are the host's.
    void flush() override {}
    void close() override;

    /// Opens a file for an IO::FileAccess, and closes the one that was open.
    /// Raises a FileNotFoundException, an UnAuthorizedAccessException (a folder, or not to be
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

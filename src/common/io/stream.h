#pragma once

#include "common/basicstring.h"
#include "common/io/fileaccess.h"
#include "common/memory/memorymanaged.h"

#include <cstdint>

namespace ZUNO::Common::IO {

/// How a file is opened.
enum FileMode : std::int32_t {
    FMODE_OPEN = 1,        ///< an existing file
    FMODE_APPEND = 2,      ///< an existing file; every write goes to its end
    FMODE_CREATE = 3,      ///< a new file, or an existing one cut to length 0
    FMODE_CREATENEW = 4,   ///< a new file; an existing one is an error
    FMODE_OPENORCREATE = 5 ///< an existing file, or a new one
};

/// A sequence of bytes that is read, written or both. Readers and writers of documents take a
/// Stream and never touch files themselves. One thread at a time.
/// A closed stream raises an InvalidStateException; what its access does not allow raises a
/// NotSupportedException. The capability queries just answer false.
class Stream : public Memory::MemoryManaged {
public:
    virtual bool canRead() = 0;
    virtual bool canWrite() = 0;
    virtual bool canSeek() = 0;
    virtual bool isClosed() = 0;
    /// In bytes.
    virtual std::int64_t getLength() = 0;
    /// In bytes from the beginning.
    virtual std::int64_t getPosition() = 0;
    /// The name that the stream was opened with; valid until it is closed.
    virtual const String& getFilename() = 0;
    /// Reads up to `numBytes` (their low 32 bits) and returns how many it were.
    virtual std::int64_t read(void* dstBuffer, std::uint64_t numBytes) = 0;
    /// Writes `numBytes` (their low 32 bits).
    virtual void write(const void* srcBuffer, std::uint64_t numBytes) = 0;
    /// Moves to an offset and returns the new position.
    virtual std::int64_t seek(std::int64_t offset, SeekOrigin origin) = 0;
    virtual void flush() = 0;
    /// Does nothing on a closed stream.
    virtual void close() = 0;
};

} // namespace ZUNO::Common::IO

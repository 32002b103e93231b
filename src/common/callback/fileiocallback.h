#pragma once

#include "common/basicstring.h"
#include "common/io/fileaccess.h"

#include <cstdint>

namespace ZUNO::Common::Callback {

/// A file as the host names it. The library keeps the number and hands it back, no more.
using FileHandle = std::uint32_t;

/// Result codes of `openFile`, `writeFile` and `seekFile`. Every other negative code means an
/// error without a name.
enum FileResult : std::int32_t {
    FILE_NOT_FOUND = -1,     ///< openFile: no such file or path
    FILE_ACCESS_DENIED = -2, ///< openFile: a folder, or read-only where writing was asked for
    FILE_OUT_OF_RANGE = -4,  ///< seekFile: the offset lies outside the file
    FILE_DISK_FULL = -5      ///< writeFile: no room left
};

/// The host's files. The library opens none by itself: the host derives from this class and hands
/// an object over as `SharedPtr<FileIOCallback>`.
///
/// Uses: a world opens one file, the mesh that a start names, with FACCESS_READ. It asks for the
/// length, reads all of it by one call of `readFile`, and closes it before the start returns. A
/// host that serves nothing but worlds may therefore refuse every other access with a negative
/// code, and answer `writeFile` and `seekFile` with -1. The other functions serve streams that a
/// host or a tool opens with `CallbackFileStream`.
/// Names: zero-terminated bytes in whatever encoding the host likes. The library hands a name on
/// as it was given, and never takes it apart.
/// Failure: what a function returns then is said below. A function may also throw a pointer to an
/// exception of the library's (`throw new IOException("...")`), which reaches the caller of the
/// export; other exceptions pass through as well, and `close` works afterwards.
/// Thread: the one that calls the library. A function must not call the library's exports.
/// Lifetime: until the host and the library have both let go of it; the library does at `close`.
/// The order of the virtual functions is part of the binary interface.
class FileIOCallback {
public:
    /// Runs when the last SharedPtr to the callback goes.
    virtual ~FileIOCallback() = default;

    /// Whether the handle denotes an open file. It is asked with the invalid handle, too.
    virtual bool isValidHandle(FileHandle handle) = 0;

    /// Returns a handle that never denotes a file; always the same one.
    virtual FileHandle getInvalidHandle() = 0;

    /// Opens a file at its beginning and fills in the handle. Several may be open at a time.
    /// `mode` is an `IO::FileAccess`:
    /// - FACCESS_READ: the file must exist, and is not changed.
    /// - FACCESS_READWRITE: an existing file keeps what it holds; a missing one is created.
    /// - FACCESS_WRITE: an existing file is cut to nothing; a missing one is created. What was
    ///   written may be read back.
    /// Returns 0 or more on success, else FILE_NOT_FOUND, FILE_ACCESS_DENIED or another negative
    /// code; the handle is not looked at then. The library throws a FileNotFoundException, an
    /// UnAuthorizedAccessException and an IOException for these.
    virtual std::int32_t openFile(FileHandle* handle, const String& filename,
                                  std::int32_t mode) = 0;

    /// Closes an open file. Nothing is returned, so what was written must have arrived before.
    virtual void closeFile(FileHandle handle) = 0;

    /// Returns the length in bytes, or a negative number on failure: a mesh is then not loaded
    /// (IOException), and neither is one of 4 GiB or more.
    virtual std::int64_t getFileLength(FileHandle handle) = 0;

    /// Reads up to `numBytes` from the position on, which it moves behind them.
    /// Returns how many it were, 0 at the end of the file, or a negative number on failure. Fewer
    /// than were asked for end the reading of a mesh (IOException): there is no second call for the
    /// rest. A count above 2,147,483,647 can't be answered: give a negative number.
    virtual std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, FileHandle handle) = 0;

    /// Writes `numBytes` at the position, over what is there or behind the end, and moves it behind
    /// them.
    /// Returns `numBytes`, FILE_DISK_FULL (the library throws an OutOfSpaceException), or anything
    /// else for another failure, fewer bytes included (the library reports it). Bytes that are
    /// counted as written must not be lost by a full disk later: so don't buffer them.
    virtual std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes,
                                   FileHandle handle) = 0;

    /// Returns the position, in bytes from the beginning, or a negative number on failure.
    virtual std::int64_t getFilePosition(FileHandle handle) = 0;

    /// Moves the position to `offset` bytes from `origin`, an `IO::SeekOrigin`.
    /// Returns the new position in bytes from the beginning, or FILE_OUT_OF_RANGE (the library
    /// throws an ArgumentOutOfRangeException), or another negative code (it reports that); the
    /// position is as it was then. A place behind the end may count as one, or not.
    virtual std::int64_t seekFile(std::int64_t offset, std::int32_t origin, FileHandle handle) = 0;

    /// Returns the absolute form of a name, or the name itself where there is none. It appears in
    /// a FileNotFoundException, for people to read.
    virtual String getFullPathName(const String& filename) = 0;
};

} // namespace ZUNO::Common::Callback

#pragma once

#include "common/basicstring.h"

#include <cstdint>

namespace ZUNO::Common::Callback {

/// A file as the host names it; the library stores it and hands it back.
using FileHandle = std::uint32_t;

/// Result codes of `openFile`, `writeFile` and `seekFile`. Other negative codes are errors
/// without a meaning of their own.
enum FileResult : std::int32_t {
    FILE_NOT_FOUND = -1,     ///< openFile: no such file or path
    FILE_ACCESS_DENIED = -2, ///< openFile: a folder, or read-only where writing was asked for
    FILE_OUT_OF_RANGE = -4,  ///< seekFile: the offset lies outside the file
    FILE_DISK_FULL = -5      ///< writeFile: no room left
};

/// The host's files. The library opens none on its own behalf: the host derives from this class
/// and hands an object over as `SharedPtr<FileIOCallback>`; it is called on the thread that calls
/// the library. The order of the virtual functions is part of the binary interface.
class FileIOCallback {
public:
    /// Runs when the last SharedPtr to the callback goes.
    virtual ~FileIOCallback() = default;

    /// Whether the handle denotes an open file.
    virtual bool isValidHandle(FileHandle handle) = 0;
    /// A handle that denotes no file.
    virtual FileHandle getInvalidHandle() = 0;
    /// Opens a file and fills in the handle; `mode` is an IO::FileAccess. Returns 0 or more on
    /// success, else a negative code, and then the handle is not looked at.
    virtual std::int32_t openFile(FileHandle* handle, const String& filename,
                                  std::int32_t mode) = 0;
    /// Its result is the host's own affair: what was written must have arrived before.
    virtual void closeFile(FileHandle handle) = 0;
    /// In bytes.
    virtual std::int64_t getFileLength(FileHandle handle) = 0;
    /// Reads up to `numBytes` and returns how many it were; negative on an error.
    virtual std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, FileHandle handle) = 0;
    /// Writes `numBytes` and returns how many it were, or a negative code. Bytes that it counts as
    /// written must not be lost by a full disk later: nothing can be said of that any more.
    virtual std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes,
                                   FileHandle handle) = 0;
    /// In bytes from the beginning.
    virtual std::int64_t getFilePosition(FileHandle handle) = 0;
    /// `origin` is an IO::SeekOrigin. The new position, or a negative code.
    virtual std::int64_t seekFile(std::int64_t offset, std::int32_t origin, FileHandle handle) = 0;
    /// The absolute form of a name; it appears in error reports alone.
    virtual String getFullPathName(const String& filename) = 0;
};

} // namespace ZUNO::Common::Callback

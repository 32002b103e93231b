#pragma once

#include <cstddef>
#include <cstdint>

namespace ZUNO::Common::Platform {

/// Why a call on files or folders failed.
enum class FileError {
    NONE,
    ACCESS_DENIED, ///< also: a folder where a file is needed
    EXISTS,
    INVALID_ARGUMENT,
    TOO_MANY_OPEN,
    NOT_FOUND,
    NOT_EMPTY,
    NO_SPACE,
    OTHER
};

/// How a file is opened; bits.
enum OpenFlags : unsigned int {
    OPEN_READ = 1,
    OPEN_WRITE = 2,
    OPEN_APPEND = 4,
    OPEN_CREATE = 8,
    OPEN_TRUNCATE = 16,
    OPEN_EXCLUSIVE = 32 ///< with OPEN_CREATE: an existing file is an error
};

/// Opens a file in binary mode; other writers are kept out where the platform can do that. A new
/// file may be read and written.
FileError openFile(const char* name, unsigned int flags, int& descriptor) noexcept;
/// Returns false when the system says only now that something was not written.
bool closeFile(int descriptor) noexcept;
/// Bytes read; negative on an error.
std::int64_t readFile(int descriptor, void* buffer, std::uint32_t size) noexcept;
/// Bytes written; `error` says why they are fewer than asked. After a write that fell short there
/// is no other: at a limit of the process's it would end the process.
std::int64_t writeFile(int descriptor, const void* buffer, std::uint32_t size,
                       FileError& error) noexcept;
/// `origin` is SEEK_SET, SEEK_CUR or SEEK_END. The new position; negative on an error.
std::int64_t seekFile(int descriptor, std::int64_t offset, int origin) noexcept;
std::int64_t getFileLength(int descriptor) noexcept;
/// Has the data written to the device; false for what can't be, such as a pipe.
bool commitFile(int descriptor) noexcept;
/// May be called by a handler of signals.
bool removeFile(const char* name) noexcept;
bool isFolder(const char* name) noexcept;
/// Gives a file the permissions of another and, where this process may, its owner.
void copyAccess(const char* from, const char* to) noexcept;

/// Makes a new, empty file that no other user can have prepared or replace, and gives its name.
bool makeTemporaryFile(char* name, std::size_t size) noexcept;

/// The absolute form of a path, without "." and ".."; false when it does not fit.
bool makeFullPath(const char* path, char* buffer, std::size_t size) noexcept;

/// A path's components, zero-terminated: drive, folders with the last separator, name, and
/// extension with its dot. Both kinds of slashes separate. A component that is too long leaves all
/// of them empty.
struct PathParts {
    static constexpr std::size_t maxComponent = 256;

    char mDrive[3];
    char mDirectory[maxComponent];
    char mName[maxComponent];
    char mExtension[maxComponent];
};
void splitPath(const char* path, PathParts& parts) noexcept;

bool changeDirectory(const char* name) noexcept;
bool getCurrentDirectory(char* buffer, std::size_t size) noexcept;
FileError makeDirectory(const char* name) noexcept;
FileError removeDirectory(const char* name) noexcept;

} // namespace ZUNO::Common::Platform

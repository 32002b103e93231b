#include "common/platform/files.h"

#include "common/platform/fileerrorcode.h"
#include "common/platform/writeinpieces.h"

#include "common/platform/win32/windows.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <limits>
#include <share.h>
#include <sys/stat.h>

namespace ZUNO::Common::Platform {

namespace {

int openModeOf(unsigned int flags) noexcept {
    int mode = _O_BINARY | _O_NOINHERIT;
    const bool reads = (flags & OPEN_READ) != 0;
    const bool writes = (flags & OPEN_WRITE) != 0;
    mode |= reads && writes ? _O_RDWR : (writes ? _O_WRONLY : _O_RDONLY);
    mode |= (flags & OPEN_APPEND) != 0 ? _O_APPEND : 0;
    mode |= (flags & OPEN_CREATE) != 0 ? _O_CREAT : 0;
    mode |= (flags & OPEN_TRUNCATE) != 0 ? _O_TRUNC : 0;
    mode |= (flags & OPEN_EXCLUSIVE) != 0 ? _O_EXCL : 0;
    return mode;
}

int sizeOf(std::size_t size) noexcept {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

} // namespace

FileError openFile(const char* name, unsigned int flags, int& descriptor) noexcept {
    int opened = -1;
    const int code = _sopen_s(&opened, name, openModeOf(flags), _SH_DENYWR, _S_IREAD | _S_IWRITE);
    if (code == 0)
        descriptor = opened;
    return fileErrorOf(code);
}

bool closeFile(int descriptor) noexcept {
    return _close(descriptor) == 0;
}

std::int64_t readFile(int descriptor, void* buffer, std::uint32_t size) noexcept {
    return _read(descriptor, buffer, static_cast<unsigned int>(sizeOf(size)));
}

std::int64_t writeFile(int descriptor, const void* buffer, std::uint32_t size,
                       FileError& error) noexcept {
    const auto* const bytes = static_cast<const char*>(buffer);
    const auto writePiece = [=](std::uint32_t offset, std::uint32_t length, FileError& failure) {
        const int written = _write(descriptor, bytes + offset, length);
        if (written < 0)
            failure = fileErrorOf(errno);
        else if (static_cast<std::uint32_t>(written) < length)
            failure = FileError::NO_SPACE; // the runtime says no more of a full disk
        return std::int64_t{written};
    };
    return writeInPieces(size, error, writePiece);
}

std::int64_t seekFile(int descriptor, std::int64_t offset, int origin) noexcept {
    return _lseeki64(descriptor, offset, origin);
}

std::int64_t getFileLength(int descriptor) noexcept {
    return _filelengthi64(descriptor);
}

bool commitFile(int descriptor) noexcept {
    return _commit(descriptor) == 0;
}

bool removeFile(const char* name) noexcept {
    return std::remove(name) == 0;
}

bool isFolder(const char* name) noexcept {
    const DWORD attributes = GetFileAttributesA(name);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void copyAccess(const char*, const char*) noexcept {
    // a new file has what its folder hands down
}

bool makeTemporaryFile(char* name, std::size_t size) noexcept {
    // The name must be short: it lies in the working folder, and creating it must not find it.
    constexpr unsigned int attempts = 100;
    unsigned int number = GetCurrentProcessId() ^ (GetTickCount() << 8U);
    for (unsigned int i = 0; i < attempts; ++i, ++number) {
        const int length = std::snprintf(name, size, "zuno%08x.tmp", number);
        if (length < 0 || static_cast<std::size_t>(length) >= size)
            return false;
        int descriptor = -1;
        const FileError error =
            openFile(name, OPEN_READ | OPEN_WRITE | OPEN_CREATE | OPEN_EXCLUSIVE, descriptor);
        if (error == FileError::NONE) {
            closeFile(descriptor);
            return true;
        }
        if (error != FileError::EXISTS)
            return false;
    }
    return false;
}

bool makeFullPath(const char* path, char* buffer, std::size_t size) noexcept {
    return _fullpath(buffer, path, size) != nullptr;
}

void splitPath(const char* path, PathParts& parts) noexcept {
    _splitpath_s(path, parts.mDrive, sizeof(parts.mDrive), parts.mDirectory,
                 sizeof(parts.mDirectory), parts.mName, sizeof(parts.mName), parts.mExtension,
                 sizeof(parts.mExtension));
}

bool changeDirectory(const char* name) noexcept {
    return _chdir(name) == 0;
}

bool getCurrentDirectory(char* buffer, std::size_t size) noexcept {
    return _getcwd(buffer, sizeOf(size)) != nullptr;
}

FileError makeDirectory(const char* name) noexcept {
    return _mkdir(name) == 0 ? FileError::NONE : fileErrorOf(errno);
}

FileError removeDirectory(const char* name) noexcept {
    return _rmdir(name) == 0 ? FileError::NONE : fileErrorOf(errno);
}

} // namespace ZUNO::Common::Platform

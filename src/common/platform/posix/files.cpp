#include "common/platform/files.h"

#include "common/platform/fileerrorcode.h"
#include "common/platform/writeinpieces.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace ZUNO::Common::Platform {

namespace {

int openModeOf(unsigned int flags) noexcept {
    int mode = O_CLOEXEC;
    const bool reads = (flags & OPEN_READ) != 0;
    const bool writes = (flags & OPEN_WRITE) != 0;
    mode |= reads && writes ? O_RDWR : (writes ? O_WRONLY : O_RDONLY);
    mode |= (flags & OPEN_APPEND) != 0 ? O_APPEND : 0;
    mode |= (flags & OPEN_CREATE) != 0 ? O_CREAT : 0;
    mode |= (flags & OPEN_TRUNCATE) != 0 ? O_TRUNC : 0;
    mode |= (flags & OPEN_EXCLUSIVE) != 0 ? O_EXCL : 0;
    return mode;
}

/// Whether the device behind a file has no room left.
bool isDeviceFull(int descriptor) noexcept {
    struct statvfs status {};
    return fstatvfs(descriptor, &status) == 0 && status.f_bavail == 0;
}

bool copyTo(char* buffer, std::size_t size, std::string_view text) noexcept {
    if (text.size() >= size)
        return false;
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
    return true;
}

} // namespace

FileError openFile(const char* name, unsigned int flags, int& descriptor) noexcept {
    constexpr mode_t readAndWrite = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    const int opened = open(name, openModeOf(flags), readAndWrite);
    if (opened < 0)
        return fileErrorOf(errno);
    struct stat status {};
    if (fstat(opened, &status) == 0 && S_ISDIR(status.st_mode)) {
        close(opened);
        return FileError::ACCESS_DENIED;
    }
    descriptor = opened;
    return FileError::NONE;
}

bool closeFile(int descriptor) noexcept {
    return close(descriptor) == 0;
}

std::int64_t readFile(int descriptor, void* buffer, std::uint32_t size) noexcept {
    return read(descriptor, buffer, size);
}

std::int64_t writeFile(int descriptor, const void* buffer, std::uint32_t size,
                       FileError& error) noexcept {
    const auto* const bytes = static_cast<const char*>(buffer);
    const auto writePiece = [=](std::uint32_t offset, std::uint32_t length, FileError& failure) {
        const ssize_t written = write(descriptor, bytes + offset, length);
        if (written < 0)
            failure = fileErrorOf(errno);
        else if (static_cast<std::uint32_t>(written) < length)
            failure = isDeviceFull(descriptor) ? FileError::NO_SPACE : FileError::OTHER;
        return std::int64_t{written};
    };
    return writeInPieces(size, error, writePiece);
}

std::int64_t seekFile(int descriptor, std::int64_t offset, int origin) noexcept {
    return lseek(descriptor, static_cast<off_t>(offset), origin);
}

std::int64_t getFileLength(int descriptor) noexcept {
    struct stat status {};
    return fstat(descriptor, &status) == 0 ? std::int64_t{status.st_size} : -1;
}

bool commitFile(int descriptor) noexcept {
    return fsync(descriptor) == 0;
}

bool removeFile(const char* name) noexcept {
    return unlink(name) == 0;
}

bool isFolder(const char* name) noexcept {
    struct stat status {};
    return stat(name, &status) == 0 && S_ISDIR(status.st_mode);
}

void copyAccess(const char* from, const char* to) noexcept {
    struct stat status {};
    if (stat(from, &status) != 0)
        return;
    // the owner first: a change of owner takes permissions away
    if (chown(to, status.st_uid, status.st_gid) != 0)
        errno = 0; // it stays with whoever runs this
    chmod(to, status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO));
}

bool makeTemporaryFile(char* name, std::size_t size) noexcept {
    if (!copyTo(name, size, "/tmp/zunoXXXXXX"))
        return false;
    const int descriptor = mkstemp(name);
    if (descriptor < 0)
        return false;
    close(descriptor);
    return true;
}

bool makeFullPath(const char* path, char* buffer, std::size_t size) noexcept {
    char whole[4096];
    int length = 0;
    if (path[0] == '/') {
        length = std::snprintf(whole, sizeof(whole), "%s", path);
    } else {
        char folder[4096];
        if (getcwd(folder, sizeof(folder)) == nullptr)
            return false;
        length = std::snprintf(whole, sizeof(whole), "%s/%s", folder, path);
    }
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof(whole))
        return false;
    std::size_t end = 0; // of what is kept, in place
    const auto total = static_cast<std::size_t>(length);
    for (std::size_t from = 0; from < total;) {
        std::size_t to = from;
        while (to < total && whole[to] != '/')
            ++to;
        const std::string_view name(whole + from, to - from);
        if (name == "..") {
            while (end != 0 && whole[--end] != '/') {
            }
        } else if (!name.empty() && name != ".") {
            whole[end++] = '/';
            std::memmove(whole + end, name.data(), name.size());
            end += name.size();
        }
        from = to + 1;
    }
    return copyTo(buffer, size, end != 0 ? std::string_view(whole, end) : std::string_view("/"));
}

void splitPath(const char* path, PathParts& parts) noexcept {
    std::string_view rest(path);
    std::string_view drive;
    if (rest.size() >= 2 && rest[1] == ':') {
        drive = rest.substr(0, 2);
        rest.remove_prefix(2);
    }
    const std::size_t separator = rest.find_last_of("/\\");
    const std::size_t nameBegin = separator == std::string_view::npos ? 0 : separator + 1;
    const std::string_view file = rest.substr(nameBegin);
    const std::size_t dot = file.rfind('.');
    const std::string_view name = file.substr(0, dot);
    const std::string_view extension =
        dot == std::string_view::npos ? std::string_view() : file.substr(dot);
    const bool isWhole =
        copyTo(parts.mDrive, sizeof(parts.mDrive), drive) &&
        copyTo(parts.mDirectory, sizeof(parts.mDirectory), rest.substr(0, nameBegin)) &&
        copyTo(parts.mName, sizeof(parts.mName), name) &&
        copyTo(parts.mExtension, sizeof(parts.mExtension), extension);
    if (!isWhole)
        parts.mDrive[0] = parts.mDirectory[0] = parts.mName[0] = parts.mExtension[0] = '\0';
}

bool changeDirectory(const char* name) noexcept {
    return chdir(name) == 0;
}

bool getCurrentDirectory(char* buffer, std::size_t size) noexcept {
    return getcwd(buffer, size) != nullptr;
}

FileError makeDirectory(const char* name) noexcept {
    return mkdir(name, S_IRWXU | S_IRWXG | S_IRWXO) == 0 ? FileError::NONE : fileErrorOf(errno);
}

FileError removeDirectory(const char* name) noexcept {
    if (rmdir(name) == 0)
        return FileError::NONE;
    const int code = errno;
    struct stat status {};
    if (code == ENOTDIR && lstat(name, &status) == 0) // it is there, and no folder itself
        return FileError::OTHER;
    return code == EEXIST ? FileError::NOT_EMPTY : fileErrorOf(code);
}

} // namespace ZUNO::Common::Platform

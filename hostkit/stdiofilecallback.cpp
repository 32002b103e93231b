#include "hostkit/stdiofilecallback.h"

#include "common/io/stream.h"
#include "common/platform/largefile.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace ZUNO::HostKit {

namespace fs = std::filesystem;
using namespace Common::Callback;
using Common::Platform::tellFile;

namespace {

constexpr std::int32_t otherError = -3;

std::int32_t resultOf(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return FILE_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR:
    case EROFS:
        return FILE_ACCESS_DENIED;
    default:
        return otherError;
    }
}

/// Whether a write failed for want of room: on the disk, in a quota, or below a limit.
bool isOutOfSpace(int error) {
#ifdef EDQUOT
    if (error == EDQUOT)
        return true;
#endif
    return error == ENOSPC || error == EFBIG;
}

/// Reading and writing keeps what an existing file holds; writing alone begins anew.
std::FILE* openAs(const fs::path& name, std::int32_t mode) {
    using Common::Platform::openFile;
    if (mode == Common::IO::FACCESS_READ)
        return openFile(name, "rb");
    if (mode == Common::IO::FACCESS_WRITE)
        return openFile(name, "w+b");
    std::FILE* const existing = openFile(name, "r+b");
    return existing != nullptr || errno != ENOENT ? existing : openFile(name, "w+b");
}

} // namespace

StdioFileCallback::StdioFileCallback(const fs::path& baseFolder, NameEncoding encoding)
    : mEncoding(encoding), mBaseFolder(fs::weakly_canonical(fs::absolute(baseFolder))) {}

StdioFileCallback::~StdioFileCallback() {
    for (const auto& [handle, open] : mFiles)
        close(open.mFile);
}

std::optional<fs::path> StdioFileCallback::locate(const String& filename) const {
    fs::path name;
    try {
        name = pathOf(filename.getConstCharPtr(), mEncoding);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    std::error_code error;
    if (mBaseFolder.empty())
        return name;
    const fs::path path = fs::weakly_canonical(mBaseFolder / name, error);
    if (error)
        return std::nullopt;
    const auto ends =
        std::mismatch(mBaseFolder.begin(), mBaseFolder.end(), path.begin(), path.end());
    if (ends.first != mBaseFolder.end())
        return std::nullopt;
    return path;
}

std::FILE* StdioFileCallback::find(Handle handle) const {
    const auto place = mFiles.find(handle);
    return place != mFiles.end() ? place->second.mFile : nullptr;
}

void StdioFileCallback::close(std::FILE* file) {
    if (std::fclose(file) != 0)
        ++mCloseFailures;
}

/// The C library wants a file positioned between reading and writing.
void StdioFileCallback::turn(OpenFile& file, bool toWriting) {
    if (toWriting ? file.mWasRead : file.mWasWritten)
        Common::Platform::seekFile(file.mFile, 0, SEEK_CUR);
    file.mWasRead = !toWriting;
    file.mWasWritten = toWriting;
}

std::int32_t StdioFileCallback::openFile(Handle* handle, const String& filename,
                                         std::int32_t mode) {
    const std::optional<fs::path> path = locate(filename);
    if (!path)
        return FILE_NOT_FOUND;
    std::error_code error;
    if (fs::is_directory(*path, error))
        return FILE_ACCESS_DENIED;
    const auto entry = mFiles.try_emplace(mLastHandle + 1).first; // may throw: nothing is open yet
    errno = 0;
    std::FILE* const file = openAs(*path, mode);
    if (file == nullptr) {
        const std::int32_t result = resultOf(errno);
        mFiles.erase(entry);
        return result;
    }
    if (mode != Common::IO::FACCESS_READ)
        std::setvbuf(file, nullptr, _IONBF, 0);
    entry->second.mFile = file;
    *handle = ++mLastHandle;
    return 0;
}

void StdioFileCallback::closeFile(Handle handle) {
    if (std::FILE* const file = find(handle); file != nullptr) {
        close(file);
        mFiles.erase(handle);
    }
}

std::int64_t StdioFileCallback::getFileLength(Handle handle) {
    std::FILE* const file = find(handle);
    if (file == nullptr)
        return -1;
    const std::int64_t position = tellFile(file);
    if (position < 0 || !Common::Platform::seekFile(file, 0, SEEK_END))
        return -1;
    const std::int64_t length = tellFile(file);
    return Common::Platform::seekFile(file, position, SEEK_SET) ? length : -1;
}

std::int32_t StdioFileCallback::readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) {
    std::FILE* const file = find(handle);
    if (file == nullptr || numBytes > std::uint32_t{std::numeric_limits<std::int32_t>::max()})
        return -1;
    turn(mFiles[handle], false);
    const std::size_t count = std::fread(dstBuffer, 1, numBytes, file);
    mBytesRead += count;
    return std::ferror(file) != 0 ? -1 : static_cast<std::int32_t>(count);
}

std::int32_t StdioFileCallback::writeFile(const void* srcBuffer, std::uint32_t numBytes,
                                          Handle handle) {
    std::FILE* const file = find(handle);
    if (file == nullptr || numBytes > std::uint32_t{std::numeric_limits<std::int32_t>::max()})
        return -1;
    turn(mFiles[handle], true);
    errno = 0;
    const std::size_t count = std::fwrite(srcBuffer, 1, numBytes, file);
    return count < numBytes && isOutOfSpace(errno) ? std::int32_t{FILE_DISK_FULL}
                                                   : static_cast<std::int32_t>(count);
}

std::int64_t StdioFileCallback::getFilePosition(Handle handle) {
    std::FILE* const file = find(handle);
    return file != nullptr ? tellFile(file) : -1;
}

std::int64_t StdioFileCallback::seekFile(std::int64_t offset, std::int32_t origin, Handle handle) {
    std::FILE* const file = find(handle);
    if (file == nullptr)
        return -1;
    const int base = origin == Common::IO::ORIGIN_CURRENT ? SEEK_CUR
                     : origin == Common::IO::ORIGIN_END   ? SEEK_END
                                                          : SEEK_SET;
    return Common::Platform::seekFile(file, offset, base) ? tellFile(file)
                                                          : std::int64_t{FILE_OUT_OF_RANGE};
}

Common::String StdioFileCallback::getFullPathName(const String& filename) {
    std::error_code error;
    const fs::path name(filename.getConstCharPtr());
    const fs::path path = fs::absolute(mBaseFolder / name, error).lexically_normal();
    return error ? filename : String(path.string().c_str());
}

} // namespace ZUNO::HostKit

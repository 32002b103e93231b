#pragma once

#include "common/callback/fileiocallback.h"
#include "hostkit/filenames.h"

#include <cstdio>
#include <map>
#include <optional>

namespace ZUNO::HostKit {

/// Host files over the C library: of any length, with the result codes that the library expects.
/// With a base folder, names are relative to it and can't leave it, not by "..", not by absolute
/// names, and not through links: such a file is not found.
/// What is written goes to the system at once, without a buffer: bytes that `writeFile` counts are
/// with the system, and a full disk is said when it happens.
/// Thread: one at a time.
class StdioFileCallback : public Common::Callback::FileIOCallback {
public:
    explicit StdioFileCallback(NameEncoding encoding = NameEncoding::SYSTEM)
        : mEncoding(encoding) {}
    explicit StdioFileCallback(const std::filesystem::path& baseFolder,
                               NameEncoding encoding = NameEncoding::SYSTEM);
    ~StdioFileCallback() override;
    StdioFileCallback(const StdioFileCallback&) = delete;
    StdioFileCallback& operator=(const StdioFileCallback&) = delete;

    using Handle = Common::Callback::FileHandle;
    using String = Common::String;

    bool isValidHandle(Handle handle) override { return mFiles.contains(handle); }
    Handle getInvalidHandle() override { return 0; }
    std::int32_t openFile(Handle* handle, const String& filename, std::int32_t mode) override;
    void closeFile(Handle handle) override;
    std::int64_t getFileLength(Handle handle) override;
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override;
    /// Reports FILE_DISK_FULL when the disk, a quota or a limit leaves no room; -1 for more than
    /// 2 GiB - 1, of which nothing is written.
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle handle) override;
    std::int64_t getFilePosition(Handle handle) override;
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override;
    String getFullPathName(const String& filename) override;

    /// Bytes read so far, by all files.
    std::uint64_t bytesRead() const { return mBytesRead; }
    /// How many files could not be closed properly so far: what the system took for one of them may
    /// be lost. The library doesn't learn of it, so a host that saves looks here afterwards.
    std::uint64_t closeFailures() const { return mCloseFailures; }

private:
    struct OpenFile {
        std::FILE* mFile = nullptr;
        bool mWasRead = false; ///< since it was last positioned; a write needs that in between
        bool mWasWritten = false;
    };

    static void turn(OpenFile& file, bool toWriting);
    /// Where the named file lies; nothing when that is outside the base folder or is no name.
    std::optional<std::filesystem::path> locate(const String& filename) const;
    std::FILE* find(Handle handle) const;
    void close(std::FILE* file);

    NameEncoding mEncoding = NameEncoding::SYSTEM;
    std::filesystem::path mBaseFolder; ///< absolute, without links; empty: no limit
    std::map<Handle, OpenFile> mFiles;
    Handle mLastHandle = 0;
    std::uint64_t mBytesRead = 0;
    std::uint64_t mCloseFailures = 0;
};

} // namespace ZUNO::HostKit

#pragma once

#include "common/callback/fileiocallback.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>

namespace ZUNO::HostKit {

/// Host files over the C library: of any length, with the result codes that the library expects.
/// With a base folder, names are relative to it and can't leave it, not by "..", not by absolute
/// names, and not through links: such a file is not found. One thread at a time.
class StdioFileCallback : public Common::Callback::FileIOCallback {
public:
    StdioFileCallback() = default;
    explicit StdioFileCallback(const std::filesystem::path& baseFolder);
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
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle handle) override;
    std::int64_t getFilePosition(Handle handle) override;
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override;
    String getFullPathName(const String& filename) override;

    /// Bytes read so far, by all files.
    std::uint64_t bytesRead() const { return mBytesRead; }

private:
    /// Where the named file lies; nothing when that is outside the base folder.
    std::optional<std::filesystem::path> locate(const String& filename) const;
    std::FILE* find(Handle handle) const;

    std::filesystem::path mBaseFolder; ///< absolute, without links; empty: no limit
    std::map<Handle, std::FILE*> mFiles;
    Handle mLastHandle = 0;
    std::uint64_t mBytesRead = 0;
};

} // namespace ZUNO::HostKit

#pragma once

#include "common/callback/fileiocallback.h"

#include <map>
#include <string>

namespace ZUNO::HostKit {

/// Host files that lie in memory, for hosts that have a mesh in an archive, in a page, or in a
/// test. Opening behaves as that of files on a disk: to read needs the file, to write begins it
/// anew, to read and write keeps what is there. Handles that were closed are used again.
/// Thread: one at a time.
class MemoryFileCallback : public Common::Callback::FileIOCallback {
public:
    MemoryFileCallback() = default;
    /// With one file.
    MemoryFileCallback(const std::string& name, const std::string& content) {
        mFiles[name] = content;
    }

    using Handle = Common::Callback::FileHandle;
    using String = Common::String;

    bool isValidHandle(Handle handle) override { return mOpen.contains(handle); }
    Handle getInvalidHandle() override { return 0; }
    std::int32_t openFile(Handle* handle, const String& filename, std::int32_t mode) override;
    void closeFile(Handle handle) override { mOpen.erase(handle); }
    std::int64_t getFileLength(Handle handle) override;
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override;
    /// Reports FILE_DISK_FULL when there is no memory for so much.
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle handle) override;
    std::int64_t getFilePosition(Handle handle) override;
    /// Reports FILE_OUT_OF_RANGE for a place before the file's beginning or behind its end.
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override;
    String getFullPathName(const String& filename) override { return filename; }

    /// How many files are open.
    std::size_t openCount() const { return mOpen.size(); }
    /// Forgets what is open, as a host does that has lost its files.
    void closeAll() { mOpen.clear(); }

    std::map<std::string, std::string> mFiles; ///< names and contents, the host's to change

private:
    struct OpenFile {
        std::string mName;
        std::size_t mPosition = 0;
    };

    /// The content of an open file, with its position; null when it isn't open or is gone.
    std::string* find(Handle handle, std::size_t*& position);

    std::map<Handle, OpenFile> mOpen;
};

} // namespace ZUNO::HostKit

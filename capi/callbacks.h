/// The host's functions as the objects that the library asks.
#pragma once

#include "capi/zuno.h"
#include "common/callback/fileiocallback.h"
#include "hostkit/heapmemorycallback.h"

#include <map>
#include <string>

namespace ZUNO::CInterface {

/// The host's memory, counted. Thread: that of the exports.
class HostMemory : public Common::Callback::MemoryCallback {
public:
    explicit HostMemory(const zuno_memory_functions& functions) : mFunctions(functions) {}

    void* allocateMemory(unsigned int size) override;
    void freeMemory(void* ptr) override;

    const HostKit::MemoryFigures& figures() const { return mFigures; }

private:
    zuno_memory_functions mFunctions;
    HostKit::MemoryFigures mFigures;
    std::unordered_map<void*, unsigned int> mSizes; ///< of the outstanding blocks
};

/// The host's files, to read. A handle is a name and a position. Thread: that of the exports.
class HostFiles : public Common::Callback::FileIOCallback {
public:
    explicit HostFiles(const zuno_file_functions& functions) : mFunctions(functions) {}

    using Handle = Common::Callback::FileHandle;
    using String = Common::String;

    bool isValidHandle(Handle handle) override { return mOpen.contains(handle); }
    Handle getInvalidHandle() override { return 0; }
    std::int32_t openFile(Handle* handle, const String& filename, std::int32_t mode) override;
    void closeFile(Handle handle) override { mOpen.erase(handle); }
    std::int64_t getFileLength(Handle handle) override;
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override;
    std::int32_t writeFile(const void*, std::uint32_t, Handle) override { return -1; }
    std::int64_t getFilePosition(Handle handle) override;
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override;
    String getFullPathName(const String& filename) override { return filename; }

private:
    struct OpenFile {
        std::string mName;
        std::int64_t mLength;
        std::int64_t mPosition = 0;
    };

    OpenFile* find(Handle handle);

    zuno_file_functions mFunctions;
    std::map<Handle, OpenFile> mOpen;
    Handle mLast = 0;
};

} // namespace ZUNO::CInterface

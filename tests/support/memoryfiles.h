#pragma once

#include "hostkit/memoryfilecallback.h"

namespace ZUNO::Tests {

/// Host files in memory, with knobs for failing.
class MemoryFiles : public HostKit::MemoryFileCallback {
    using Base = HostKit::MemoryFileCallback;

public:
    std::int32_t openFile(Handle* handle, const String& filename, std::int32_t mode) override {
        if (mOpenResult >= 0)
            return Base::openFile(handle, filename, mode);
        if (mHandleOnFailure != 0)
            *handle = mHandleOnFailure;
        return mOpenResult;
    }
    std::int64_t getFileLength(Handle handle) override {
        return mLength != noLength ? mLength : Base::getFileLength(handle);
    }
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override {
        return mReadResult != noResult ? mReadResult : Base::readFile(dstBuffer, numBytes, handle);
    }
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle handle) override {
        return mWriteResult != noResult ? mWriteResult
                                        : Base::writeFile(srcBuffer, numBytes, handle);
    }
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override {
        return mSeekResult != noResult ? mSeekResult : Base::seekFile(offset, origin, handle);
    }
    String getFullPathName(const String& filename) override { return "/full/" + filename; }

    static constexpr std::int32_t noResult = 12345;
    static constexpr std::int64_t noLength = -12345;

    std::int32_t mOpenResult = 0;
    Handle mHandleOnFailure = 0; ///< what a failing `openFile` fills in; 0: nothing
    std::int64_t mLength = noLength;
    std::int32_t mReadResult = noResult;
    std::int32_t mWriteResult = noResult;
    std::int32_t mSeekResult = noResult;
};

} // namespace ZUNO::Tests

#pragma once

#include "common/callback/fileiocallback.h"
#include "common/io/stream.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace ZUNO::Tools {

/// One file in memory, whatever name it is opened by; opened once at a time.
class MemoryFileCallback : public Common::Callback::FileIOCallback {
public:
    explicit MemoryFileCallback(const std::string& content = {}) : mContent(content) {}
    const std::string& content() const { return mContent; }

    using Handle = Common::Callback::FileHandle;

    bool isValidHandle(Handle handle) override { return mIsOpen && handle == openHandle; }
    Handle getInvalidHandle() override { return 0; }
    std::int32_t openFile(Handle* handle, const Common::String&, std::int32_t) override {
        *handle = openHandle;
        mIsOpen = true;
        mPosition = 0;
        return 0;
    }
    void closeFile(Handle) override { mIsOpen = false; }
    std::int64_t getFileLength(Handle) override {
        return static_cast<std::int64_t>(mContent.size());
    }
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle) override {
        const std::size_t count = std::min<std::size_t>(numBytes, mContent.size() - mPosition);
        std::memcpy(dstBuffer, mContent.data() + mPosition, count);
        mPosition += count;
        return static_cast<std::int32_t>(count);
    }
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle) override {
        mContent.replace(mPosition, numBytes, static_cast<const char*>(srcBuffer), numBytes);
        mPosition += numBytes;
        return static_cast<std::int32_t>(numBytes);
    }
    std::int64_t getFilePosition(Handle) override { return static_cast<std::int64_t>(mPosition); }
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle) override {
        const std::size_t base = origin == Common::IO::ORIGIN_END       ? mContent.size()
                                 : origin == Common::IO::ORIGIN_CURRENT ? mPosition
                                                                        : 0;
        const std::int64_t target = static_cast<std::int64_t>(base) + offset;
        if (target < 0 || target > static_cast<std::int64_t>(mContent.size()))
            return Common::Callback::FILE_OUT_OF_RANGE;
        mPosition = static_cast<std::size_t>(target);
        return target;
    }
    Common::String getFullPathName(const Common::String& filename) override { return filename; }

private:
    static constexpr Handle openHandle = 1;

    std::string mContent;
    std::size_t mPosition = 0;
    bool mIsOpen = false;
};

} // namespace ZUNO::Tools

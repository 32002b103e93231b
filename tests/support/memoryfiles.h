#pragma once

#include "common/callback/fileiocallback.h"
#include "common/io/stream.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

namespace ZUNO::Tests {

/// Host files that live in a map, with knobs for failing.
class MemoryFiles : public Common::Callback::FileIOCallback {
public:
    using Handle = Common::Callback::FileHandle;

    bool isValidHandle(Handle handle) override { return mOpen.contains(handle); }
    Handle getInvalidHandle() override { return 77; }
    std::int32_t openFile(Handle* handle, const Common::String& filename,
                          std::int32_t mode) override {
        if (mOpenResult < 0)
            return mOpenResult;
        const std::string name = filename.getConstCharPtr();
        if (mode == Common::IO::FACCESS_WRITE)
            mFiles[name] = "";
        if (!mFiles.contains(name))
            return Common::Callback::FILE_NOT_FOUND;
        *handle = 1000 + ++mOpened;
        mOpen[*handle] = {name, 0};
        return 0;
    }
    void closeFile(Handle handle) override { mOpen.erase(handle); }
    std::int64_t getFileLength(Handle handle) override {
        return mLength != noLength ? mLength : static_cast<std::int64_t>(contentOf(handle).size());
    }
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override {
        if (mReadResult != noResult)
            return mReadResult;
        auto& [name, position] = mOpen[handle];
        const std::string& content = mFiles[name];
        const std::size_t count = std::min<std::size_t>(numBytes, content.size() - position);
        std::memcpy(dstBuffer, content.data() + position, count);
        position += count;
        return static_cast<std::int32_t>(count);
    }
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle handle) override {
        if (mWriteResult != noResult)
            return mWriteResult;
        auto& [name, position] = mOpen[handle];
        std::string& content = mFiles[name];
        content.resize(std::max<std::size_t>(content.size(), position + numBytes));
        std::memcpy(content.data() + position, srcBuffer, numBytes);
        position += numBytes;
        return static_cast<std::int32_t>(numBytes);
    }
    std::int64_t getFilePosition(Handle handle) override {
        return static_cast<std::int64_t>(mOpen[handle].second);
    }
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override {
        if (mSeekResult != noResult)
            return mSeekResult;
        auto& position = mOpen[handle].second;
        const auto base = origin == Common::IO::ORIGIN_END       ? contentOf(handle).size()
                          : origin == Common::IO::ORIGIN_CURRENT ? position
                                                                 : 0;
        const std::int64_t target = static_cast<std::int64_t>(base) + offset;
        if (target < 0 || target > static_cast<std::int64_t>(contentOf(handle).size()))
            return Common::Callback::FILE_OUT_OF_RANGE;
        position = static_cast<std::size_t>(target);
        return target;
    }
    Common::String getFullPathName(const Common::String& filename) override {
        return "/full/" + filename;
    }

    std::size_t openCount() const { return mOpen.size(); }
    void closeAll() { mOpen.clear(); }

    static constexpr std::int32_t noResult = 12345;
    static constexpr std::int64_t noLength = -12345;

    std::map<std::string, std::string> mFiles;
    std::int32_t mOpenResult = 0;
    std::int64_t mLength = noLength;
    std::int32_t mReadResult = noResult;
    std::int32_t mWriteResult = noResult;
    std::int32_t mSeekResult = noResult;

private:
    const std::string& contentOf(Handle handle) { return mFiles[mOpen[handle].first]; }

    std::map<Handle, std::pair<std::string, std::size_t>> mOpen;
    unsigned int mOpened = 0;
};

} // namespace ZUNO::Tests

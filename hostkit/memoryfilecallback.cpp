#include "hostkit/memoryfilecallback.h"

#include "common/io/stream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace ZUNO::HostKit {

using namespace Common::Callback;

namespace {

constexpr std::int32_t noSuchFile = -1; ///< what calls with a wrong handle give
constexpr std::uint32_t mostBytes = std::numeric_limits<std::int32_t>::max(); ///< of one call

} // namespace

std::string* MemoryFileCallback::find(Handle handle, std::size_t*& position) {
    const auto open = mOpen.find(handle);
    if (open == mOpen.end())
        return nullptr;
    const auto file = mFiles.find(open->second.mName);
    if (file == mFiles.end())
        return nullptr;
    position = &open->second.mPosition;
    *position = std::min(*position, file->second.size()); // the host may have cut it
    return &file->second;
}

std::int32_t MemoryFileCallback::openFile(Handle* handle, const String& filename,
                                          std::int32_t mode) {
    const std::string name = filename.getConstCharPtr();
    if (mode == Common::IO::FACCESS_READ && !mFiles.contains(name))
        return FILE_NOT_FOUND;
    std::string& content = mFiles[name];
    if (mode == Common::IO::FACCESS_WRITE)
        content.clear();
    Handle free = getInvalidHandle() + 1;
    while (mOpen.contains(free))
        ++free;
    mOpen[free] = {name};
    *handle = free;
    return 0;
}

std::int64_t MemoryFileCallback::getFileLength(Handle handle) {
    std::size_t* position = nullptr;
    const std::string* const content = find(handle, position);
    return content != nullptr ? static_cast<std::int64_t>(content->size()) : noSuchFile;
}

std::int32_t MemoryFileCallback::readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) {
    std::size_t* position = nullptr;
    const std::string* const content = find(handle, position);
    if (content == nullptr)
        return noSuchFile;
    const std::size_t count =
        std::min<std::size_t>(std::min(numBytes, mostBytes), content->size() - *position);
    std::memcpy(dstBuffer, content->data() + *position, count);
    *position += count;
    return static_cast<std::int32_t>(count);
}

std::int32_t MemoryFileCallback::writeFile(const void* srcBuffer, std::uint32_t numBytes,
                                           Handle handle) {
    std::size_t* position = nullptr;
    std::string* const content = find(handle, position);
    if (content == nullptr || numBytes > mostBytes)
        return noSuchFile;
    try {
        content->replace(*position, numBytes, static_cast<const char*>(srcBuffer), numBytes);
    } catch (const std::bad_alloc&) {
        return FILE_DISK_FULL;
    }
    *position += numBytes;
    return static_cast<std::int32_t>(numBytes);
}

std::int64_t MemoryFileCallback::getFilePosition(Handle handle) {
    std::size_t* position = nullptr;
    return find(handle, position) != nullptr ? static_cast<std::int64_t>(*position) : noSuchFile;
}

std::int64_t MemoryFileCallback::seekFile(std::int64_t offset, std::int32_t origin, Handle handle) {
    std::size_t* position = nullptr;
    const std::string* const content = find(handle, position);
    if (content == nullptr)
        return noSuchFile;
    const auto size = static_cast<std::int64_t>(content->size());
    std::int64_t base = 0;
    if (origin == Common::IO::ORIGIN_END)
        base = size;
    else if (origin == Common::IO::ORIGIN_CURRENT)
        base = static_cast<std::int64_t>(*position);
    if (offset < -base || offset > size - base)
        return FILE_OUT_OF_RANGE;
    *position = static_cast<std::size_t>(base + offset);
    return base + offset;
}

} // namespace ZUNO::HostKit

#include "capi/callbacks.h"

#include "common/io/stream.h"

#include <algorithm>

namespace ZUNO::CInterface {

void* HostMemory::allocateMemory(unsigned int size) {
    ++mFigures.mAllocations;
    void* const block = mFunctions.allocate(mFunctions.user, size);
    if (block == nullptr)
        return nullptr;
    try {
        mSizes[block] = size;
    } catch (const std::bad_alloc&) {
        mFunctions.free(mFunctions.user, block);
        return nullptr;
    }
    ++mFigures.mBlocks;
    mFigures.mBytes += size;
    mFigures.mPeakBytes = std::max(mFigures.mPeakBytes, mFigures.mBytes);
    return block;
}

void HostMemory::freeMemory(void* ptr) {
    ++mFigures.mFrees;
    const auto place = mSizes.find(ptr);
    if (place == mSizes.end())
        return; // null, or a block that is not the host's
    --mFigures.mBlocks;
    mFigures.mBytes -= place->second;
    mSizes.erase(place);
    mFunctions.free(mFunctions.user, ptr);
}

HostFiles::OpenFile* HostFiles::find(Handle handle) {
    const auto place = mOpen.find(handle);
    return place != mOpen.end() ? &place->second : nullptr;
}

std::int32_t HostFiles::openFile(Handle* handle, const String& filename, std::int32_t mode) {
    if (mode != Common::IO::FACCESS_READ)
        return Common::Callback::FILE_ACCESS_DENIED;
    const std::int64_t length = mFunctions.length(mFunctions.user, filename.getConstCharPtr());
    if (length < 0)
        return static_cast<std::int32_t>(std::max<std::int64_t>(length, -3));
    mOpen[++mLast] = {filename.getConstCharPtr(), length};
    *handle = mLast;
    return 0;
}

std::int64_t HostFiles::getFileLength(Handle handle) {
    const OpenFile* const file = find(handle);
    return file != nullptr ? file->mLength : -1;
}

std::int32_t HostFiles::readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) {
    OpenFile* const file = find(handle);
    if (file == nullptr)
        return -1;
    const auto count = static_cast<std::uint32_t>(
        std::min<std::int64_t>({numBytes, file->mLength - file->mPosition, INT32_MAX}));
    if (count == 0)
        return 0;
    const std::int32_t read =
        mFunctions.read(mFunctions.user, file->mName.c_str(),
                        static_cast<std::uint64_t>(file->mPosition), dstBuffer, count);
    if (read < 0 || static_cast<std::uint32_t>(read) > count)
        return -1;
    file->mPosition += read;
    return read;
}

std::int64_t HostFiles::getFilePosition(Handle handle) {
    const OpenFile* const file = find(handle);
    return file != nullptr ? file->mPosition : -1;
}

std::int64_t HostFiles::seekFile(std::int64_t offset, std::int32_t origin, Handle handle) {
    OpenFile* const file = find(handle);
    if (file == nullptr)
        return -1;
    const std::int64_t base = origin == Common::IO::ORIGIN_END       ? file->mLength
                              : origin == Common::IO::ORIGIN_CURRENT ? file->mPosition
                                                                     : 0;
    if (offset < -base || offset > file->mLength - base)
        return Common::Callback::FILE_OUT_OF_RANGE;
    return file->mPosition = base + offset;
}

} // namespace ZUNO::CInterface

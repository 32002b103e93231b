#include "hostkit/meshfilecallback.h"

#include "common/io/stream.h"
#include "common/memory/allocator.h"
#include "navmesh/meshforms.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

namespace ZUNO::HostKit {

using namespace Common::Callback;

namespace {

constexpr std::int32_t otherError = -3;

} // namespace

MeshFileCallback::Text* MeshFileCallback::textOf(Handle handle) {
    const auto place = mTexts.find(handle);
    return place != mTexts.end() ? &place->second : nullptr;
}

/// Looks into the file by itself: what can't be opened is for the library to find out.
bool MeshFileCallback::isBinary(const String& filename) {
    Handle handle = 0;
    if (mFiles->openFile(&handle, filename, Common::IO::FACCESS_READ) < 0)
        return false;
    unsigned char first = 0xFF;
    const bool isRead = mFiles->readFile(&first, 1, handle) == 1;
    mFiles->closeFile(handle);
    return isRead && NavMesh::beginsBinaryForm(first);
}

std::int32_t MeshFileCallback::openFile(Handle* handle, const String& filename, std::int32_t mode) {
    mFailure.clear();
    std::map<Handle, Text> converted;
    if (mode == Common::IO::FACCESS_READ && isBinary(filename)) {
        try {
            converted[0].mContent = HostKit::textOf(*readMesh(filename.getConstCharPtr(), mFiles));
        } catch (const std::bad_alloc&) {
            Common::Memory::throwOutOfMemory();
        } catch (const std::runtime_error& error) {
            mFailure = error.what();
            return otherError;
        }
    }
    // the host's own file stays open too, for its handle
    const std::int32_t result = mFiles->openFile(handle, filename, mode);
    if (!converted.empty() && result >= 0) {
        auto text = converted.extract(converted.begin());
        text.key() = *handle;
        mTexts.insert(std::move(text));
    }
    return result;
}

void MeshFileCallback::closeFile(Handle handle) {
    mTexts.erase(handle);
    mFiles->closeFile(handle);
}

std::int64_t MeshFileCallback::getFileLength(Handle handle) {
    const Text* const text = textOf(handle);
    return text != nullptr ? static_cast<std::int64_t>(text->mContent.size())
                           : mFiles->getFileLength(handle);
}

std::int32_t MeshFileCallback::readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) {
    Text* const text = textOf(handle);
    if (text == nullptr)
        return mFiles->readFile(dstBuffer, numBytes, handle);
    constexpr std::size_t most = 0x7FFFFFFF;
    const std::size_t count =
        std::min({std::size_t{numBytes}, text->mContent.size() - text->mPosition, most});
    std::memcpy(dstBuffer, text->mContent.data() + text->mPosition, count);
    text->mPosition += count;
    return static_cast<std::int32_t>(count);
}

std::int64_t MeshFileCallback::getFilePosition(Handle handle) {
    const Text* const text = textOf(handle);
    return text != nullptr ? static_cast<std::int64_t>(text->mPosition)
                           : mFiles->getFilePosition(handle);
}

std::int64_t MeshFileCallback::seekFile(std::int64_t offset, std::int32_t origin, Handle handle) {
    Text* const text = textOf(handle);
    if (text == nullptr)
        return mFiles->seekFile(offset, origin, handle);
    const auto length = static_cast<std::int64_t>(text->mContent.size());
    const std::int64_t base = origin == Common::IO::ORIGIN_END ? length
                              : origin == Common::IO::ORIGIN_CURRENT
                                  ? static_cast<std::int64_t>(text->mPosition)
                                  : 0;
    if (offset < -base || offset > length - base)
        return FILE_OUT_OF_RANGE;
    text->mPosition = static_cast<std::size_t>(base + offset);
    return base + offset;
}

} // namespace ZUNO::HostKit

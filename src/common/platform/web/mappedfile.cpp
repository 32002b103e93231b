#include "common/platform/mappedfile.h"

#include "common/platform/web/pagefiles.h"

#include <exception>

namespace ZUNO::Common::Platform {

PageFiles& pageFiles() {
    static PageFiles files;
    return files;
}

namespace {

/// An open file is known by the address of its bytes, which stays while it is there.
std::vector<unsigned char>& bytesOf(std::intptr_t file) {
    return *reinterpret_cast<std::vector<unsigned char>*>(file);
}

} // namespace

MappedFile::~MappedFile() = default;

bool MappedFile::create(const std::filesystem::path& name) noexcept {
    try {
        std::vector<unsigned char>& bytes = pageFiles()[name.native()];
        bytes.clear();
        mFile = reinterpret_cast<std::intptr_t>(&bytes);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

unsigned char* MappedFile::map(std::uint64_t offset, std::size_t size) noexcept {
    unmap();
    if (mFile <= 0)
        return nullptr;
    try {
        std::vector<unsigned char>& bytes = bytesOf(mFile);
        bytes.resize(static_cast<std::size_t>(offset) + size);
        mWindow = bytes.data() + offset;
        mWindowSize = size;
    } catch (const std::exception&) {
        return nullptr;
    }
    return static_cast<unsigned char*>(mWindow);
}

void MappedFile::unmap() noexcept {
    mWindow = nullptr;
}

bool MappedFile::close(std::uint64_t length) noexcept {
    unmap();
    if (mFile <= 0)
        return false;
    bytesOf(mFile).resize(static_cast<std::size_t>(length));
    mFile = -1;
    return true;
}

} // namespace ZUNO::Common::Platform

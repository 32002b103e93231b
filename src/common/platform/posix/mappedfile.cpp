#include "common/platform/mappedfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ZUNO::Common::Platform {

MappedFile::~MappedFile() {
    unmap();
    if (mFile >= 0)
        ::close(static_cast<int>(mFile));
}

bool MappedFile::create(const std::filesystem::path& name) noexcept {
    mFile = open(name.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return mFile >= 0;
}

unsigned char* MappedFile::map(std::uint64_t offset, std::size_t size) noexcept {
    unmap();
    const int file = static_cast<int>(mFile);
    // without blocks of its own a store into the window could fail, and end the program
    if (posix_fallocate(file, static_cast<off_t>(offset), static_cast<off_t>(size)) != 0)
        return nullptr;
    void* const window =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, static_cast<off_t>(offset));
    if (window == MAP_FAILED)
        return nullptr;
    mWindow = window;
    mWindowSize = size;
    return static_cast<unsigned char*>(window);
}

void MappedFile::unmap() noexcept {
    if (mWindow != nullptr)
        munmap(mWindow, mWindowSize);
    mWindow = nullptr;
}

bool MappedFile::close(std::uint64_t length) noexcept {
    unmap();
    if (mFile < 0)
        return false;
    const int file = static_cast<int>(mFile);
    mFile = -1;
    const bool isCut = ftruncate(file, static_cast<off_t>(length)) == 0;
    return ::close(file) == 0 && isCut;
}

} // namespace ZUNO::Common::Platform

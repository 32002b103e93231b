#include "common/platform/mappedfile.h"

#include "common/platform/win32/windows.h"

namespace ZUNO::Common::Platform {

namespace {

HANDLE handleOf(std::intptr_t file) noexcept {
    return reinterpret_cast<HANDLE>(file); // NOLINT: a handle is a number
}

constexpr DWORD upper(std::uint64_t number) noexcept {
    return static_cast<DWORD>(number >> 32U);
}
constexpr DWORD lower(std::uint64_t number) noexcept {
    return static_cast<DWORD>(number & 0xFFFFFFFFU);
}

} // namespace

MappedFile::~MappedFile() {
    unmap();
    if (mFile != -1)
        CloseHandle(handleOf(mFile));
}

bool MappedFile::create(const std::filesystem::path& name) noexcept {
    const HANDLE file =
        CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    mFile = reinterpret_cast<std::intptr_t>(file);
    return file != INVALID_HANDLE_VALUE;
}

unsigned char* MappedFile::map(std::uint64_t offset, std::size_t size) noexcept {
    unmap();
    if (mFile == -1)
        return nullptr;
    const std::uint64_t end = offset + size;
    const HANDLE mapping = CreateFileMappingA(handleOf(mFile), nullptr, PAGE_READWRITE, upper(end),
                                              lower(end), nullptr); // makes the room
    if (mapping == nullptr)
        return nullptr;
    mWindow = MapViewOfFile(mapping, FILE_MAP_WRITE, upper(offset), lower(offset), size);
    CloseHandle(mapping); // the view holds it
    return static_cast<unsigned char*>(mWindow);
}

void MappedFile::unmap() noexcept {
    if (mWindow != nullptr)
        UnmapViewOfFile(mWindow);
    mWindow = nullptr;
}

bool MappedFile::close(std::uint64_t length) noexcept {
    unmap();
    if (mFile == -1)
        return false;
    const HANDLE file = handleOf(mFile);
    mFile = -1;
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(length);
    const bool isCut =
        SetFilePointerEx(file, end, nullptr, FILE_BEGIN) != FALSE && SetEndOfFile(file) != FALSE;
    return CloseHandle(file) != FALSE && isCut;
}

} // namespace ZUNO::Common::Platform

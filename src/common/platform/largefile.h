#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace ZUNO::Common::Platform {

/// As the C library's fopen, for every name that the system knows.
std::FILE* openFile(const std::filesystem::path& name, const char* mode) noexcept;
/// As the C library's fseek and ftell, for files of any length. `origin` is SEEK_SET, SEEK_CUR or
/// SEEK_END.
bool seekFile(std::FILE* file, std::int64_t offset, int origin) noexcept;
/// Negative when the position can't be told.
std::int64_t tellFile(std::FILE* file) noexcept;

} // namespace ZUNO::Common::Platform

#include "common/platform/largefile.h"

namespace ZUNO::Common::Platform {

std::FILE* openFile(const std::filesystem::path& name, const char* mode) noexcept {
    wchar_t wide[8]{};
    for (int i = 0; i < 7 && mode[i] != 0; ++i)
        wide[i] = static_cast<unsigned char>(mode[i]); // letters and signs alone
    return _wfopen(name.c_str(), wide);
}

bool seekFile(std::FILE* file, std::int64_t offset, int origin) noexcept {
    return _fseeki64(file, offset, origin) == 0;
}

std::int64_t tellFile(std::FILE* file) noexcept {
    return _ftelli64(file);
}

} // namespace ZUNO::Common::Platform

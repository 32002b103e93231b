#include "common/platform/largefile.h"

#include <sys/types.h>

namespace ZUNO::Common::Platform {

std::FILE* openFile(const std::filesystem::path& name, const char* mode) noexcept {
    return std::fopen(name.c_str(), mode);
}

bool seekFile(std::FILE* file, std::int64_t offset, int origin) noexcept {
    return fseeko(file, static_cast<off_t>(offset), origin) == 0;
}

std::int64_t tellFile(std::FILE* file) noexcept {
    return ftello(file);
}

} // namespace ZUNO::Common::Platform

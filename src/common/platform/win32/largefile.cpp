#include "common/platform/largefile.h"

namespace ZUNO::Common::Platform {

bool seekFile(std::FILE* file, std::int64_t offset, int origin) noexcept {
    return _fseeki64(file, offset, origin) == 0;
}

std::int64_t tellFile(std::FILE* file) noexcept {
    return _ftelli64(file);
}

} // namespace ZUNO::Common::Platform

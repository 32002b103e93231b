#pragma once

#include "common/platform/files.h"

#include <cerrno>

namespace ZUNO::Common::Platform {

/// What an error code of the C library means for a file.
inline FileError fileErrorOf(int code) noexcept {
    switch (code) {
    case 0:
        return FileError::NONE;
    case EACCES:
    case EPERM:
    case EISDIR:
    case EROFS:
    case EBUSY:
        return FileError::ACCESS_DENIED;
    case EEXIST:
        return FileError::EXISTS;
    case EINVAL:
        return FileError::INVALID_ARGUMENT;
    case EMFILE:
    case ENFILE:
        return FileError::TOO_MANY_OPEN;
    case ENOENT:
    case ENOTDIR: // a part of the path that should be a folder
        return FileError::NOT_FOUND;
    case ENOTEMPTY:
        return FileError::NOT_EMPTY;
    case ENOSPC:
        return FileError::NO_SPACE;
    default:
        return FileError::OTHER;
    }
}

} // namespace ZUNO::Common::Platform

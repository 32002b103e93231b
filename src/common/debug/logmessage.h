#pragma once

#include "common/basicstring.h"

#include <cstdint>

namespace ZUNO::Common::Debug {

/// Types of log messages; each is one bit of a mask.
enum LogType : std::uint32_t { DbgMsg = 1, DbgErr = 2, Message = 4, Warning = 8, Error = 16 };

inline constexpr unsigned int logTypeCount = 5;
inline constexpr std::uint32_t allLogTypes = 0xFF;

/// What a dispatcher receives.
struct LogMessage {
    std::uint32_t mType; ///< a LogType
    String mMessage;
    String mReporter; ///< the name of the reporter that logged it
    String mFunction; ///< the qualified name of the function that logged it
    String mFile;
    std::uint32_t mLine;
};

} // namespace ZUNO::Common::Debug

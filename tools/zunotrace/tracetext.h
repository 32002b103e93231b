#pragma once

#include "common/platform/tracechannel.h"

#include <string>

namespace ZUNO::Tools {

/// What a trace message says, for people.
struct TraceEntry {
    std::string mKind; ///< "error", "message", "value", or "code <n>" for others
    std::string mText;
};

/// Reads a message as hosts send them; a damaged one says so.
TraceEntry readEntry(const Common::Platform::TraceMessage& message);

} // namespace ZUNO::Tools

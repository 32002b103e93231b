// In the place of the platform's: what takes longer than most inputs do. These are the names in an
// exception's call stack, and looking for a trace viewer with every report.
#include "common/platform/stackwalker.h"
#include "common/platform/tracechannel.h"

namespace ZUNO::Common::Platform {

void walkStack(StackVisitor& visitor) {
    StackFrame frame;
    frame.mModule = "fuzzer";
    frame.mFunction = "LLVMFuzzerTestOneInput";
    visitor.visit(frame);
}

const std::uint32_t longestTraceText = 128 * 1024;

bool sendTraceMessage(std::uint32_t, const void*, std::uint32_t) noexcept {
    return false;
}

} // namespace ZUNO::Common::Platform

#include "common/debug/logreporter.h"

#include "common/debug/logmanager.h"
#include "common/memory/globalallocators.h"
#include "common/report/report.h"

namespace ZUNO::Common::Debug {

namespace {

const char* typeName(std::uint32_t type) {
    switch (type) {
    case DbgMsg:
        return "DbgMsg";
    case DbgErr:
        return "DbgErr";
    case Message:
        return "Message";
    case Warning:
        return "Warning";
    case Error:
        return "Error";
    default:
        return "UNKNOWN";
    }
}

void enable(std::uint32_t& mask, std::uint32_t bits, bool on) {
    mask = on ? mask | bits : mask & ~bits;
}

} // namespace

LogReporter::LogReporter(const String& name, LogManager* manager)
    : mName(name, gDebugAllocator), mManager(manager) {}

void LogReporter::enableLogTypes(std::uint32_t mask, bool on) {
    enable(mLogMask, mask, on);
}

void LogReporter::enableBreakTypes(std::uint32_t mask, bool on) {
    enable(mBreakMask, mask, on);
}

void LogReporter::log(std::uint32_t type, const String& message, const String& function,
                      const String& file, std::uint32_t line) {
    if ((type & mLogMask) == 0)
        return;
    mManager->dispatch(this, {type, message, mName, function, file, line});
    if ((type & mBreakMask) != 0) {
        // The text of a log break brings its own "Error Message: ", and its place is the logger's.
        ZUNO_REPORT_AT("",
                       "\nError Message: " << message << "\nLogBreak ErrorType: " << typeName(type)
                                           << "\nInstance: " << mName,
                       file.getConstCharPtr(), line);
    }
}

} // namespace ZUNO::Common::Debug

#pragma once

#include "common/debug/logmessage.h"

namespace ZUNO::Common::Debug {

class LogManager;

/// A named source of log messages. Its log mask chooses the types that it passes on; its break
/// mask those that also raise an assertion report.
class LogReporter {
public:
    LogReporter(const String& name, LogManager* manager);

    /// Passes a message of one type on to the manager; types outside the log mask are dropped.
    /// Reports types of the break mask, with the file and line that are given here.
    void log(std::uint32_t type, const String& message, const String& function, const String& file,
             std::uint32_t line);

    void setLogMask(std::uint32_t mask) { mLogMask = mask; }
    void enableLogTypes(std::uint32_t mask, bool on);
    void setBreakMask(std::uint32_t mask) { mBreakMask = mask; }
    void enableBreakTypes(std::uint32_t mask, bool on);

    const String& getName() const { return mName; }

private:
    std::uint32_t mLogMask = allLogTypes;
    std::uint32_t mBreakMask = Error;
    String mName;
    LogManager* mManager;
};

} // namespace ZUNO::Common::Debug

#pragma once

#include "common/debug/logmessage.h"

namespace ZUNO::Common::Debug {

/// Carries log messages out of the library.
class LogDispatcher {
public:
    virtual ~LogDispatcher() = default;
    virtual void dispatch(const LogMessage& message) = 0;
};

/// Writes messages to standard output and sends them to the trace viewer: DbgMsg and Message as
/// message text, all others as error text.
class TraceLogDispatcher : public LogDispatcher {
public:
    void dispatch(const LogMessage& message) override;
};

} // namespace ZUNO::Common::Debug

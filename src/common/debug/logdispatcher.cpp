#include "common/debug/logdispatcher.h"

#include "common/debug/trace.h"

#include <cstdio>

namespace ZUNO::Common::Debug {

void TraceLogDispatcher::dispatch(const LogMessage& message) {
    std::printf("Log: %s\n", message.mMessage.getConstCharPtr());
    std::fflush(stdout);
    const String line =
        "(" + message.mReporter + ") " + message.mFunction + " : " + message.mMessage;
    const bool isMessage = message.mType == DbgMsg || message.mType == Message;
    Trace::send(isMessage ? TRACE_MESSAGE : TRACE_ERROR, line.getConstCharPtr());
}

} // namespace ZUNO::Common::Debug

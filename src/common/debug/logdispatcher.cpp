#include "common/debug/logdispatcher.h"

#include "common/debug/trace.h"
#include "common/platform/terminal.h"

namespace ZUNO::Common::Debug {

void TraceLogDispatcher::dispatch(const LogMessage& message) {
    Platform::printLine("Log: ", message.mMessage.getConstCharPtr());
    const String line =
        "(" + message.mReporter + ") " + message.mFunction + " : " + message.mMessage;
    const bool isMessage = message.mType == DbgMsg || message.mType == Message;
    Trace::send(isMessage ? TRACE_MESSAGE : TRACE_ERROR, line.getConstCharPtr());
}

} // namespace ZUNO::Common::Debug

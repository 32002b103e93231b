#include "common/report/report.h"

#include "common/platform/assertion.h"
#include "common/platform/tracechannel.h"

#include <algorithm>
#include <atomic>

namespace ZUNO::Common::Debug {

namespace {

#if defined(ZUNO_REPORTS_STOP)
constexpr ReportHandler defaultHandler = [](const char* text, const char* file, unsigned int line) {
    Platform::stopOnAssertion(text, file, line);
};
#else
constexpr ReportHandler defaultHandler = Platform::showAssertion;
#endif

constinit std::atomic<ReportHandler> gReportHandler{defaultHandler};

/// Sends a report to the trace viewer, as one line.
void trace(const char* expression, const char* text, const char* file, unsigned int line) noexcept {
    ReportText entry;
    entry << "report: ";
    if (*expression != '\0')
        entry << expression << ": ";
    entry << text << " (" << file << ':' << line << ')';
    const std::size_t length =
        std::min<std::size_t>(std::strlen(entry.text()), Platform::longestTraceText);
    Platform::sendTraceMessage(Platform::traceErrorCode, entry.text(),
                               static_cast<std::uint32_t>(length + 1));
}

} // namespace

ReportHandler setReportHandler(ReportHandler handler) noexcept {
    return gReportHandler.exchange(handler != nullptr ? handler : defaultHandler);
}

void report(const char* expression, const ReportText& text, const char* file,
            unsigned int line) noexcept {
    ReportText whole;
    whole << expression << "\nError Message: " << text.text();
    trace(expression, text.text(), file, line); // first: a handler may end the program
    gReportHandler.load()(whole.text(), file, line);
}

} // namespace ZUNO::Common::Debug

#include "common/report/report.h"

#include "common/platform/assertion.h"

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

} // namespace

ReportHandler setReportHandler(ReportHandler handler) noexcept {
    return gReportHandler.exchange(handler != nullptr ? handler : defaultHandler);
}

void report(const char* expression, const ReportText& text, const char* file,
            unsigned int line) noexcept {
    ReportText whole;
    whole << expression << "\nError Message: " << text.text();
    gReportHandler.load()(whole.text(), file, line);
}

} // namespace ZUNO::Common::Debug

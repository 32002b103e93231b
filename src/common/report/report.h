/// Assertion reports: a broken rule of the program is told to the developer, and the program goes
/// on as the place that reports describes.
#pragma once

#include "common/report/reporttext.h"

namespace ZUNO::Common::Debug {

/// Receives a report: "<expression>\nError Message: <text>", the source file relative to the
/// source folder, and the line. The texts are valid during the call only. It must not throw.
using ReportHandler = void (*)(const char* text, const char* file, unsigned int line);

/// Replaces the handler of this module (null: the default again) and returns the former one.
/// The default shows the report through the platform's assertion handler and goes on; built with
/// ZUNO_REPORTS_STOP it ends the program instead.
ReportHandler setReportHandler(ReportHandler handler) noexcept;

/// Sends a report to the trace viewer, if one runs, and hands it to the handler. `expression` may
/// be empty.
void report(const char* expression, const ReportText& text, const char* file,
            unsigned int line) noexcept;

/// Reports, and yields the value of a check that failed. Inline, so that compilers see the value.
inline bool failCheck(const char* expression, const ReportText& text, const char* file,
                      unsigned int line) noexcept {
    report(expression, text, file, line);
    return false;
}

} // namespace ZUNO::Common::Debug

/// Reports on behalf of another place.
#define ZUNO_REPORT_AT(expression, message, file, line)                                            \
    ::ZUNO::Common::Debug::report(expression, ::ZUNO::Common::Debug::ReportText() << message,      \
                                  file, line)

/// Reports without a check. `message` is streamed: ZUNO_REPORT("id < n", "bad id " << id).
#define ZUNO_REPORT(expression, message) ZUNO_REPORT_AT(expression, message, __FILE__, __LINE__)

/// Yields whether `condition` holds, and reports `message` with the given expression when not:
/// if (!ZUNO_CHECK_AS(mesh != nullptr, "mesh", "there is no mesh")) return -1;
#define ZUNO_CHECK_AS(condition, expression, message)                                              \
    ((condition) ||                                                                                \
     ::ZUNO::Common::Debug::failCheck(expression, ::ZUNO::Common::Debug::ReportText() << message,  \
                                      __FILE__, __LINE__))

/// As ZUNO_CHECK_AS, with the condition's own source text as the expression.
#define ZUNO_CHECK(condition, message) ZUNO_CHECK_AS(condition, #condition, message)

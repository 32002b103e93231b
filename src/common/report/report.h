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

/// Hands a report to the handler. `expression` may be empty.
void report(const char* expression, const ReportText& text, const char* file,
            unsigned int line) noexcept;

} // namespace ZUNO::Common::Debug

/// Reports without a check. `message` is streamed: ZUNO_REPORT("id < n", "bad id " << id).
#define ZUNO_REPORT(expression, message)                                                           \
    do {                                                                                           \
        ::ZUNO::Common::Debug::ReportText zunoReportText;                                          \
        zunoReportText << message;                                                                 \
        ::ZUNO::Common::Debug::report(expression, zunoReportText, __FILE__, __LINE__);             \
    } while (false)

/// Reports `message` with the given expression when `condition` does not hold.
#define ZUNO_CHECK_AS(condition, expression, message)                                              \
    do {                                                                                           \
        if (!(condition))                                                                          \
            ZUNO_REPORT(expression, message);                                                      \
    } while (false)

/// As ZUNO_CHECK_AS, with the condition's own source text as the expression.
#define ZUNO_CHECK(condition, message) ZUNO_CHECK_AS(condition, #condition, message)

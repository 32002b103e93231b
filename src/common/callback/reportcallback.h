#pragma once

namespace ZUNO::Common::Callback {

/// Where a host has the library's reports go. The library asks the memory callback of a start
/// whether it is one of these, too; so the host's class derives from both. From then until the end
/// of `close` it gets every report of the library's, which then does not go to standard error.
/// (`Debug::setReportHandler` in a host sets the handler of the host's own copy of the foundation.)
///
/// Needs: a host compiled with run-time type information. Without it (-fno-rtti) the callback is
/// not found, and reports go to standard error as ever.
/// Thread: the one that calls the library.
/// The order of the virtual functions is part of the binary interface.
class ReportCallback {
public:
    virtual ~ReportCallback() = default;

    /// Takes a report. `text` is "expression\nError Message: what is wrong", `file` the library's
    /// source file relative to its source folder. Both are valid during the call only.
    /// It is called in the middle of the library's work, at times when memory is exhausted: it must
    /// not call the library.
    virtual void report(const char* text, const char* file, unsigned int line) noexcept = 0;
};

} // namespace ZUNO::Common::Callback

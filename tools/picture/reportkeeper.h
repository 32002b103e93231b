#pragma once

#include "common/report/report.h"

#include <cstring>
#include <string>

namespace ZUNO::Tools {

/// While it lives, reports are kept instead of shown: tools say in their own words what is wrong.
class ReportKeeper {
public:
    ReportKeeper() : mFormer(Common::Debug::setReportHandler(keep)) { last().clear(); }
    ~ReportKeeper() { Common::Debug::setReportHandler(mFormer); }
    ReportKeeper(const ReportKeeper&) = delete;
    ReportKeeper& operator=(const ReportKeeper&) = delete;

    /// What was reported last; tools show it as the reason of a failure.
    static std::string& last() {
        static std::string report;
        return report;
    }

private:
    static void keep(const char* text, const char*, unsigned int) {
        constexpr const char* mark = "Error Message: ";
        const char* const message = std::strstr(text, mark);
        last() = message != nullptr ? message + std::strlen(mark) : text;
    }

    Common::Debug::ReportHandler mFormer;
};

} // namespace ZUNO::Tools

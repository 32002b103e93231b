#pragma once

#include "common/report/report.h"

#include <string>
#include <vector>

namespace ZUNO::Tests {

/// Records the reports of this module instead of showing them.
class Reports {
public:
    struct Report {
        std::string mText;
        std::string mFile;
    };

    Reports() : mFormer(Common::Debug::setReportHandler(record)) { list().clear(); }
    ~Reports() { Common::Debug::setReportHandler(mFormer); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    /// The texts since the last call, "<expression>|<text>".
    static std::vector<std::string> take() {
        std::vector<std::string> texts;
        for (const Report& report : list()) {
            std::string text = report.mText;
            const std::string mark = "\nError Message: ";
            text.replace(text.find(mark), mark.size(), "|");
            texts.push_back(text);
        }
        list().clear();
        return texts;
    }

    static std::vector<Report>& list() {
        static std::vector<Report> reports;
        return reports;
    }

private:
    static void record(const char* text, const char* file, unsigned int) {
        list().push_back({text, file});
    }

    Common::Debug::ReportHandler mFormer;
};

using Texts = std::vector<std::string>;

} // namespace ZUNO::Tests

#include "capi/messages.h"

#include "capi/check.h"
#include "common/debug/logmanager.h"
#include "common/report/report.h"

#include <algorithm>
#include <string_view>

namespace ZUNO::CInterface::Messages {

using namespace Common;

namespace {

zuno_log theLog = nullptr;
void* theUser = nullptr;
bool theStartIsShared = false;
char theFirstReport[1024] = ""; // reports come when there is no memory, too
Debug::ReportHandler theFormerHandler = nullptr;

constexpr std::string_view messageMark = "\nError Message: ";

void takeReport(const char* text, const char* file, unsigned int line) {
    const std::string_view report = text;
    if (theStartIsShared && report.starts_with("gMemCallback == NULL\n"))
        return;
    if (theFirstReport[0] == 0) {
        const std::size_t mark = report.find(messageMark);
        const std::size_t begin = mark == std::string_view::npos ? 0 : mark + messageMark.size();
        theFirstReport[report.copy(theFirstReport, std::size(theFirstReport) - 1, begin)] = 0;
    }
    if (theLog != nullptr)
        theLog(theUser, ZUNO_LOG_REPORT, text, file, line);
    else
        theFormerHandler(text, file, line);
}

std::int32_t levelOf(std::uint32_t type) {
    switch (type) {
    case Debug::DbgMsg:
        return ZUNO_LOG_DEBUG;
    case Debug::Message:
        return ZUNO_LOG_MESSAGE;
    case Debug::Warning:
        return ZUNO_LOG_WARNING;
    default:
        return ZUNO_LOG_ERROR;
    }
}

class HostDispatcher : public Debug::LogDispatcher {
public:
    void dispatch(const Debug::LogMessage& message) override {
        if (theLog == nullptr)
            return mDefault.dispatch(message);
        theLog(theUser, levelOf(message.mType), message.mMessage.getConstCharPtr(),
               message.mFile.getConstCharPtr(), message.mLine);
    }

private:
    Debug::TraceLogDispatcher mDefault;
};

HostDispatcher theDispatcher;

} // namespace

void begin() {
    theFirstReport[0] = 0;
    if (theFormerHandler == nullptr)
        theFormerHandler = Debug::setReportHandler(takeReport);
}

std::string firstReport() {
    return theFirstReport;
}

void takeLog() {
    Debug::LogManager::getInstance()->addDispatcher(Debug::allLogTypes, &theDispatcher, true);
}

SharedStart::SharedStart() {
    theStartIsShared = true;
}

SharedStart::~SharedStart() {
    theStartIsShared = false;
}

} // namespace ZUNO::CInterface::Messages

using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_set_log(zuno_log log, void* user) {
    return inWorld(__func__, [&] {
        Messages::theLog = log;
        Messages::theUser = user;
        return ZUNO_OK;
    });
}

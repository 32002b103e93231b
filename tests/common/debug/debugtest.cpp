// Message boxes, the log, the trace channel's start.
#include "common/debug/logmanager.h"
#include "common/debug/trace.h"
#include "common/debug/xmessagebox.h"
#include "common/platform/messagebox.h"
#include "tests/support/foundation.h"

namespace ZUNO::Tests {

using namespace Common;

class DebugTest : public FoundationTest {};

TEST_F(DebugTest, MessageBoxesMapButtonsAndAnswers) {
    using namespace Debug;
    EXPECT_EQ(messageBoxStyle(MessageBoxButtons::YES_NO, MessageBoxIcon::WARNING), 0x34U);
    EXPECT_EQ(messageBoxStyle(MessageBoxButtons::YES_NO_CANCEL, MessageBoxIcon::ERROR), 0x13U);
    EXPECT_EQ(messageBoxStyle(MessageBoxButtons::OK_CANCEL, MessageBoxIcon::NONE), 0x1U);
    EXPECT_EQ(messageBoxResult(Platform::BUTTON_OK), MessageBoxResult::OK);
    EXPECT_EQ(messageBoxResult(Platform::BUTTON_YES), MessageBoxResult::YES);
    EXPECT_EQ(messageBoxResult(Platform::BUTTON_NO), MessageBoxResult::NO);
    EXPECT_EQ(messageBoxResult(Platform::BUTTON_CANCEL), MessageBoxResult::CANCEL);
    EXPECT_EQ(messageBoxResult(99), MessageBoxResult::CANCEL);
    EXPECT_EQ(Reports::take(),
              Texts{"|Some buttons have been defined, which have no assigned returnvalue"});
}

namespace {

struct Recorder : Debug::LogDispatcher {
    void dispatch(const Debug::LogMessage& message) override {
        mTexts.push_back(std::string(message.mReporter.getConstCharPtr()) + ":" +
                         message.mMessage.getConstCharPtr());
    }
    std::vector<std::string> mTexts;
};

} // namespace

TEST_F(DebugTest, LogMasksFilterAndBreak) {
    Debug::LogManager& log = *Debug::LogManager::getInstance();
    Debug::LogReporter* const reporter = log.createReporter("game");
    EXPECT_EQ(log.createReporter("game"), nullptr);
    EXPECT_EQ(log.getReporter("game"), reporter);
    EXPECT_NE(log.getReporter("Common"), nullptr);
    Recorder some;
    Recorder all;
    log.addDispatcher(0xFF, &all, true);
    log.addDispatcher(0x05, &some, false);
    const auto say = [&](std::uint32_t type, const char* text) {
        reporter->log(type, text, "f", "file", 1);
    };
    say(Debug::DbgMsg, "1");
    say(Debug::Warning, "2");
    say(Debug::Message, "3");
    EXPECT_EQ(Reports::take(), Texts{});
    say(Debug::Error, "4");
    EXPECT_EQ(Reports::list().size(), 1U);
    EXPECT_EQ(Reports::list()[0].mFile, "file") << "the logger's";
    EXPECT_EQ(Reports::list()[0].mText, "\nError Message: \nError Message: 4\nLogBreak ErrorType: "
                                        "Error\nInstance: game");
    Reports::take();
    log.enableLogTypes(Debug::Message, false);
    log.enableBreakTypes(Debug::Message, true);
    say(Debug::Message, "dropped");
    say(Debug::Message | Debug::DbgMsg, "5");
    EXPECT_NE(Reports::take()[0].find("UNKNOWN"), std::string::npos);
    EXPECT_EQ(some.mTexts, (Texts{"game:1", "game:3", "game:5", "game:5"}));
    EXPECT_EQ(all.mTexts, (Texts{"game:1", "game:2", "game:3", "game:4", "game:5", "game:5"}));
    EXPECT_EQ(Reports::list().size(), 0U);
    log.addDispatcher(Debug::Warning, &some, true);
    say(Debug::Warning, "6");
    EXPECT_EQ(some.mTexts.back(), "game:6");
    EXPECT_EQ(all.mTexts.size(), 6U) << "replaced for that type";
    log.removeDispatcher(0xFF, &all);
    log.removeDispatcher(0xFF, &some);
    say(Debug::Warning, "nobody hears");
    EXPECT_EQ(all.mTexts.size() + some.mTexts.size(), 6U + 5U);
    log.setLogMask(0x0F);
    log.setBreakMask(0xFF);
    const char* const types[] = {"DbgMsg", "DbgErr", "Message", "Warning", nullptr};
    for (unsigned int bit = 0; bit < 5; ++bit) {
        say(1U << bit, "nobody hears");
        const Texts reports = Reports::take();
        ASSERT_EQ(reports.size(), types[bit] != nullptr ? 1U : 0U) << "Errors are masked";
        EXPECT_TRUE(reports.empty() || reports[0].find(types[bit]) != std::string::npos);
    }
    log.removeReporter(reporter);
    EXPECT_EQ(log.getReporter("game"), nullptr);
    Debug::LogReporter stranger("stranger", &log);
    log.removeReporter(&stranger);
    log.removeReporter(nullptr);
    EXPECT_NE(getLogReporter(), nullptr) << "nobody was removed";
    log.removeReporter(getLogReporter());
    EXPECT_EQ(getLogReporter(), nullptr);
}

TEST_F(DebugTest, TraceReportsASecondStart) {
    Debug::Trace::init();
    EXPECT_EQ(Reports::take(), Texts{"!m_writestr|Debug::Trace is already initialised"});
}

} // namespace ZUNO::Tests

// Exceptions, reports, message boxes, log.
#include "common/debug/logmanager.h"
#include "common/debug/trace.h"
#include "common/debug/xmessagebox.h"
#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/ioexceptions.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparserexception.h"
#include "common/platform/messagebox.h"
#include "tests/support/foundation.h"

namespace ZUNO::Tests {

using namespace Common;
using Exceptions::Exception;

class DiagnosticsTest : public FoundationTest {};

namespace {

struct Tracked : Exceptions::InvalidStateException {
    explicit Tracked(int& destroyed) : InvalidStateException("tracked"), mDestroyed(destroyed) {}
    ~Tracked() override { ++mDestroyed; }
    int& mDestroyed;
};

} // namespace

TEST_F(DiagnosticsTest, ExceptionsNameThemselvesAndTheirParameters) {
    struct Case {
        void (*mThrow)();
        const char* mRaised;
    };
    const Case cases[] = {
        {[] { throw new Exception("m"); }, "Exception: m"},
        {[] { throw new Exceptions::ArgumentNullException("a", "m"); },
         "ArgumentNullException: m {ArgumentName=a}"},
        {[] { throw new Exceptions::ArgumentOutOfRangeException("a", "m"); },
         "ArgumentOutOfRangeException: m {ArgumentName=a}"},
        {[] { throw new Exceptions::UnAuthorizedAccessException("m"); },
         "UnAuthorizedAccessException: m"},
        {[] { throw new Memory::MemoryException("m"); }, "MemoryException: m"},
        {[] { throw new IO::FileExistException("f", "/f", "m"); },
         "FileExistException: m {Filename=f} {FullFilename=/f}"},
        {[] { throw new IO::DirectoryNotEmptyException("d", "m"); },
         "DirectoryNotEmptyException: m {Directory=d}"},
        {[] { throw new Parser::XML::XMLParserException("m", 3, 4); },
         "XMLParserException: m {Line=3} {Row=4}"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(raisedBy(row.mThrow), row.mRaised);
    try {
        throw new IO::FileNotFoundException("f", "/f", "m");
    } catch (IO::IOException* caught) { // by any of its bases
        delete caught;
    }
}

TEST_F(DiagnosticsTest, ReportsOfExceptionsListInnerOnesAndParameters) {
    int destroyed = 0;
    auto* const outer = new Exceptions::ArgumentException("id", "invalid id");
    EXPECT_STREQ(outer->getReport(0).getConstCharPtr(),
                 "Error: invalid id\nParameters:\n   ArgumentName: id");
    outer->setInnerException(new Tracked(destroyed));
    auto* const middle = new IO::IOException("io");
    middle->setInnerException(new Exceptions::NotSupportedException("deep"));
    outer->setInnerException(middle);
    EXPECT_EQ(destroyed, 1);
    EXPECT_STREQ(outer->getReport(0).getConstCharPtr(),
                 "Error: invalid id\nInner Exceptions:\n   IOException\n   NotSupportedException\n"
                 "Parameters:\n   ArgumentName: id");
    const std::string whole = outer->getReport(Debug::CALLSTACK_FUNCTION).getConstCharPtr();
    EXPECT_NE(whole.find("\nCallStack:\n   "), std::string::npos);
    delete outer;
}

TEST_F(DiagnosticsTest, CallStacksAreFormattedByFlags) {
    Debug::CallStack stack(gDebugAllocator);
    Debug::CallStackEntry entry(gDebugAllocator);
    entry.mFunction = "run";
    entry.mFile = "a.cpp";
    entry.mLine = 7;
    entry.mModule = "game";
    stack.append(entry);
    struct Case {
        unsigned int mFlags;
        const char* mText;
    };
    for (const Case& row : {Case{0, ""},
                            {1, "run\n   "},
                            {2, "a.cpp (7)\n   "},
                            {3, "a.cpp (7): run\n   "},
                            {8, "game\n   "},
                            {9, "game: run\n   "},
                            {11, "game, a.cpp (7): run\n   "}})
        EXPECT_STREQ(stack.format(row.mFlags).getConstCharPtr(), row.mText) << row.mFlags;
    stack.capture();
    EXPECT_FALSE(stack.entries().empty());
}

TEST_F(DiagnosticsTest, ExceptionsCanBeMadeWithoutAnyMemoryOfTheHosts) {
    mMemory->mFailingRequest = mMemory->mRequests + 1;
    mMemory->mFailsOnwards = true;
    std::vector<void*> taken; // until the object allocator has nothing more to give
    for (std::uint64_t size = 0; size < 252; size += 4)
        while (void* const block = gObjectAllocator->allocate(size))
            taken.push_back(block);
    bool isRaised = false;
    try {
        Memory::throwOutOfMemory();
    } catch (const Memory::OutOfMemoryException* exception) {
        isRaised = true;
        EXPECT_STREQ(exception->getMessage().getConstCharPtr(), "No Memory available");
        delete exception;
    }
    EXPECT_TRUE(isRaised);
    Reports::take();
    for (void* const block : taken)
        gObjectAllocator->free(block);
    mMemory->mFailingRequest = 0;
    closeLibrary(); // which reports the requests that failed: they count as outstanding
    EXPECT_EQ(Reports::take().size(), 1U);
    initLibrary(mCallback);
}

TEST_F(DiagnosticsTest, MessageBoxesMapButtonsAndAnswers) {
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

TEST_F(DiagnosticsTest, LogMasksFilterAndBreak) {
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
    log.removeDispatcher(0xFF, &all);
    log.removeDispatcher(0xFF, &some);
    say(Debug::Warning, "nobody hears");
    EXPECT_EQ(all.mTexts.size(), 6U);
    log.removeReporter(reporter);
    EXPECT_EQ(log.getReporter("game"), nullptr);
}

TEST_F(DiagnosticsTest, TraceReportsASecondStart) {
    Debug::Trace::init();
    EXPECT_EQ(Reports::take(), Texts{"!m_writestr|Debug::Trace is already initialised"});
}

} // namespace ZUNO::Tests

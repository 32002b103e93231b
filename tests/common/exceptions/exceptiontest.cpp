#include "common/debug/logmanager.h"
#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/ioexceptions.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparserexception.h"
#include "tests/support/foundation.h"
#include "tests/support/recordingallocator.h"

namespace ZUNO::Tests {

using namespace Common;
using Exceptions::Exception;

class ExceptionTest : public FoundationTest {};

namespace {

struct Tracked : Exceptions::InvalidStateException {
    explicit Tracked(int& destroyed) : InvalidStateException("tracked"), mDestroyed(destroyed) {}
    ~Tracked() override { ++mDestroyed; }
    int& mDestroyed;
};

} // namespace

TEST_F(ExceptionTest, ExceptionsNameThemselvesAndTheirParameters) {
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

TEST_F(ExceptionTest, ReportsOfExceptionsListInnerOnesAndParameters) {
    int destroyed = 0;
    auto* const outer = new Exceptions::ArgumentException("id", "invalid id");
    EXPECT_STREQ(outer->getReport(0).getConstCharPtr(),
                 "Error: invalid id\nParameters:\n   ArgumentName: id");
    outer->setInnerException(new Tracked(destroyed));
    auto* const middle = new IO::IOException("io");
    middle->setInnerException(new Exceptions::NotSupportedException("deep"));
    outer->setInnerException(middle);
    outer->setInnerException(middle); // which stays
    EXPECT_EQ(destroyed, 1);
    EXPECT_STREQ(outer->getReport(0).getConstCharPtr(),
                 "Error: invalid id\nInner Exceptions:\n   IOException\n   NotSupportedException\n"
                 "Parameters:\n   ArgumentName: id");
    const std::string whole = outer->getReport(Debug::CALLSTACK_FUNCTION).getConstCharPtr();
    EXPECT_NE(whole.find("\nCallStack:\n   "), std::string::npos);
    delete outer;
}

TEST_F(ExceptionTest, CallStacksAreFormattedByFlags) {
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
    stack.clear();
    entry.mFile.clear();
    stack.append(entry);
    EXPECT_STREQ(stack.format(11).getConstCharPtr(), "game: run\n   ") << "no file, no line";
}

TEST_F(ExceptionTest, CallStacksDrawFromTheirAllocatorAlone) {
    auto* const recording = new RecordingAllocator;
    {
        const SharedPtr<Memory::Allocator> strings = gStringAllocator;
        gStringAllocator = SharedPtr<Memory::Allocator>(recording);
        Debug::CallStack stack(strings);
        stack.capture();
        ASSERT_FALSE(stack.entries().empty());
        EXPECT_TRUE(std::string_view(stack.entries().begin()->mModule.getConstCharPtr())
                        .starts_with("unittests"));
        EXPECT_NE(Debug::LogManager::getInstance()->createReporter({"a name", strings}), nullptr);
        EXPECT_EQ(recording->mRequests, 0U);
        gStringAllocator = strings;
    }
    closeLibrary();
    delete new Exception("made while it is closed");
    EXPECT_EQ(Reports::take(), Texts{"mPtr|Try to dereference a NULL pointer"}) << "of its text";
    initLibrary(mCallback);
}

TEST_F(ExceptionTest, ReportsHaveNoLimitOfLength) {
    for (const std::size_t length : {1U, 2046U, 2047U, 2048U, 300000U}) {
        const std::string text(length, 'x');
        ZUNO_REPORT("", text.c_str() << 'y' << text.c_str());
        EXPECT_EQ(Reports::take(), Texts{"|" + text + 'y' + text});
    }
}

} // namespace ZUNO::Tests

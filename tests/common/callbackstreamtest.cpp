#include "common/callback/callbackfilestream.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"

namespace ZUNO::Tests {

using namespace Common;

class CallbackStreamTest : public FoundationTest {
protected:
    CallbackStreamTest() : mFileCallback(mFiles) {
        mFiles->mFiles["a"] = "first";
        mFiles->mFiles["b"] = "second";
    }

    MemoryFiles* mFiles = new MemoryFiles;
    SharedPtr<Callback::FileIOCallback> mFileCallback;
};

TEST_F(CallbackStreamTest, KeepsApartFilesOfHandlesThatAreUsedAgain) {
    Callback::CallbackFileStream first(mFileCallback);
    Callback::CallbackFileStream second(mFileCallback);
    first.open("a", IO::FACCESS_READ);
    first.close();
    second.open("b", IO::FACCESS_READ); // the host gives it the handle of the first
    EXPECT_TRUE(first.isClosed());
    first.close();
    EXPECT_EQ(second.getLength(), 6);
}

TEST_F(CallbackStreamTest, TakesNoHandleFromAnOpeningThatFailed) {
    Callback::CallbackFileStream good(mFileCallback);
    good.open("a", IO::FACCESS_READ);
    mFiles->mHandleOnFailure = 1; // of the file that is open
    const char* const raised[] = {"FileNotFoundException", "UnAuthorizedAccessException",
                                  "IOException"};
    for (std::int32_t result = -1; result >= -3; --result) {
        mFiles->mOpenResult = result;
        Callback::CallbackFileStream failed(mFileCallback);
        const std::string text = raisedBy([&] { failed.open("b", IO::FACCESS_READ); });
        EXPECT_EQ(text.substr(0, text.find(':')), raised[-result - 1]);
        EXPECT_TRUE(failed.isClosed());
    }
    EXPECT_EQ(good.getLength(), 5) << "nobody closed it";
}

} // namespace ZUNO::Tests

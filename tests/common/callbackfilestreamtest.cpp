#include "common/callback/callbackfilestream.h"
#include "tests/support/closedstream.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"

namespace ZUNO::Tests {

using namespace Common;
using Callback::CallbackFileStream;

class CallbackFileStreamTest : public FoundationTest {
protected:
    CallbackFileStreamTest() : mFileCallback(mFiles) {
        mFiles->mFiles["f"] = "0123456789";
        mFiles->mFiles["g"] = "second";
    }

    MemoryFiles* mFiles = new MemoryFiles;
    SharedPtr<Callback::FileIOCallback> mFileCallback;
};

TEST_F(CallbackFileStreamTest, MapsTheHostsAnswers) {
    CallbackFileStream stream(mFileCallback);
    char buffer[4];
    expectClosed(stream, "CallbackFileStream");
    stream.flush();
    stream.open("f", IO::FACCESS_READ);
    EXPECT_STREQ(stream.getFilename().getConstCharPtr(), "f");
    EXPECT_EQ(stream.read(buffer, 4), 4);
    EXPECT_EQ(stream.getPosition(), 4);
    EXPECT_EQ(raisedBy([&] { stream.read(nullptr, 1); }),
              "ArgumentNullException: CallbackFileStream: The destination buffer in a read cannot "
              "be NULL. {ArgumentName=dstBuffer}");
    EXPECT_EQ(raisedBy([&] { stream.write(buffer, 1); }),
              "NotSupportedException: CallbackFileStream: Cannot write to the file. Not opened "
              "for writing.");
    EXPECT_EQ(stream.seek(-2, IO::ORIGIN_END), 8);
    EXPECT_EQ(raisedBy([&] { stream.seek(5, IO::ORIGIN_END); }),
              "ArgumentOutOfRangeException: FileStream: Offset seeks out of file range. "
              "{ArgumentName=offset}");
    mFiles->mSeekResult = -9;
    EXPECT_EQ(stream.seek(5, IO::ORIGIN_END), 0);
    stream.open(stream.getFilename(), IO::FACCESS_WRITE); // by a name that closing clears
    EXPECT_STREQ(stream.getFilename().getConstCharPtr(), "f");
    EXPECT_EQ(mFiles->openCount(), 1U) << "the open one was closed";
    EXPECT_TRUE(stream.canRead()) << "a stream opened for writing counts as readable";
    stream.write(buffer, 4);
    mFiles->mWriteResult = 3;
    stream.write(buffer, 4);
    mFiles->mWriteResult = -5;
    EXPECT_EQ(raisedBy([&] { stream.write(buffer, 4); }),
              "OutOfSpaceException: CallbackFileStream: Cannot write to file, disk full.");
    EXPECT_EQ(Reports::take(),
              (Texts{"|Unhandled error condition from seekFile callback.",
                     "|Internal error: Unhandeled error condition during write."}));
    CallbackFileStream without({});
    EXPECT_EQ(Reports::take(), Texts{"mFileIO != NULL|File callback cannot be a NULL pointer"});
    EXPECT_TRUE(without.isClosed());
    EXPECT_EQ(raisedBy([&] { without.open("f", 1); }).substr(0, 21), "InvalidStateException");
}

TEST_F(CallbackFileStreamTest, KeepsApartFilesOfHandlesThatAreUsedAgain) {
    CallbackFileStream first(mFileCallback);
    CallbackFileStream second(mFileCallback);
    first.open("f", IO::FACCESS_READ);
    first.close();
    second.open("g", IO::FACCESS_READ); // the host gives it the handle of the first
    EXPECT_TRUE(first.isClosed());
    first.close();
    EXPECT_EQ(second.getLength(), 6);
}

TEST_F(CallbackFileStreamTest, TakesNoHandleFromAnOpeningThatFailed) {
    CallbackFileStream good(mFileCallback);
    good.open("f", IO::FACCESS_READ);
    mFiles->mHandleOnFailure = 1; // of the file that is open
    const char* const raised[] = {"FileNotFoundException", "UnAuthorizedAccessException",
                                  "IOException"};
    for (std::int32_t result = -1; result >= -3; --result) {
        mFiles->mOpenResult = result;
        CallbackFileStream failed(mFileCallback);
        const std::string text = raisedBy([&] { failed.open("g", IO::FACCESS_READ); });
        EXPECT_EQ(text.substr(0, text.find(':')), raised[-result - 1]);
        EXPECT_TRUE(failed.isClosed());
    }
    EXPECT_EQ(good.getLength(), 10) << "nobody closed it";
}

} // namespace ZUNO::Tests

#include "common/callback/callbackfilestream.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"

namespace ZUNO::Tests {

using namespace Common;

using CallbackFileStreamTest = FoundationTest;

TEST_F(CallbackFileStreamTest, MapsTheHostsAnswers) {
    auto* const files = new MemoryFiles;
    const SharedPtr<Callback::FileIOCallback> callback(files);
    files->mFiles["f"] = "0123456789";
    Callback::CallbackFileStream stream(callback);
    char buffer[4];
    EXPECT_FALSE(stream.canRead() || stream.canWrite() || stream.canSeek());
    stream.flush();
    stream.close();
    const std::string closed = "InvalidStateException: CallbackFileStream: ";
    EXPECT_EQ(raisedBy([&] { stream.getLength(); }), closed + "Try to get length of closed stream");
    EXPECT_EQ(raisedBy([&] { stream.getPosition(); }),
              closed + "Try to get position of closed stream.");
    EXPECT_EQ(raisedBy([&] { stream.getFilename(); }),
              closed + "Try to get filename from a closed stream");
    EXPECT_EQ(raisedBy([&] { stream.read(buffer, 1); }), closed + "Cannot read on closed streams.");
    EXPECT_EQ(raisedBy([&] { stream.write(buffer, 1); }),
              closed + "Cannot write on closed streams.");
    EXPECT_EQ(raisedBy([&] { stream.seek(0, IO::ORIGIN_END); }),
              closed + "Cannot seek on closed streams.");

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
    files->mSeekResult = -9;
    EXPECT_EQ(stream.seek(5, IO::ORIGIN_END), 0);
    stream.open(stream.getFilename(), IO::FACCESS_WRITE); // by a name that closing clears
    EXPECT_STREQ(stream.getFilename().getConstCharPtr(), "f");
    EXPECT_EQ(files->openCount(), 1U) << "the open one was closed";
    EXPECT_TRUE(stream.canRead()) << "a stream opened for writing counts as readable";
    stream.write(buffer, 4);
    files->mWriteResult = 3;
    stream.write(buffer, 4);
    files->mWriteResult = -5;
    EXPECT_EQ(raisedBy([&] { stream.write(buffer, 4); }),
              "OutOfSpaceException: CallbackFileStream: Cannot write to file, disk full.");
    EXPECT_EQ(Reports::take(),
              (Texts{"|Unhandled error condition from seekFile callback.",
                     "|Internal error: Unhandeled error condition during write."}));
    Callback::CallbackFileStream without({});
    EXPECT_EQ(Reports::take(), Texts{"mFileIO != NULL|File callback cannot be a NULL pointer"});
    EXPECT_TRUE(without.isClosed());
    EXPECT_EQ(raisedBy([&] { without.open("f", 1); }).substr(0, 21), "InvalidStateException");
}

} // namespace ZUNO::Tests

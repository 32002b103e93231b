// What only Windows has: sharing modes, windows and their messages.
#include "common/debug/xmessagebox.h"
#include "common/io/filestream.h"
#include "common/platform/tracechannel.h"
#include "common/platform/win32/windows.h"
#include "tests/platform/process.h"
#include "tests/platform/win32/presser.h"
#include "tests/support/foundation.h"
#include "tests/support/tempfolder.h"

#include <cstring>

namespace ZUNO::Tests {

using namespace Common;

class Win32Test : public FoundationTest {};

TEST_F(Win32Test, ASecondWriterIsRefusedAndReadersAreNot) {
    using namespace IO;
    const TempFolder folder;
    const std::string name = (folder.path() / "shared").string();
    FileStream writer(name.c_str(), FACCESS_WRITE, FMODE_CREATE);
    writer.write("123", 3);
    FileStream second;
    EXPECT_TRUE(raisedBy([&] {
                    second.open(name.c_str(), FACCESS_WRITE, FMODE_OPEN);
                }).starts_with("UnAuthorizedAccessException"));
    writer.close();
    FileStream reader(name.c_str(), FACCESS_READ, FMODE_OPEN);
    second.open(name.c_str(), FACCESS_READ, FMODE_OPEN);
    EXPECT_EQ(second.getLength(), 3);
    EXPECT_TRUE(raisedBy([&] {
                    writer.open(name.c_str(), FACCESS_WRITE, FMODE_OPEN);
                }).starts_with("UnAuthorizedAccessException"));
}

TEST_F(Win32Test, MessageBoxesGiveTheButtonPressed) {
    using namespace Debug;
    struct Case {
        MessageBoxButtons mButtons;
        WORD mPressed;
        MessageBoxResult mResult;
    };
    int number = 0;
    for (const Case& row :
         {Case{MessageBoxButtons::OK, IDOK, MessageBoxResult::OK},
          {MessageBoxButtons::OK_CANCEL, IDOK, MessageBoxResult::OK},
          {MessageBoxButtons::OK_CANCEL, IDCANCEL, MessageBoxResult::CANCEL},
          {MessageBoxButtons::YES_NO, IDYES, MessageBoxResult::YES},
          {MessageBoxButtons::YES_NO, IDNO, MessageBoxResult::NO},
          {MessageBoxButtons::YES_NO_CANCEL, IDYES, MessageBoxResult::YES},
          {MessageBoxButtons::YES_NO_CANCEL, IDNO, MessageBoxResult::NO},
          {MessageBoxButtons::YES_NO_CANCEL, IDCANCEL, MessageBoxResult::CANCEL}}) {
        const std::string caption = "zuno test " + std::to_string(++number);
        Presser presser(caption, row.mPressed);
        EXPECT_EQ(showMessageBox("text", caption.c_str(), row.mButtons, MessageBoxIcon::WARNING),
                  row.mResult)
            << number;
        EXPECT_TRUE(presser.hadButton()) << number;
    }
}

TEST_F(Win32Test, TraceMessagesArriveByteForByte) {
    const PrivateTraceChannel channel;
    Platform::TraceReceiver receiver;
    const char* const obstacle = receiver.open();
    ASSERT_EQ(obstacle, nullptr) << obstacle;
    const char payload[] = {'a', '\0', '\xFF', '\n'};
    EXPECT_TRUE(Platform::sendTraceMessage(2, payload, sizeof(payload)));
    EXPECT_TRUE(Platform::sendTraceMessage(1, payload, 0));
    Platform::TraceMessage message;
    ASSERT_TRUE(receiver.receive(message, 1000));
    EXPECT_EQ(message.mCode, 2U);
    ASSERT_EQ(message.mLength, sizeof(payload));
    EXPECT_EQ(std::memcmp(message.mPayload, payload, sizeof(payload)), 0);
    ASSERT_TRUE(receiver.receive(message, 1000));
    EXPECT_EQ(message.mLength, 0U);
    EXPECT_FALSE(receiver.receive(message, 10));
}

} // namespace ZUNO::Tests

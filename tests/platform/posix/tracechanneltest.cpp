// The trace channel as a socket: who may take part, and what comes over it.
#include "common/platform/tracechannel.h"
#include "common/debug/trace.h"
#include "tests/platform/process.h"
#include "tests/support/foundation.h"
#include "tests/support/tempfolder.h"

#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace ZUNO::Tests {

using namespace Common;

class TraceChannelTest : public FoundationTest {
protected:
    std::string receive(Platform::TraceReceiver& receiver) {
        Platform::TraceMessage message;
        if (!receiver.receive(message, 20))
            return "nothing";
        return {reinterpret_cast<const char*>(message.mPayload), message.mLength};
    }

    /// A socket that `bind` or `connect` gives the viewer's address.
    static int openSocket(int type, int (*name)(int, const sockaddr*, socklen_t)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/ZUNTraceWindow";
        std::strcpy(address.sun_path, path.c_str());
        const int opened = socket(AF_UNIX, type, 0);
        EXPECT_EQ(name(opened, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
        return opened;
    }

    /// A connection of a host's, over which these bytes come in one packet, if there are any.
    void connectWith(const std::string& packet) {
        const int host = openSocket(SOCK_SEQPACKET, connect);
        if (!packet.empty()) {
            EXPECT_GT(send(host, packet.data(), packet.size(), 0), 0);
        }
        close(host);
    }

    const PrivateTraceChannel mChannel;
};

TEST_F(TraceChannelTest, AFolderThatIsOpenToOthersIsNotUsed) {
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    for (const mode_t mode : {0750U, 0707U, 0700U}) {
        Platform::TraceReceiver receiver;
        ASSERT_EQ(receiver.open(), nullptr);
        ASSERT_EQ(chmod(folder, mode), 0);
        EXPECT_EQ(Debug::Trace::send(1, "text"), mode == 0700 ? 4 : 0) << mode;
        EXPECT_STREQ(Platform::TraceReceiver().open(),
                     mode == 0700 ? "another trace viewer runs already"
                                  : "the folder for the trace socket can't be made, or belongs to "
                                    "somebody else");
        ASSERT_EQ(chmod(folder, 0700), 0);
    }
}

TEST_F(TraceChannelTest, AFolderOfTheUsersIsMadeWhereThereIsNone) {
    const TempFolder temporary;
    const std::string former = std::getenv("XDG_RUNTIME_DIR");
    const char* const formerTemporary = std::getenv("TMPDIR");
    unsetenv("XDG_RUNTIME_DIR");
    setenv("TMPDIR", temporary.path().c_str(), 1);
    Platform::TraceReceiver receiver;
    EXPECT_EQ(receiver.open(), nullptr);
    EXPECT_STREQ(receiver.open(), "the channel is open already");
    EXPECT_EQ(Debug::Trace::send(1, "text"), 4);
    const std::string folder = temporary.in(std::string(96 - temporary.in("").size(), 'n').c_str());
    mkdir(folder.c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    EXPECT_NE(Platform::TraceReceiver().open(), nullptr) << "no room for the socket's name";
    rmdir(folder.c_str());
    setenv("XDG_RUNTIME_DIR", former.c_str(), 1);
    formerTemporary != nullptr ? setenv("TMPDIR", formerTemporary, 1) : unsetenv("TMPDIR");
    EXPECT_EQ(temporary.count(), 1);
}

TEST_F(TraceChannelTest, DamagedMessagesAreDropped) {
    Platform::TraceReceiver receiver;
    EXPECT_EQ(receive(receiver), "nothing") << "it is not open";
    ASSERT_EQ(receiver.open(), nullptr);
    EXPECT_STREQ(receiver.open(), "the channel is open already");
    const auto packet = [](std::uint32_t length, const std::string& payload) {
        const std::uint32_t head[2] = {1, length};
        return std::string(reinterpret_cast<const char*>(head), sizeof(head)) + payload;
    };
    struct Case {
        std::string mPacket;
        const char* mReceived;
    };
    for (const Case& row : {Case{packet(4, "text"), "text"},
                            {packet(5, "text"), "nothing"},
                            {packet(3, "text"), "nothing"},
                            {packet(4, "text").substr(0, 7), "nothing"},
                            {"", "nothing"}}) {
        connectWith(row.mPacket);
        EXPECT_EQ(receive(receiver), row.mReceived);
    }
    EXPECT_EQ(Debug::Trace::send(1, std::stringstream("next")), 4);
    EXPECT_EQ(receive(receiver), std::string("next", 5));
}

// A host that waited for one of them would not come to the end of this.
TEST_F(TraceChannelTest, NoViewerKeepsTheHostWaiting) {
    const std::string text(1000, 'x');
    for (const int type : {SOCK_STREAM, SOCK_DGRAM, SOCK_SEQPACKET}) {
        const int viewer = openSocket(type, bind);
        EXPECT_EQ(Debug::Trace::send(1, text.c_str()), 0) << "it does not listen";
        const bool hangs = type != SOCK_DGRAM && listen(viewer, 50) == 0;
        int taken = 0;
        while (hangs && taken < 10000 && Debug::Trace::send(1, text.c_str()) != 0)
            ++taken;
        EXPECT_EQ(taken, type == SOCK_SEQPACKET ? 51 : 0) << "what waits is bounded";
        close(viewer); // with hosts' messages unread
        EXPECT_EQ(Debug::Trace::send(1, text.c_str()), 0);
        Platform::TraceReceiver next;
        EXPECT_EQ(next.open(), nullptr) << "what was left behind is in nobody's way";
        for (int i = 0; i < 3; ++i) // one that hangs up before it reads
            connectWith("");
        EXPECT_EQ(Debug::Trace::send(1, "text"), 4);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(receive(next), "nothing");
        EXPECT_EQ(receive(next), std::string("text", 5));
    }
}

TEST_F(TraceChannelTest, LongTextsComeInPiecesAndValuesWithinTheBuffer) {
    Platform::TraceReceiver receiver;
    ASSERT_EQ(receiver.open(), nullptr);
    std::string text;
    for (int i = 0; text.size() < 300000; ++i)
        text += std::to_string(i);
    EXPECT_EQ(Debug::Trace::send(1, text.c_str()), static_cast<std::uint16_t>(text.size()));
    std::string received;
    for (int i = 0; i < 3; ++i) {
        const std::string piece = receive(receiver);
        ASSERT_EQ(piece.back(), '\0');
        received += piece.c_str();
    }
    EXPECT_EQ(received, text);
    const std::string value(4076, 'v');
    for (const char* const name : {"sixlet", "seven_l"}) {
        Debug::Trace::sendValue(1, name, 6, value.c_str()); // 4,084 bytes and one more
        EXPECT_EQ(receive(receiver).size(), std::strlen(name) == 6 ? 4096U : 7U);
    }
}

} // namespace ZUNO::Tests

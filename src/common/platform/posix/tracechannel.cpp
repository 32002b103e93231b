#include "common/platform/tracechannel.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

// Each message is a connection of its own with one packet: the code and the payload's length as
// 32-bit numbers, then the payload. Connections that wait to be accepted hold far more messages
// than a datagram socket's queue of ten, so a burst is not lost while a viewer draws.

namespace ZUNO::Common::Platform {

// A packet has to fit into a socket's buffer, which the kernel makes about 200 KiB long by default.
const std::uint32_t longestTraceText = 128 * 1024;

namespace {

struct Header {
    std::uint32_t mCode;
    std::uint32_t mLength;
};

/// Larger than what the kernel carries in one local packet by default.
constexpr std::size_t maxPacket = std::size_t{256} * 1024;

/// How many messages may wait; the kernel may allow fewer.
constexpr int maxWaiting = 4096;

/// How long a host may take between its connection and its message, in milliseconds.
constexpr int hostPatience = 100;

/// Finds the socket's address. The folder must belong to this user alone, so that nobody else can
/// read the messages or take the viewer's place. `create` makes a missing folder.
bool findAddress(sockaddr_un& address, bool create) noexcept {
    address = {};
    address.sun_family = AF_UNIX;
    char folder[sizeof(address.sun_path)];
    const char* runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
    int length = 0;
    if (runtimeFolder != nullptr && *runtimeFolder != '\0') {
        length = std::snprintf(folder, sizeof(folder), "%s", runtimeFolder);
    } else {
        const char* temporary = std::getenv("TMPDIR");
        length = std::snprintf(folder, sizeof(folder), "%s/zuno-%u",
                               temporary != nullptr && *temporary != '\0' ? temporary : "/tmp",
                               static_cast<unsigned int>(getuid()));
    }
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof(folder))
        return false;
    if (create)
        mkdir(folder, S_IRWXU); // an existing folder is judged below
    struct stat status {};
    if (lstat(folder, &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != getuid() ||
        (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        return false;
    length =
        std::snprintf(address.sun_path, sizeof(address.sun_path), "%s/%s", folder, traceViewerName);
    return length > 0 && static_cast<std::size_t>(length) < sizeof(address.sun_path);
}

int openSocket() noexcept {
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

bool isReadable(int socket, int milliseconds) noexcept {
    pollfd waiting{socket, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) > 0;
}

const sockaddr* general(const sockaddr_un& address) noexcept {
    return reinterpret_cast<const sockaddr*>(&address);
}

} // namespace

bool sendTraceMessage(std::uint32_t code, const void* payload, std::uint32_t length) noexcept {
    sockaddr_un address;
    if (!findAddress(address, false))
        return false;
    const int channel = openSocket();
    if (channel < 0)
        return false;
    Header header{code, length};
    iovec parts[2] = {{&header, sizeof(header)}, {const_cast<void*>(payload), length}};
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = 2;
    const bool sent = connect(channel, general(address), sizeof(address)) == 0 &&
                      sendmsg(channel, &message, MSG_NOSIGNAL) >= 0;
    ::close(channel);
    return sent;
}

struct TraceReceiver::State {
    int mSocket = -1;
    sockaddr_un mAddress{};
    std::byte mBuffer[maxPacket];
};

TraceReceiver::TraceReceiver() noexcept : mState(nullptr) {}

TraceReceiver::~TraceReceiver() {
    if (mState == nullptr)
        return;
    if (mState->mSocket >= 0) {
        ::close(mState->mSocket);
        unlink(mState->mAddress.sun_path);
    }
    delete mState;
}

const char* TraceReceiver::open() noexcept {
    if (mState != nullptr)
        return "the channel is open already";
    sockaddr_un address;
    if (!findAddress(address, true))
        return "the folder for the trace socket can't be made, or belongs to somebody else";
    const int channel = openSocket();
    if (channel < 0)
        return "the system has no socket left";
    if (connect(channel, general(address), sizeof(address)) == 0 || errno == EAGAIN) {
        ::close(channel);
        return "another trace viewer runs already";
    }
    unlink(address.sun_path); // left behind by a viewer that did not end in order
    State* state = new (std::nothrow) State;
    if (state == nullptr || bind(channel, general(address), sizeof(address)) != 0 ||
        listen(channel, maxWaiting) != 0) {
        ::close(channel);
        delete state;
        return "the trace socket can't be opened";
    }
    state->mSocket = channel;
    state->mAddress = address;
    mState = state;
    return nullptr;
}

bool TraceReceiver::receive(TraceMessage& message, int milliseconds) noexcept {
    if (mState == nullptr)
        return false;
    if (!isReadable(mState->mSocket, milliseconds))
        return false;
    const int host = accept4(mState->mSocket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (host < 0)
        return false;
    const ssize_t size = isReadable(host, hostPatience)
                             ? recv(host, mState->mBuffer, sizeof(mState->mBuffer), 0)
                             : -1;
    ::close(host);
    Header header{};
    if (size < static_cast<ssize_t>(sizeof(header)))
        return false;
    std::memcpy(&header, mState->mBuffer, sizeof(header));
    if (header.mLength != static_cast<std::size_t>(size) - sizeof(header))
        return false;
    message = {header.mCode, mState->mBuffer + sizeof(header), header.mLength};
    return true;
}

} // namespace ZUNO::Common::Platform

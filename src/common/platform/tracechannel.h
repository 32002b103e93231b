#pragma once

#include <cstddef>
#include <cstdint>

namespace ZUNO::Common::Platform {

/// The name under which a viewer is found.
inline constexpr char traceViewerName[] = "ZUNTraceWindow";

/// The code of messages that tell of errors.
inline constexpr std::uint32_t traceErrorCode = 0;

/// The longest text that one message carries, without its zero.
extern const std::uint32_t longestTraceText;

/// Sends one message to the trace viewer of this user, looked up anew with every call.
/// Returns false, and drops the message, when no viewer runs or when it can't take the message now.
/// Doesn't wait for the viewer, whatever that does; on Windows at most 0.2 s, and then no more for
/// ten seconds. Thread: any.
bool sendTraceMessage(std::uint32_t code, const void* payload, std::uint32_t length) noexcept;

/// A message as a viewer received it.
struct TraceMessage {
    std::uint32_t mCode = 0;
    const std::byte* mPayload = nullptr; ///< valid until the next `receive`
    std::uint32_t mLength = 0;
};

/// The viewer's end of the channel: one per user at a time.
class TraceReceiver {
public:
    TraceReceiver() noexcept;
    ~TraceReceiver();
    TraceReceiver(const TraceReceiver&) = delete;
    TraceReceiver& operator=(const TraceReceiver&) = delete;

    /// Opens the channel. Returns null, or what is in the way as a text.
    const char* open() noexcept;

    /// Waits up to `milliseconds` for the next message; false when none came.
    bool receive(TraceMessage& message, int milliseconds) noexcept;

private:
    struct State;
    State* mState;
};

} // namespace ZUNO::Common::Platform

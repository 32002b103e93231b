// The trace viewer: prints what hosts send on the trace channel.
#include "common/debug/trace.h"
#include "common/platform/tracechannel.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

using ZUNO::Common::Platform::TraceMessage;
namespace Debug = ZUNO::Common::Debug;

namespace {

volatile std::sig_atomic_t gIsInterrupted = 0;

void interrupt(int) {
    gIsInterrupted = 1;
}

/// The payload as a text, without its zero.
std::string textOf(const std::byte* bytes, std::size_t length) {
    const auto* const characters = reinterpret_cast<const char*>(bytes);
    return {characters, strnlen(characters, length)};
}

template <typename T>
T numberAt(const std::byte* bytes) {
    T number;
    std::memcpy(&number, bytes, sizeof(number));
    return number;
}

std::string valueText(std::uint32_t type, const std::byte* bytes, std::size_t length) {
    if (type == 0 && length == 4)
        return std::to_string(numberAt<std::int32_t>(bytes));
    if (type == 1 && length == 4)
        return std::to_string(numberAt<float>(bytes));
    if (type == 2 && length == 12)
        return std::to_string(numberAt<float>(bytes)) + " / " +
               std::to_string(numberAt<float>(bytes + 4)) + " / " +
               std::to_string(numberAt<float>(bytes + 8));
    if (type == 6)
        return '"' + textOf(bytes, length) + '"';
    return "(" + std::to_string(length) + " bytes of type " + std::to_string(type) + ")";
}

void printValue(const TraceMessage& message) {
    constexpr std::size_t head = 12;
    const std::size_t nameLength =
        message.mLength >= head ? numberAt<std::uint32_t>(message.mPayload + 4) : 0;
    if (message.mLength < head || nameLength > message.mLength - head) {
        std::printf("value    (damaged)\n");
        return;
    }
    const std::byte* const name = message.mPayload + head;
    const auto type = numberAt<std::uint32_t>(message.mPayload + 8);
    std::printf("value    %d %s = %s\n", numberAt<std::int32_t>(message.mPayload),
                textOf(name, nameLength).c_str(),
                valueText(type, name + nameLength, message.mLength - head - nameLength).c_str());
}

void print(const TraceMessage& message) {
    switch (message.mCode) {
    case Debug::TRACE_ERROR:
        std::printf("error    %s\n", textOf(message.mPayload, message.mLength).c_str());
        break;
    case Debug::TRACE_MESSAGE:
        std::printf("message  %s\n", textOf(message.mPayload, message.mLength).c_str());
        break;
    case Debug::TRACE_VALUE:
        printValue(message);
        break;
    default:
        std::printf("code %u  (%u bytes)\n", message.mCode, message.mLength);
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Receives and prints the trace messages of hosts until it is interrupted."};
    app.allow_windows_style_options(false); // a path may begin with a slash
    unsigned int count = 0;
    app.add_option("--count", count, "end after so many messages");
    CLI11_PARSE(app, argc, argv);
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
    ZUNO::Common::Platform::TraceReceiver receiver;
    if (const char* const obstacle = receiver.open(); obstacle != nullptr) {
        std::fprintf(stderr, "zunotrace: %s\n", obstacle);
        return 2;
    }
    std::printf("waiting for trace messages\n");
    std::fflush(stdout);
    constexpr int patience = 200; // milliseconds between looks at the interrupt
    for (unsigned int received = 0; gIsInterrupted == 0 && (count == 0 || received < count);) {
        TraceMessage message;
        if (!receiver.receive(message, patience))
            continue;
        print(message);
        ++received;
    }
    return 0;
}

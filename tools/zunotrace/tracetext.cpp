#include "tools/zunotrace/tracetext.h"

#include "common/debug/trace.h"

#include <cstring>

namespace ZUNO::Tools {

using Common::Platform::TraceMessage;
namespace Debug = Common::Debug;

namespace {

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

std::string readValue(const TraceMessage& message) {
    constexpr std::size_t head = 12;
    const std::size_t nameLength =
        message.mLength >= head ? numberAt<std::uint32_t>(message.mPayload + 4) : 0;
    if (message.mLength < head || nameLength > message.mLength - head)
        return "(damaged)";
    const std::byte* const name = message.mPayload + head;
    const auto type = numberAt<std::uint32_t>(message.mPayload + 8);
    return std::to_string(numberAt<std::int32_t>(message.mPayload)) + ' ' +
           textOf(name, nameLength) + " = " +
           valueText(type, name + nameLength, message.mLength - head - nameLength);
}

} // namespace

TraceEntry readEntry(const TraceMessage& message) {
    switch (message.mCode) {
    case Debug::TRACE_ERROR:
        return {"error", textOf(message.mPayload, message.mLength)};
    case Debug::TRACE_MESSAGE:
        return {"message", textOf(message.mPayload, message.mLength)};
    case Debug::TRACE_VALUE:
        return {"value", readValue(message)};
    default:
        return {"code " + std::to_string(message.mCode),
                "(" + std::to_string(message.mLength) + " bytes)"};
    }
}

} // namespace ZUNO::Tools

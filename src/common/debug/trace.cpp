#include "common/debug/trace.h"

#include "common/memory/globalallocators.h"
#include "common/memory/objectcreation.h"
#include "common/platform/tracechannel.h"
#include "common/report/report.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

namespace ZUNO::Common::Debug {

namespace {

static_assert(TRACE_ERROR == Platform::traceErrorCode);

constexpr std::size_t unknownType = std::numeric_limits<std::size_t>::max();

std::size_t valueLength(unsigned int valueType, const char* value) {
    switch (valueType) {
    case 0:
    case 1:
        return 4;
    case 2:
        return 12;
    case 6:
        return std::strlen(value) + 1;
    default:
        return unknownType;
    }
}

/// Sends one message of `length` characters of a text; returns whether a viewer took it.
bool sendPiece(unsigned int code, const char* text, std::size_t length, bool isWhole) {
    if (isWhole)
        return Platform::sendTraceMessage(code, text, static_cast<std::uint32_t>(length + 1));
    const std::string piece(text, length); // with a zero of its own
    return Platform::sendTraceMessage(code, piece.c_str(), static_cast<std::uint32_t>(length + 1));
}

std::uint16_t sendText(unsigned int code, const char* text, std::size_t length) {
    std::size_t sent = 0;
    do {
        const std::size_t left = length - sent;
        const std::size_t piece = std::min<std::size_t>(left, Platform::longestTraceText);
        if (!sendPiece(code, text + sent, piece, piece == left))
            break;
        sent += piece;
    } while (sent < length);
    return static_cast<std::uint16_t>(sent);
}

} // namespace

char* Trace::m_writestr = nullptr;

void Trace::init() {
    ZUNO_CHECK(!m_writestr, "Debug::Trace is already initialised");
    close();
    m_writestr = Memory::createArray<char>(gDebugAllocator, bufferSize);
}

void Trace::close() {
    if (m_writestr != nullptr)
        Memory::releaseBytes(gDebugAllocator, m_writestr);
    m_writestr = nullptr;
}

std::uint16_t Trace::send(unsigned int code, const std::stringstream& text) {
    const std::string characters = text.str();
    return sendText(code, characters.c_str(), characters.size());
}

std::uint16_t Trace::send(unsigned int code, const char* text) {
    return sendText(code, text, std::strlen(text));
}

void Trace::sendValue(int id, const char* name, unsigned int valueType, const char* value) {
    const std::size_t size = valueLength(valueType, value);
    if (size == unknownType) {
        ReportText text;
        text << "ZUNO::Common::Debug::Trace::ZUNMessage"
             << " : "
             << "datatype: " << valueType << " not defined (" << id << "/" << name << ")";
        send(TRACE_ERROR, text.text());
        return;
    }
    const std::size_t nameLength = std::strlen(name) + 1;
    const std::uint32_t head[3] = {static_cast<std::uint32_t>(id),
                                   static_cast<std::uint32_t>(nameLength), valueType};
    if (m_writestr == nullptr || sizeof(head) + nameLength + size > bufferSize)
        return;
    std::memcpy(m_writestr, head, sizeof(head));
    std::memcpy(m_writestr + sizeof(head), name, nameLength);
    std::memcpy(m_writestr + sizeof(head) + nameLength, value, size);
    Platform::sendTraceMessage(TRACE_VALUE, m_writestr,
                               static_cast<std::uint32_t>(sizeof(head) + nameLength + size));
}

} // namespace ZUNO::Common::Debug

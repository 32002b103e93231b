#pragma once

#include <cstddef>
#include <cstdint>
#include <sstream>

namespace ZUNO::Common::Debug {

/// The codes of trace messages.
enum TraceCode : unsigned int { TRACE_ERROR = 0, TRACE_MESSAGE = 1, TRACE_VALUE = 2 };

/// The one-way channel to an external trace viewer. A viewer may come and go at any time; without
/// one, messages are dropped. The channel never reports failures of its own. No locks.
class Trace {
public:
    Trace() = delete;

    /// Starts the channel. A second start is reported and starts it again.
    static void init();
    /// Stops the channel and gives its buffer back.
    static void close();

    /// Sends a text with TRACE_ERROR or TRACE_MESSAGE; where the transport carries no longer ones,
    /// as several messages of 128 KiB. Returns the number of characters sent, as 16 bits; 0 when
    /// no viewer took them.
    static std::uint16_t send(unsigned int code, const std::stringstream& text);
    static std::uint16_t send(unsigned int code, const char* text);

    /// Sends a named value with TRACE_VALUE. The type gives the bytes that are read from `value`:
    /// 0 and 1: four; 2: twelve; 6: a zero-terminated string. Other types send an error text
    /// instead. Name and value together must stay within 4,084 bytes; larger ones are dropped.
    static void sendValue(int id, const char* name, unsigned int valueType, const char* value);

private:
    static constexpr std::size_t bufferSize = 4096;

    static char* m_writestr; ///< the scratch buffer; its presence means that the channel runs
};

} // namespace ZUNO::Common::Debug

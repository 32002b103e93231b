#include "hostkit/recording.h"

namespace ZUNO::HostKit {

namespace {

constexpr CallForm theForms[] = {
    {.mName = "initWorldRepresentation", .mTexts = 2, .mHasDigest = true, .mAnswersNumber = true},
    {.mName = "close"},
    {.mName = "initPathSearch", .mFloats = 6, .mAnswersNumber = true},
    {.mName = "runPathSearch", .mHasID = true, .mHasBudget = true, .mAnswersNumber = true},
    {.mName = "getNextWaypoint",
     .mHasID = true,
     .mAnswersNumber = true,
     .mAnswerFloats = 3,
     .mFloatsNeedFlag = true},
    {.mName = "getPathCost", .mHasID = true, .mAnswerFloats = 1},
    {.mName = "closePathSearch", .mHasID = true, .mAnswersNumber = true},
    {.mName = "isBlocked", .mFloats = 2, .mAnswersNumber = true},
    {.mName = "traceRay", .mFloats = 4, .mAnswerFloats = 1},
    {.mName = "traceRay", .mFloats = 6, .mAnswerFloats = 1},
    {.mName = "getGroundHeight", .mFloats = 2, .mAnswerFloats = 1},
    {.mName = "getBoundingRectangle", .mAnswerFloats = 4},
    {.mName = "saveBlockingMap", .mTexts = 1, .mAnswersNumber = true},
};

[[noreturn]] void failAt(std::size_t offset, const std::string& what) {
    throw RecordingError("recording, byte " + std::to_string(offset) + ": " + what);
}

} // namespace

const CallForm& formOf(CallKind kind) {
    return theForms[static_cast<std::size_t>(kind) - 1];
}

RecordingReader::RecordingReader(std::string_view bytes) : mBytes(bytes) {
    const std::size_t name = recordingMagic.size() - 1;
    if (bytes.size() <= name || bytes.substr(0, name) != recordingMagic.substr(0, name))
        failAt(0, "this is no recording");
    if (bytes[name] != recordingMagic[name])
        failAt(name, "expected version " + std::to_string(recordingMagic[name]) + " instead of " +
                         std::to_string(static_cast<unsigned char>(bytes[name])));
    mPosition = recordingMagic.size();
}

std::uint8_t RecordingReader::byte() {
    if (mPosition == mBytes.size())
        throw CutOff();
    return static_cast<std::uint8_t>(mBytes[mPosition++]);
}

std::uint64_t RecordingReader::unsignedNumber(unsigned int bits) {
    const std::size_t begin = mPosition;
    std::uint64_t value = 0;
    for (unsigned int shift = 0; shift < bits; shift += 7) {
        const std::uint64_t part = byte();
        const bool isLast = (part & 0x80U) == 0;
        value |= (part & 0x7FU) << shift;
        if (isLast && (bits == 64 || value >> bits == 0))
            return value;
    }
    failAt(begin, "a number of more than " + std::to_string(bits) + " bits");
}

std::int32_t RecordingReader::number() {
    const auto value = static_cast<std::uint32_t>(unsignedNumber(32));
    return static_cast<std::int32_t>((value >> 1U) ^ (0U - (value & 1U)));
}

std::uint32_t RecordingReader::bits() {
    std::uint32_t value = 0;
    for (unsigned int shift = 0; shift < 32; shift += 8)
        value |= std::uint32_t{byte()} << shift;
    return value;
}

std::string RecordingReader::text() {
    const std::size_t begin = mPosition;
    const std::uint64_t length = unsignedNumber(32);
    if (length > longestRecordedText)
        failAt(begin, "a text of " + std::to_string(length) + " bytes");
    if (length > mBytes.size() - mPosition)
        throw CutOff();
    mPosition += static_cast<std::size_t>(length);
    return std::string(mBytes.substr(mPosition - static_cast<std::size_t>(length),
                                     static_cast<std::size_t>(length)));
}

bool RecordingReader::next(RecordedCall& call) {
    if (mIsWhole || mPosition == mBytes.size())
        return false;
    const std::size_t begin = mPosition;
    const std::uint8_t kind = byte();
    if (kind == 0) { // room that a crash left unused
        mPosition = mBytes.size();
        return false;
    }
    if (kind == recordingEnd) {
        if (mPosition != mBytes.size())
            failAt(mPosition, "something follows the recording's end");
        mIsWhole = true;
        return false;
    }
    if (kind > std::size(theForms))
        failAt(begin, "no call has the kind " + std::to_string(kind));
    call = RecordedCall{.mKind = static_cast<CallKind>(kind)};
    try {
        readArguments(formOf(call.mKind), call);
    } catch (const CutOff&) {
        mPosition = mBytes.size();
        return false;
    }
    try {
        readAnswer(formOf(call.mKind), call.mAnswer);
    } catch (const CutOff&) {
        mPosition = mBytes.size();
        call.mAnswer = {};
    }
    return true;
}

void RecordingReader::readArguments(const CallForm& form, RecordedCall& call) {
    for (std::size_t i = 0; i < form.mTexts; ++i)
        call.mTexts[i] = text();
    if (form.mHasDigest) {
        const std::uint64_t lower = bits();
        call.mDigest = std::uint64_t{bits()} << 32U | lower;
    }
    if (form.mHasID)
        call.mID = number();
    if (form.mHasBudget)
        call.mBudget = static_cast<std::uint32_t>(unsignedNumber(32));
    for (std::size_t i = 0; i < form.mFloats; ++i)
        call.mFloats[i] = bits();
}

void RecordingReader::readAnswer(const CallForm& form, RecordedAnswer& answer) {
    const std::size_t begin = mPosition;
    const std::uint8_t kind = byte();
    if (kind > static_cast<std::uint8_t>(AnswerKind::RAISED))
        failAt(begin, "no answer has the kind " + std::to_string(kind));
    answer.mKind = static_cast<AnswerKind>(kind);
    if (answer.mKind == AnswerKind::RAISED)
        answer.mException = text();
    if (answer.mKind != AnswerKind::GIVEN)
        return;
    if (form.mAnswersNumber)
        answer.mNumber = number();
    if (!form.mFloatsNeedFlag || answer.mNumber != 0)
        for (std::size_t i = 0; i < form.mAnswerFloats; ++i)
            answer.mFloats[i] = bits();
}

} // namespace ZUNO::HostKit

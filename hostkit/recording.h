/// The form of a recording: calls of the exports with their arguments and answers, to the bit.
///
/// A file begins with `recordingMagic`. Each call is a byte for its kind (never 0), its arguments,
/// a byte for the kind of its answer, and the answer. Numbers have as few bytes as they need, seven
/// bits in each, the lowest first, with the top bit set in all but the last; signed ones alternate
/// (0, -1, 1, -2 ...). Floats are their bits and digests are numbers, in little-endian order. Texts
/// have their length before them. A file that was closed ends with `recordingEnd`; in one that was
/// cut off by a crash zeros or nothing follow the last call, whose answer may be missing.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ZUNO::HostKit {

/// The browser's C++ library has no std::bit_cast.
inline std::uint32_t bitsOf(float number) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}
inline float floatOf(std::uint32_t bits) {
    float number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// The last character is the version.
inline constexpr std::string_view recordingMagic{"ZUNOREC\1", 8};
inline constexpr std::uint8_t recordingEnd = 0xFF;

enum class CallKind : std::uint8_t {
    START = 1,
    CLOSE,
    INIT_SEARCH,
    RUN_SEARCH,
    NEXT_WAYPOINT,
    PATH_COST,
    CLOSE_SEARCH,
    IS_BLOCKED,
    TRACE_RAY_2D,
    TRACE_RAY_3D,
    GROUND_HEIGHT,
    BOUNDING_RECTANGLE,
    SAVE_BLOCKING_MAP
};

/// What a call of a kind consists of.
struct CallForm {
    const char* mName; ///< of the export
    std::uint8_t mTexts = 0;
    bool mHasDigest = false;
    bool mHasID = false;
    bool mHasBudget = false;
    std::uint8_t mFloats = 0;
    bool mAnswersNumber = false; ///< a result that is a number or a flag
    std::uint8_t mAnswerFloats = 0;
    bool mFloatsNeedFlag = false; ///< the floats are there when the flag is 1
};
const CallForm& formOf(CallKind kind);

enum class AnswerKind : std::uint8_t {
    NONE = 0, ///< the call never came back
    GIVEN = 1,
    RAISED = 2
};

struct RecordedAnswer {
    AnswerKind mKind = AnswerKind::NONE;
    std::int32_t mNumber = 0;
    std::array<std::uint32_t, 4> mFloats{}; ///< bits; 0 where the form has none
    std::string mException = {};            ///< class and message of what was raised

    bool operator==(const RecordedAnswer&) const = default;
};

struct RecordedCall {
    CallKind mKind = CallKind::CLOSE;
    std::array<std::string, 2> mTexts = {}; ///< mesh and blocking map, or the file to save
    std::uint64_t mDigest = 0;              ///< of the mesh; 0: it could not be read
    std::int32_t mID = 0;
    std::uint32_t mBudget = 0;
    std::array<std::uint32_t, 6> mFloats{}; ///< bits
    RecordedAnswer mAnswer = {};
};

/// Texts are cut to this many bytes.
inline constexpr std::size_t longestRecordedText = 4096;

/// Appends encoded values at a place in memory that has room for them.
class RecordingWriter {
public:
    /// The most that a number, or a float, needs.
    static constexpr std::size_t longestNumber = 10;

    explicit RecordingWriter(unsigned char* place) : mPlace(place) {}
    unsigned char* place() const { return mPlace; }

    void byte(std::uint8_t value) { *mPlace++ = value; }
    void unsignedNumber(std::uint64_t value) {
        for (; value >= 0x80U; value >>= 7U)
            byte(static_cast<std::uint8_t>(value | 0x80U));
        byte(static_cast<std::uint8_t>(value));
    }
    void number(std::int32_t value) {
        const auto sign = static_cast<std::uint32_t>(value < 0 ? -1 : 0);
        unsignedNumber((static_cast<std::uint32_t>(value) << 1U) ^ sign);
    }
    void bits(std::uint32_t value) {
        if constexpr (std::endian::native == std::endian::little) { // one store instead of four
            std::memcpy(mPlace, &value, sizeof value);
            mPlace += sizeof value;
        } else {
            for (unsigned int shift = 0; shift < 32; shift += 8)
                byte(static_cast<std::uint8_t>(value >> shift));
        }
    }
    /// The pieces as one text, cut to `longestRecordedText`.
    void text(std::initializer_list<std::string_view> pieces) {
        std::size_t left = 0;
        for (const std::string_view piece : pieces)
            left += piece.size();
        left = std::min(left, longestRecordedText);
        unsignedNumber(left);
        for (const std::string_view piece : pieces)
            for (const char c : piece.substr(0, left)) {
                byte(static_cast<std::uint8_t>(c));
                --left;
            }
    }

private:
    unsigned char* mPlace;
};

/// What is wrong with a recording, and at which byte.
class RecordingError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads a recording call by call.
/// Lifetime: the bytes must live as long.
class RecordingReader {
public:
    /// Throws a RecordingError for what does not begin as a recording of this version.
    explicit RecordingReader(std::string_view bytes);

    /// Reads the next call; false after the last one. A last call that is cut off in its arguments
    /// is left out, one whose answer is cut off has none.
    /// Throws a RecordingError for what can't be a call.
    bool next(RecordedCall& call);

    /// Whether the recording was closed, once `next` gave false.
    bool isWhole() const { return mIsWhole; }

private:
    struct CutOff {};

    std::uint8_t byte();
    std::uint64_t unsignedNumber(unsigned int bits);
    std::int32_t number();
    std::uint32_t bits();
    std::string text();
    void readArguments(const CallForm& form, RecordedCall& call);
    void readAnswer(const CallForm& form, RecordedAnswer& answer);

    std::string_view mBytes;
    std::size_t mPosition = 0;
    bool mIsWhole = false;
};

} // namespace ZUNO::HostKit

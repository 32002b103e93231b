#pragma once

#include "common/utility/floatchars.h"

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace ZUNO::Common::Debug {

/// The explanatory text of a report, put together by streaming texts and numbers.
/// Any length: a text that outgrows the room in place moves to the process heap. Only when that is
/// exhausted is the text cut, and then ends in "...": a lack of memory can be reported too.
class ReportText {
public:
    /// What is there without the heap, the terminating zero included.
    static constexpr std::size_t roomInPlace = 2048;

    ReportText() : mText(mInPlace) { mInPlace[0] = '\0'; }
    ~ReportText() {
        if (mText != mInPlace)
            std::free(mText);
    }
    ReportText(const ReportText&) = delete;
    ReportText& operator=(const ReportText&) = delete;

    ReportText& operator<<(const char* text) {
        append(text, std::strlen(text));
        return *this;
    }

    ReportText& operator<<(char character) {
        append(&character, 1);
        return *this;
    }

    /// Integers in decimal, floating-point numbers as "%g" writes them.
    template <typename Number>
    requires std::integral<Number> || std::floating_point<Number> ReportText&
    operator<<(Number number) {
        char digits[32];
        char* end = nullptr;
        if constexpr (std::floating_point<Number>)
            end = Utility::floatToChars(digits, digits + sizeof(digits), number,
                                        Utility::FloatFormat::GENERAL);
        else
            end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
        append(digits, static_cast<std::size_t>(end - digits));
        return *this;
    }

    /// The zero-terminated text so far. Lifetime: until more is appended.
    const char* text() const { return mText; }

    void append(const char* text, std::size_t length);

private:
    void grow(std::size_t length);

    char* mText;
    std::size_t mLength = 0;
    std::size_t mRoom = roomInPlace;
    char mInPlace[roomInPlace];
};

} // namespace ZUNO::Common::Debug

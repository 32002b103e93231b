#pragma once

#include "common/utility/floatchars.h"

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>

namespace ZUNO::Common::Debug {

/// The explanatory text of a report, put together by streaming texts and numbers.
/// It lives in place and never allocates, so that a lack of memory can be reported too.
/// What does not fit is cut, and the text then ends in "...".
class ReportText {
public:
    static constexpr std::size_t capacity = 2048;

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

    /// The zero-terminated text so far.
    const char* text() const { return mText; }

    void append(const char* text, std::size_t length);

private:
    std::size_t mLength = 0;
    char mText[capacity] = "";
};

} // namespace ZUNO::Common::Debug

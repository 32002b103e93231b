/// Floating-point numbers from and to characters, without a locale, as `std::from_chars` and
/// `std::to_chars` do it; where the standard library lacks them, by functions of our own.
#pragma once

#include "common/utility/floattext.h"

#include <charconv>
#include <cmath>

namespace ZUNO::Common::Utility {

enum class FloatFormat { GENERAL, FIXED };

#ifdef __cpp_lib_to_chars

/// Reads a number without a sign; digits of base 16 have no prefix.
template <typename T>
std::from_chars_result floatFromChars(const char* text, const char* end, T& number, int base) {
    return std::from_chars(text, end, number,
                           base == 16 ? std::chars_format::hex : std::chars_format::general);
}

/// Writes a number with six digits and returns the place behind it. There must be room for it
/// and one character more.
template <typename T>
char* floatToChars(char* begin, char* end, T number, FloatFormat format) {
    return std::to_chars(begin, end, number,
                         format == FloatFormat::FIXED ? std::chars_format::fixed
                                                      : std::chars_format::general,
                         6)
        .ptr;
}

/// Writes a number so that reading it gives every bit again, as `floatToChars` does otherwise.
inline char* exactFloatToChars(char* begin, char* end, float number) {
    return std::to_chars(begin, end, number).ptr;
}

#else

template <typename T>
std::from_chars_result floatFromChars(const char* text, const char* end, T& number, int base) {
    return readFloat(text, end, number, base);
}

template <typename T>
char* floatToChars(char* begin, char*, T number, FloatFormat format) {
    return format == FloatFormat::FIXED ? writeFixed(begin, number)
                                        : writeGeneral(begin, number, 6);
}

inline char* exactFloatToChars(char* begin, char*, float number) {
    char* last = begin;
    bool isExact = false;
    for (int digits = 6; !isExact && digits <= 9; ++digits) { // as few as keep every bit
        last = writeGeneral(begin, number, digits);
        float read = 0;
        readFloat(begin + (*begin == '-' ? 1 : 0), last, read, 10);
        isExact = read == std::abs(number);
    }
    return last;
}

#endif

} // namespace ZUNO::Common::Utility

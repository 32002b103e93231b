/// Floating-point numbers from and to characters, without a locale, as `std::from_chars` and
/// `std::to_chars` do it. A standard library that lacks them is one whose C library knows no other
/// locale than "C", and that library then does the same.
#pragma once

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

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
std::from_chars_result floatFromChars(const char* text, const char*, T& number, int base) {
    const char* const begin = base == 16 ? text - 2 : text; // the prefix is there
    char* behind = nullptr;
    if constexpr (std::is_same_v<T, float>)
        number = std::strtof(begin, &behind);
    else
        number = std::strtod(begin, &behind);
    return {behind, behind <= text ? std::errc::invalid_argument : std::errc{}};
}

template <typename T>
char* floatToChars(char* begin, char* end, T number, FloatFormat format) {
    const char* const pattern = format == FloatFormat::FIXED ? "%f" : "%g";
    return begin + std::snprintf(begin, static_cast<std::size_t>(end - begin), pattern,
                                 static_cast<double>(number));
}

inline char* exactFloatToChars(char* begin, char* end, float number) {
    char* last = begin;
    bool isExact = false;
    for (int digits = 6; !isExact && digits <= 9; ++digits) { // as few as keep every bit
        last = begin + std::snprintf(begin, static_cast<std::size_t>(end - begin), "%.*g", digits,
                                     static_cast<double>(number));
        isExact = std::strtof(begin, nullptr) == number;
    }
    return last;
}

#endif

} // namespace ZUNO::Common::Utility

#include "common/parser/numbertext.h"

#include "common/utility/floatchars.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>
#include <type_traits>

namespace ZUNO::Common::Parser {

namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isHexPrefix(const char* text) {
    return text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

/// Whether a floating-point text that no type can hold is too large, rather than too small.
bool isHuge(const char* text, const char* end) {
    const char* const exponent = std::find_if(
        text, end, [](char c) { return c == 'e' || c == 'E' || c == 'p' || c == 'P'; });
    if (exponent != end)
        return exponent[1] != '-';
    const char* const point = std::find(text, end, '.');
    return std::any_of(text, point, [](char c) { return c > '0' && c <= '9'; });
}

template <typename T>
std::from_chars_result parseDigits(const char* text, const char* end, T& number) {
    if constexpr (std::is_floating_point_v<T>) {
        // without digits behind its prefix it is the number 0; a sign there is no part of a number
        if (isHexPrefix(text) && isHexDigit(text[2] == '.' ? text[3] : text[2])) {
            const auto hex = Utility::floatFromChars(text + 2, end, number, 16);
            if (hex.ec != std::errc::invalid_argument)
                return hex;
        }
        return Utility::floatFromChars(text, end, number, 10);
    } else {
        return std::from_chars(text, end, number);
    }
}

/// Reads one number and returns the character behind it, or null when there is none.
template <typename T>
const char* parse(const char* text, T& number) {
    number = 0;
    while (isSpace(*text))
        ++text;
    const bool isNegative = *text == '-';
    if (isNegative || *text == '+')
        ++text;
    if (*text == '-' || *text == '+')
        return nullptr;
    using Magnitude = std::conditional_t<std::is_floating_point_v<T>, T, std::uint64_t>;
    Magnitude magnitude = 0;
    const auto result = parseDigits(text, text + std::strlen(text), magnitude);
    if (result.ec == std::errc::invalid_argument)
        return nullptr;
    if constexpr (std::is_floating_point_v<T>) {
        if (result.ec == std::errc::result_out_of_range)
            magnitude = isHuge(text, result.ptr) ? std::numeric_limits<T>::infinity() : T{0};
        number = isNegative ? -magnitude : magnitude;
    } else {
        if (result.ec == std::errc::result_out_of_range)
            magnitude = std::numeric_limits<std::uint64_t>::max();
        if constexpr (std::is_signed_v<T>) {
            const auto limit = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
            if (isNegative)
                number = magnitude > limit ? std::numeric_limits<T>::min()
                                           : static_cast<T>(-static_cast<T>(magnitude));
            else
                number = static_cast<T>(std::min(magnitude, limit));
        } else {
            const auto limit = std::uint64_t{std::numeric_limits<T>::max()};
            number = static_cast<T>(std::min(magnitude, limit));
            if (isNegative)
                number = static_cast<T>(0 - number);
        }
    }
    return result.ptr;
}

/// Returns what is behind a mark for an exponent that has no digits. The formatted input of C takes
/// such a mark and its sign as a part of the number, which is the same with and without.
template <typename T>
const char* behindEmptyExponent(const char* begin, const char* end) {
    if constexpr (std::is_floating_point_v<T>) {
        while (isSpace(*begin) || *begin == '-' || *begin == '+')
            ++begin;
        const char mark = isHexPrefix(begin) ? 'p' : 'e';
        const bool isNumber = isDigit(end[-1]) || end[-1] == '.' || mark == 'p';
        if (isNumber && std::tolower(static_cast<unsigned char>(*end)) == mark)
            return end[1] == '-' || end[1] == '+' ? end + 2 : end + 1;
    }
    return end;
}

template <typename T>
T parseWhole(const char* text) {
    T number{};
    parse(text, number);
    return number;
}

} // namespace

std::int32_t toInt32(const char* text) {
    return parseWhole<std::int32_t>(text);
}
std::int64_t toInt64(const char* text) {
    return parseWhole<std::int64_t>(text);
}
std::uint64_t toUInt64(const char* text) {
    return parseWhole<std::uint64_t>(text);
}
float toFloat(const char* text) {
    return static_cast<float>(parseWhole<double>(text));
}
double toDouble(const char* text) {
    return parseWhole<double>(text);
}

template <typename T>
void toNumbers(const char* text, char separator, T* numbers, std::size_t count) {
    std::fill(numbers, numbers + count, T{});
    for (std::size_t i = 0; i < count; ++i) {
        const char* const end = parse(text, numbers[i]);
        if (end == nullptr)
            return;
        text = behindEmptyExponent<T>(text, end);
        if (*text++ != separator)
            return;
    }
}

template void toNumbers(const char*, char, float*, std::size_t);
template void toNumbers(const char*, char, std::int32_t*, std::size_t);
template void toNumbers(const char*, char, std::uint32_t*, std::size_t);

template <typename T>
char* formatNumber(char* buffer, T number) {
    char* const last = buffer + numberTextSize - 1;
    char* end = nullptr;
    if constexpr (std::is_floating_point_v<T>)
        end = Utility::floatToChars(buffer, last, number, Utility::FloatFormat::GENERAL);
    else
        end = std::to_chars(buffer, last, number).ptr;
    *end = '\0';
    return end;
}

template char* formatNumber(char*, float);
template char* formatNumber(char*, double);
template char* formatNumber(char*, std::int32_t);
template char* formatNumber(char*, std::uint32_t);
template char* formatNumber(char*, std::int64_t);
template char* formatNumber(char*, std::uint64_t);

char* formatFixed(char* buffer, float number) {
    char* const end = Utility::floatToChars(buffer, buffer + numberTextSize - 1, number,
                                            Utility::FloatFormat::FIXED);
    *end = '\0';
    return end;
}

} // namespace ZUNO::Common::Parser

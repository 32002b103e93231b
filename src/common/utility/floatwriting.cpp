#include "common/utility/decimal.h"
#include "common/utility/floattext.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace ZUNO::Common::Utility {

namespace {

char* writeText(char* text, const char* word) {
    return std::copy(word, word + std::strlen(word), text);
}

/// Writes a sign, and what is no number of digits. Returns whether that was all.
bool writeOther(char*& text, double& number) {
    if (std::signbit(number))
        *text++ = '-';
    number = std::abs(number);
    if (!std::isfinite(number))
        text = writeText(text, std::isnan(number) ? "nan" : "inf");
    return !std::isfinite(number);
}

Decimal decimalOf(double number) {
    int exponent = 0;
    constexpr int bits = std::numeric_limits<double>::digits;
    const auto mantissa =
        static_cast<std::uint64_t>(std::ldexp(std::frexp(number, &exponent), bits));
    Decimal decimal(mantissa);
    decimal.shift(exponent - bits);
    return decimal;
}

/// Writes digits with the point behind the first one and `exponent` others; zeros where there are
/// no digits.
char* writeDigits(char* text, const char* digits, int count, int exponent) {
    for (int i = std::min(exponent, 0); i < std::max(count, exponent + 1); ++i) {
        *text++ = i >= 0 && i < count ? digits[i] : '0';
        if (i == exponent && i + 1 < count)
            *text++ = '.';
    }
    return text;
}

} // namespace

char* writeGeneral(char* text, double number, int digits) {
    char written[10];
    if (writeOther(text, number))
        return text;
    if (number == 0)
        return writeText(text, "0");
    const int exponent = decimalOf(number).write(written, digits);
    int count = digits;
    while (count > 1 && written[count - 1] == '0')
        --count;
    if (exponent >= -4 && exponent < digits)
        return writeDigits(text, written, count, exponent);
    text = writeDigits(text, written, count, 0);
    *text++ = 'e';
    *text++ = exponent < 0 ? '-' : '+';
    if (std::abs(exponent) < 10)
        *text++ = '0';
    return std::to_chars(text, text + 3, std::abs(exponent)).ptr;
}

char* writeFixed(char* text, double number) {
    constexpr int places = 6;
    char written[320];
    if (writeOther(text, number))
        return text;
    if (number == 0)
        return writeText(text, "0.000000");
    const Decimal decimal = decimalOf(number);
    const int wanted = decimal.exponent() + 1 + places;
    if (wanted < 0)
        return writeText(text, "0.000000");
    written[wanted] = '0'; // for one that becomes longer
    const int exponent = decimal.write(written, wanted);
    return writeDigits(text, written, exponent + 1 + places, exponent);
}

} // namespace ZUNO::Common::Utility

#include "common/utility/decimal.h"
#include "common/utility/floattext.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

namespace ZUNO::Common::Utility {

namespace {

/// Rounds to the nearest number that `T` has. A mantissa of fewer bits than it has must be exact.
template <typename T>
T rounded(const Binary& binary) {
    constexpr int precision = std::numeric_limits<T>::digits;
    constexpr int lowest = std::numeric_limits<T>::min_exponent - precision;
    const auto [mantissa, exponent, isMore] = binary;
    const int cut = std::max(widthOf(mantissa) - precision, lowest - exponent);
    if (cut <= 0)
        return std::ldexp(static_cast<T>(mantissa), exponent);
    if (cut > 63)
        return 0;
    const std::uint64_t half = std::uint64_t{1} << static_cast<unsigned int>(cut - 1);
    const std::uint64_t rest = mantissa & (2 * half - 1);
    std::uint64_t kept = mantissa >> static_cast<unsigned int>(cut);
    if (rest > half || (rest == half && (isMore || kept % 2 == 1)))
        ++kept;
    return std::ldexp(static_cast<T>(kept), exponent + cut);
}

/// The number behind an "e" or a "p", so far as it matters. Returns the place behind it, or
/// `text` when there are no digits.
const char* readExponent(const char* text, const char* end, char mark, int& exponent) {
    constexpr int most = 100'000;
    exponent = 0;
    if (text == end || (*text | 0x20) != mark)
        return text;
    const char* at = text + 1;
    const bool isNegative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+'))
        ++at;
    const char* const first = at;
    for (; at != end && *at >= '0' && *at <= '9'; ++at)
        exponent = std::min(exponent * 10 + (*at - '0'), most);
    if (isNegative)
        exponent = -exponent;
    return at == first ? text : at;
}

int valueOf(char c) {
    const char small = static_cast<char>(c | 0x20);
    return c >= '0' && c <= '9' ? c - '0' : small >= 'a' && small <= 'f' ? small - 'a' + 10 : 99;
}

/// What a text has of digits, with a point somewhere.
struct Digits {
    const char* mEnd = nullptr;   ///< null: there are none
    const char* mFirst = nullptr; ///< that is not 0
    int mCount = 0;               ///< from that on
    std::uint64_t mMantissa = 0;  ///< the first of them as a number,
    int mTaken = 0;               ///< how many those are,
    int mExponent = 0;            ///< the power of the base that they are multiplied by,
    bool mIsMore = false;         ///< and whether others than 0 follow

    Digits(const char* text, const char* end, int base) {
        const int most = base == 16 ? 15 : 19; // that 64 bits hold
        bool isBehindPoint = false;
        for (; text != end; ++text) {
            if (*text == '.' && !isBehindPoint) {
                isBehindPoint = true;
                continue;
            }
            if (valueOf(*text) >= base)
                break;
            mEnd = text;
            add(text, base, most, isBehindPoint);
        }
        if (mEnd != nullptr)
            mEnd = text;
    }

private:
    void add(const char* text, int base, int most, bool isBehindPoint) {
        const int value = valueOf(*text);
        if (mFirst == nullptr && value != 0)
            mFirst = text;
        mCount += mFirst != nullptr ? 1 : 0;
        if (mCount <= most) {
            mTaken = mCount;
            mMantissa =
                mMantissa * static_cast<unsigned int>(base) + static_cast<unsigned int>(value);
            mExponent -= isBehindPoint ? 1 : 0;
        } else {
            mIsMore = mIsMore || value != 0;
            mExponent += isBehindPoint ? 0 : 1;
        }
    }
};

/// The nearest `T` when one operation on a `double` gives it; else a negative number.
template <typename T>
T roundedAtOnce(const Digits& digits, int exponent) {
    static constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr int most = std::size(powers) - 1;
    if (digits.mIsMore || digits.mMantissa >> 53U != 0 || std::abs(exponent) > most)
        return -1;
    const auto mantissa = static_cast<double>(digits.mMantissa);
    const double number = exponent < 0 ? mantissa / powers[-exponent] : mantissa * powers[exponent];
    if constexpr (sizeof(T) < sizeof(double)) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        constexpr std::uint64_t cut = (std::uint64_t{1} << 29U) - 1;
        // rounded twice, what lies halfway may go astray, and what has fewer bits
        if ((bits & cut) == (cut + 1) / 2 || number < double{std::numeric_limits<T>::min()})
            return -1;
    }
    return static_cast<T>(number);
}

template <typename T>
T numberOf(const Digits& digits, int exponent) {
    constexpr int largest = 310; // powers of ten beyond every double
    constexpr int smallest = -330;
    if (digits.mMantissa == 0)
        return 0;
    if (const T number = roundedAtOnce<T>(digits, exponent); number >= 0)
        return number;
    const int first = exponent + digits.mTaken - 1;
    if (first > largest)
        return std::numeric_limits<T>::infinity();
    if (first < smallest)
        return 0;
    return rounded<T>(Decimal(digits.mFirst, digits.mCount, first).toBinary());
}

/// Reads "inf", "infinity", "nan" or "nan(...)", in letters of either size.
template <typename T>
const char* readWord(const char* text, const char* end, T& number) {
    const auto begins = [end](const char* at, const char* word) {
        for (; *word != 0; ++word, ++at)
            if (at == end || (*at | 0x20) != *word)
                return false;
        return true;
    };
    if (begins(text, "inf")) {
        number = std::numeric_limits<T>::infinity();
        return text + (begins(text + 3, "inity") ? 8 : 3);
    }
    if (!begins(text, "nan"))
        return nullptr;
    number = std::numeric_limits<T>::quiet_NaN();
    text += 3;
    const char* behind = text;
    if (behind != end && *behind == '(')
        do
            ++behind;
        while (behind != end &&
               (*behind == '_' || std::isalnum(static_cast<unsigned char>(*behind))));
    return behind != text && behind != end && *behind == ')' ? behind + 1 : text;
}

} // namespace

template <typename T>
std::from_chars_result readFloat(const char* text, const char* end, T& number, int base) {
    const Digits digits(text, end, base);
    if (digits.mEnd == nullptr) {
        const char* const behind = readWord(text, end, number);
        return {behind != nullptr ? behind : text,
                behind != nullptr ? std::errc{} : std::errc::invalid_argument};
    }
    int exponent = 0;
    const char* const behind = readExponent(digits.mEnd, end, base == 16 ? 'p' : 'e', exponent);
    if (base == 16)
        number = rounded<T>({digits.mMantissa, exponent + 4 * digits.mExponent, digits.mIsMore});
    else
        number = numberOf<T>(digits, exponent + digits.mExponent);
    return {behind, std::errc{}};
}

template std::from_chars_result readFloat(const char*, const char*, float&, int);
template std::from_chars_result readFloat(const char*, const char*, double&, int);

} // namespace ZUNO::Common::Utility

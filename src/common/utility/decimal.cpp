#include "common/utility/decimal.h"

#include <algorithm>

namespace ZUNO::Common::Utility {

namespace {

constexpr std::uint32_t limbBase = 1'000'000'000;
constexpr int limbDigits = 9;
constexpr int step = 29; // bits at a time

} // namespace

int widthOf(std::uint64_t number) {
    int width = 0;
    for (; number != 0; number >>= 1U)
        ++width;
    return width;
}

Decimal::Decimal(std::uint64_t number) {
    for (; number != 0; number /= limbBase, ++mPoint)
        addFront(static_cast<std::uint32_t>(number % limbBase));
}

Decimal::Decimal(const char* digits, int count, int exponent) {
    constexpr int most = 900; // halfway between two doubles lies nothing longer
    // the first limb has as many digits as put the point between two
    int place = ((exponent % limbDigits) + limbDigits) % limbDigits;
    mPoint = (exponent - place) / limbDigits + 1;
    std::uint32_t limb = 0;
    int i = 0;
    const auto next = [&]() -> std::uint32_t {
        if (i++ >= count)
            return 0;
        digits += *digits == '.' ? 1 : 0;
        return static_cast<std::uint32_t>(*digits++ - '0');
    };
    while (i < std::min(count, most) || place != limbDigits - 1) {
        limb = limb * 10 + next();
        if (place-- == 0) {
            mLimbs[mCount++] = limb;
            limb = 0;
            place = limbDigits - 1;
        }
    }
    while (i < count && !mIsMore)
        mIsMore = next() != 0;
    dropZeros();
}

void Decimal::addFront(std::uint32_t limb) {
    std::copy_backward(mLimbs, mLimbs + mCount, mLimbs + mCount + 1);
    mLimbs[0] = limb;
    ++mCount;
}

void Decimal::shiftLeft(int bits) {
    std::uint64_t carry = 0;
    for (int i = mCount - 1; i >= 0; --i) {
        carry += std::uint64_t{mLimbs[i]} << static_cast<unsigned int>(bits);
        mLimbs[i] = static_cast<std::uint32_t>(carry % limbBase);
        carry /= limbBase;
    }
    if (carry != 0) {
        addFront(static_cast<std::uint32_t>(carry));
        ++mPoint;
    }
    dropZeros();
}

void Decimal::dropZeros() {
    while (mCount > 0 && mLimbs[mCount - 1] == 0)
        --mCount;
}

void Decimal::shiftRight(int bits) {
    std::uint64_t rest = 0;
    for (int i = 0; i < mCount || rest != 0; ++i) {
        rest = rest * limbBase + limb(i);
        mLimbs[i] = static_cast<std::uint32_t>(rest >> static_cast<unsigned int>(bits));
        rest &= (std::uint64_t{1} << static_cast<unsigned int>(bits)) - 1;
        mCount = std::max(mCount, i + 1);
    }
    if (mCount > 0 && mLimbs[0] == 0) {
        std::copy(mLimbs + 1, mLimbs + mCount, mLimbs);
        --mCount;
        --mPoint;
    }
}

void Decimal::shift(int bits) {
    for (; bits > 0; bits -= std::min(bits, step))
        shiftLeft(std::min(bits, step));
    for (; bits < 0; bits += std::min(-bits, step))
        shiftRight(std::min(-bits, step));
}

Binary Decimal::toBinary() {
    constexpr int fewest = 55; // more than a double's
    constexpr int most = 59;
    int exponent = 0;
    for (; mPoint > 2; exponent += step)
        shiftRight(step);
    for (int width = widthOf(integer()); width < fewest; width = widthOf(integer())) {
        const int bits = std::min(most - width, step);
        shiftLeft(bits);
        exponent -= bits;
    }
    return {integer(), exponent, mIsMore || mCount > mPoint};
}

std::uint64_t Decimal::integer() const {
    return mPoint < 1 ? 0 : mPoint == 1 ? limb(0) : std::uint64_t{limb(0)} * limbBase + limb(1);
}

int Decimal::exponent() const {
    return (mPoint - 1) * limbDigits + firstWidth() - 1;
}

int Decimal::firstWidth() const {
    int width = 1;
    for (std::uint32_t rest = limb(0); rest >= 10; rest /= 10)
        ++width;
    return width;
}

char Decimal::digit(int i) const {
    i += limbDigits - firstWidth();
    std::uint32_t rest = limb(i / limbDigits);
    for (int behind = limbDigits - 1 - i % limbDigits; behind > 0; --behind)
        rest /= 10;
    return static_cast<char>('0' + rest % 10);
}

int Decimal::write(char* digits, int wanted) const {
    for (int i = 0; i < wanted; ++i)
        digits[i] = digit(i);
    bool isHalf = digit(wanted) == '5';
    const int count = firstWidth() + (mCount - 1) * limbDigits;
    for (int i = wanted + 1; isHalf && i < count; ++i)
        isHalf = digit(i) == '0';
    const bool isOdd = wanted > 0 && digits[wanted - 1] % 2 == 1;
    if (isHalf ? !isOdd : digit(wanted) < '5')
        return exponent();
    int last = wanted - 1;
    for (; last >= 0 && digits[last] == '9'; --last)
        digits[last] = '0';
    if (last >= 0) {
        ++digits[last];
        return exponent();
    }
    digits[0] = '1'; // and zeros behind it
    return exponent() + 1;
}

} // namespace ZUNO::Common::Utility

#pragma once

#include <cstdint>

namespace ZUNO::Common::Utility {

/// Returns how many bits a number has.
int widthOf(std::uint64_t number);

/// A number by its upper bits: `mMantissa` times two to the power of `mExponent`, and a part of the
/// last bit when `mIsMore`.
struct Binary {
    std::uint64_t mMantissa;
    int mExponent;
    bool mIsMore;
};

/// A decimal number that is halved and doubled without loss: limbs of nine digits, the first of
/// them not 0, with the point behind the first `mPoint` of them. It has room for what a `double`,
/// or the digits that decide about one, can come to.
class Decimal {
public:
    explicit Decimal(std::uint64_t number);
    /// From so many digits, the first not 0, with a point somewhere among them, and the power of
    /// ten of the first.
    Decimal(const char* digits, int count, int exponent);

    /// Returns 55 bits and more. The number is another one then.
    Binary toBinary();
    /// Multiplies by two to the power of `bits`.
    void shift(int bits);
    /// Writes the first digits, rounded, and returns the power of ten of the first one.
    int write(char* digits, int wanted) const;
    /// The power of ten of the first digit.
    int exponent() const;

private:
    std::uint32_t limb(int i) const { return i < mCount ? mLimbs[i] : 0; }
    std::uint64_t integer() const; // of a number below 10^18
    int firstWidth() const;
    char digit(int i) const;
    void shiftLeft(int bits);
    void shiftRight(int bits);
    void addFront(std::uint32_t limb);
    void dropZeros(); // behind the last limb

    std::uint32_t mLimbs[240];
    int mCount = 0;
    int mPoint = 0;
    bool mIsMore = false;
};

} // namespace ZUNO::Common::Utility

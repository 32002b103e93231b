/// Floating-point numbers from and to decimal text in little code, for a standard library whose
/// `std::from_chars` and `std::to_chars` know integers alone. They round as those do: to the
/// nearest number, or text, and halfway to the even one.
#pragma once

#include <charconv>

namespace ZUNO::Common::Utility {

/// Reads a `float` or a `double` without a sign, as far as the text is one; digits of base 16 have
/// no prefix. What no `T` can hold becomes 0 or infinity, without an error.
template <typename T>
std::from_chars_result readFloat(const char* text, const char* end, T& number, int base);

/// Write a number with so many digits, at most 9, as "%.*g" does, and with six places behind the
/// point, as "%f" does. Return the place behind it. There must be room for 50 characters, and for
/// 320 of a `double` with places.
char* writeGeneral(char* text, double number, int digits);
char* writeFixed(char* text, double number);

} // namespace ZUNO::Common::Utility

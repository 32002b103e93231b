/// Numbers to and from text, without the process's locale: a host that has set a decimal comma
/// reads and writes the same documents.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ZUNO::Common::Parser {

/// These return the number at the start of the text, after white space; 0 when there is none. What
/// a type can't hold becomes the nearest number that it can (infinity for floating point).
std::int32_t toInt32(const char* text);
std::int64_t toInt64(const char* text);
std::uint64_t toUInt64(const char* text);
/// By way of `double`, as the C library's `atof` is used.
float toFloat(const char* text);
double toDouble(const char* text);

/// Reads numbers that are separated by one character each, as "%f/%f/%f" does: white space may
/// precede each number, not the separator. Numbers that are not there become 0.
template <typename T>
void toNumbers(const char* text, char separator, T* numbers, std::size_t count);

/// These write a number, zero-terminated, and return its end: integers in decimal, floating point
/// as "%g" or, by `formatFixed`, as "%f". The buffer must hold `numberTextSize` characters.
inline constexpr std::size_t numberTextSize = 64;
template <typename T>
char* formatNumber(char* buffer, T number);
char* formatFixed(char* buffer, float number);

} // namespace ZUNO::Common::Parser

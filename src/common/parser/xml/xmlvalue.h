/// Values that stand as texts in documents.
#pragma once

#include "common/math/vec3.h"

#include <concepts>
#include <cstdint>
#include <type_traits>

namespace ZUNO::Common::Parser::XML {

/// How values of one type are read from a text and written to one: the integers of 32 and 64 bits,
/// `float`, `double`, `bool`, and vectors of two or three of `float`, `int` or `unsigned int`.
template <typename T>
struct ValueText {
    /// Returns the value at the start of the text: decimal numbers, components separated by "/",
    /// "1" or what begins with "true" in any case. What the text lacks is 0.
    static T read(const char* text);
    /// Writes the value, zero-terminated: integers in decimal, floating point as "%g", "true" or
    /// "false". The buffer must hold `longestValue` characters.
    static void write(char* buffer, const T& value);
};

inline constexpr std::size_t longestValue = 128;

template <typename T>
concept XMLInteger = std::integral<T> && !std::same_as<T, bool>;

template <typename T, typename... Others>
concept OneOf = (std::same_as<T, Others> || ...);

/// The types of values that documents hold.
template <typename T>
concept XMLValue = XMLInteger<T> ||
    OneOf<T, float, double, bool, Math::Vec2<float>, Math::Vec2<int>, Math::Vec2<unsigned int>,
          Math::Vec3<float>, Math::Vec3<int>, Math::Vec3<unsigned int>>;

template <XMLValue T>
struct TextTypeOf {
    using Type = T;
};
template <XMLInteger T>
struct TextTypeOf<T> {
    static constexpr bool isWide = sizeof(T) > sizeof(std::int32_t);
    using Signed = std::conditional_t<isWide, std::int64_t, std::int32_t>;
    using Unsigned = std::conditional_t<isWide, std::uint64_t, std::uint32_t>;
    using Type = std::conditional_t<std::is_signed_v<T>, Signed, Unsigned>;
};

/// The type whose text form `T` has: integers of the same size and sign share theirs.
template <XMLValue T>
using TextType = typename TextTypeOf<T>::Type;

} // namespace ZUNO::Common::Parser::XML

#include "common/parser/xml/xmlvalue.h"

#include "common/parser/numbertext.h"

#include <cctype>
#include <cstring>

namespace ZUNO::Common::Parser::XML {

namespace {

void parse(const char* text, std::int32_t& out) {
    out = toInt32(text);
}
void parse(const char* text, std::uint32_t& out) {
    out = static_cast<std::uint32_t>(toInt64(text));
}
void parse(const char* text, std::int64_t& out) {
    out = toInt64(text);
}
void parse(const char* text, std::uint64_t& out) {
    out = toUInt64(text);
}
void parse(const char* text, float& out) {
    out = toFloat(text);
}
void parse(const char* text, double& out) {
    out = toDouble(text);
}
void parse(const char* text, bool& out) {
    constexpr const char* truth = "true";
    std::size_t same = 0;
    while (same < 4 && std::tolower(static_cast<unsigned char>(text[same])) == truth[same])
        ++same;
    out = same == 4 || std::strcmp(text, "1") == 0;
}
template <typename T>
void parse(const char* text, Math::Vec3<T>& out) {
    T numbers[3];
    toNumbers(text, '/', numbers, 3);
    out = {numbers[0], numbers[1], numbers[2]};
}
template <typename T>
void parse(const char* text, Math::Vec2<T>& out) {
    T numbers[2];
    toNumbers(text, '/', numbers, 2);
    out = {numbers[0], numbers[1]};
}

// Each writes a value and returns its end.

template <typename T>
char* format(char* buffer, const T& number) {
    return formatNumber(buffer, number);
}
char* format(char* buffer, const bool& truth) {
    const char* const text = truth ? "true" : "false";
    const std::size_t length = std::strlen(text);
    std::memcpy(buffer, text, length + 1);
    return buffer + length;
}
template <typename T>
char* format(char* buffer, const Math::Vec2<T>& vector) {
    buffer = formatNumber(buffer, vector.mX);
    *buffer++ = '/';
    return formatNumber(buffer, vector.mY);
}
template <typename T>
char* format(char* buffer, const Math::Vec3<T>& vector) {
    buffer = format(buffer, Math::Vec2<T>(vector.mX, vector.mY));
    *buffer++ = '/';
    return formatNumber(buffer, vector.mZ);
}

} // namespace

template <typename T>
T ValueText<T>::read(const char* text) {
    T value;
    parse(text, value);
    return value;
}

template <typename T>
void ValueText<T>::write(char* buffer, const T& value) {
    format(buffer, value);
}

template struct ValueText<std::int32_t>;
template struct ValueText<std::uint32_t>;
template struct ValueText<std::int64_t>;
template struct ValueText<std::uint64_t>;
template struct ValueText<float>;
template struct ValueText<double>;
template struct ValueText<bool>;
template struct ValueText<Math::Vec2<float>>;
template struct ValueText<Math::Vec2<int>>;
template struct ValueText<Math::Vec2<unsigned int>>;
template struct ValueText<Math::Vec3<float>>;
template struct ValueText<Math::Vec3<int>>;
template struct ValueText<Math::Vec3<unsigned int>>;

} // namespace ZUNO::Common::Parser::XML

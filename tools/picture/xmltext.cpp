#include "tools/picture/xmltext.h"

#include <cstdint>

namespace ZUNO::Tools {

namespace {

/// How many bytes at the beginning are one character that a document may hold; 0: they are none.
std::size_t lengthOfCharacter(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned int first = at(0);
    if (first < 0x80)
        return first >= ' ' || first == '\t' || first == '\n' || first == '\r' ? 1 : 0;
    const std::size_t length = first >= 0xF0 ? 4 : (first >= 0xE0 ? 3 : 2);
    if (first < 0xC0 || first > 0xF7 || bytes.size() < length)
        return 0;
    std::uint32_t code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0U) != 0x80)
            return 0;
        code = code << 6U | (at(i) & 0x3FU);
    }
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000}; // else a shorter form was due
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    const bool isCharacter = code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF && !isSurrogate;
    return code >= least[length] && isCharacter ? length : 0;
}

} // namespace

std::string xmlTextOf(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = lengthOfCharacter(bytes);
        if (length == 0)
            text += "\xEF\xBF\xBD";
        else if (bytes[0] == '<')
            text += "&lt;";
        else if (bytes[0] == '>')
            text += "&gt;";
        else if (bytes[0] == '&')
            text += "&amp;";
        else
            text += bytes.substr(0, length);
        bytes.remove_prefix(length != 0 ? length : 1);
    }
    return text;
}

} // namespace ZUNO::Tools

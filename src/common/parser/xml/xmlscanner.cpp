#include "common/parser/xml/xmlscanner.h"

#include "common/parser/xml/xmlparserexception.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace ZUNO::Common::Parser::XML {

namespace {

#define ZUNO_XML_NAME_START "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"

constexpr char nameStartCharacters[] = ZUNO_XML_NAME_START "_";
constexpr char nameCharacters[] = ZUNO_XML_NAME_START "0123456789_.,-:";
constexpr char whitespaceCharacters[] = " \t\n\r";

#undef ZUNO_XML_NAME_START

using ByteClass = std::array<bool, 256>;

/// The bytes of a string, its NUL among them.
template <std::size_t Size>
constexpr ByteClass makeClass(const char (&characters)[Size]) {
    ByteClass members{};
    for (const char character : characters)
        members[static_cast<unsigned char>(character)] = true;
    return members;
}

constexpr ByteClass nameStartClass = makeClass(nameStartCharacters);
constexpr ByteClass nameClass = makeClass(nameCharacters);
constexpr ByteClass whitespaceClass = makeClass(whitespaceCharacters);

bool isIn(const ByteClass& members, char byte) {
    return members[static_cast<unsigned char>(byte)];
}

} // namespace

void XMLScanner::open(char* document, std::uint64_t length) {
    mBegin = mPosition = mErrorPosition = document;
    mEnd = document + length;
    mNewlines.clear();
}

char XMLScanner::current() const {
    if (mPosition == mEnd)
        failAtEnd();
    return *mPosition;
}

bool XMLScanner::accept(char expected) {
    if (current() != expected)
        return false;
    advance();
    return true;
}

char* XMLScanner::behindWhitespace(char* from) {
    for (; from != mEnd && isWhitespace(*from); ++from)
        if (*from == '\n')
            recordNewline(from);
    if (from == mEnd)
        failAtEnd();
    return from;
}

XMLScanner::Range XMLScanner::readName() {
    markPosition();
    if (!isIn(nameStartClass, current())) {
        const String behind = String("' , must be in '") + nameStartCharacters + "'";
        failAtByte("name has invalid first char '", behind.getConstCharPtr());
    }
    char* const begin = mPosition;
    while (mPosition != mEnd && isIn(nameClass, *mPosition))
        ++mPosition;
    if (mPosition == mEnd)
        fail("XMLParser: Reached end of buffer during name read");
    return {begin, mPosition};
}

char* XMLScanner::find(char* from, char byte) const {
    return static_cast<char*>(std::memchr(from, byte, static_cast<std::size_t>(mEnd - from)));
}

char* XMLScanner::findBehind(char* from, const char* text) const {
    const std::string_view wanted(text);
    char* const place = std::search(from, mEnd, wanted.begin(), wanted.end());
    return place != mEnd ? place + wanted.size() : nullptr;
}

bool XMLScanner::startsWith(const char* position, const char* text) const {
    return std::string_view(position, mEnd).starts_with(text);
}

bool XMLScanner::isWhitespace(char byte) {
    return isIn(whitespaceClass, byte);
}

void XMLScanner::recordNewline(const char* position) {
    const auto offset = static_cast<std::uint32_t>(position - mBegin);
    if (mNewlines.empty() || mNewlines.back() != offset)
        mNewlines.push_back(offset);
}

void XMLScanner::fail(const char* message) const {
    const auto errorOffset = static_cast<std::uint32_t>(mErrorPosition - mBegin);
    auto newlines = mNewlines;
    std::ranges::sort(newlines);
    newlines.erase(std::unique(newlines.begin(), newlines.end()), newlines.end());
    const auto behind = std::ranges::upper_bound(newlines, errorOffset);
    const auto count = static_cast<std::uint32_t>(behind - newlines.begin());
    const std::uint32_t row = count != 0 ? errorOffset - *(behind - 1) : errorOffset;
    throw new XMLParserException(message, count + 1, row);
}

void XMLScanner::failAtByte(const char* before, const char* behind) const {
    const char byte[] = {current(), '\0'};
    fail((String(before) + byte + behind).getConstCharPtr());
}

void XMLScanner::failAtEnd() const {
    fail("XMLParser: End of buffer reached.");
}

} // namespace ZUNO::Common::Parser::XML

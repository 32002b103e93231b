#include "common/parser/xml/xmlscanner.h"

#include "common/parser/xml/xmlparserexception.h"

#include <algorithm>
#include <string_view>

namespace ZUNO::Common::Parser::XML {

void XMLScanner::open(char* document, std::uint64_t length, const String& name) {
    mName = name;
    mBegin = mPosition = mErrorPosition = document;
    mEnd = document + length;
    mNewlines.clear();
}

char* XMLScanner::findBehind(char* from, const char* text) const {
    const std::string_view wanted(text);
    char* const place = std::search(from, mEnd, wanted.begin(), wanted.end());
    return place != mEnd ? place + wanted.size() : nullptr;
}

bool XMLScanner::startsWith(const char* position, const char* text) const {
    return std::string_view(position, static_cast<std::size_t>(mEnd - position)).starts_with(text);
}

void XMLScanner::fail(const char* message) const {
    const auto errorOffset = static_cast<std::uint32_t>(mErrorPosition - mBegin);
    std::uint32_t line = 1;
    std::uint32_t lineStart = 0;
    for (const std::uint32_t newline : mNewlines) {
        if (newline > errorOffset)
            continue; // seen by a look ahead
        ++line;
        lineStart = std::max(lineStart, newline);
    }
    throw new XMLParserException(message, line, errorOffset - lineStart, mName);
}

void XMLScanner::failAtByte(const char* before, const char* behind) const {
    const char byte[] = {current(), '\0'};
    fail((String(before) + byte + behind).getConstCharPtr());
}

void XMLScanner::failAtEnd() const {
    fail("XMLParser: End of buffer reached.");
}

void XMLScanner::failAtNameStart() const {
    const String behind = String("' , must be in '") + nameStartCharacters + "'";
    failAtByte("name has invalid first char '", behind.getConstCharPtr());
}

void XMLScanner::failInName() const {
    fail("XMLParser: Reached end of buffer during name read");
}

} // namespace ZUNO::Common::Parser::XML

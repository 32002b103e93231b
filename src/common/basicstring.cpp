#include "common/basicstring.h"

#include "common/memory/globalallocators.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>

namespace ZUNO::Common {

namespace {

const SharedPtr<Memory::Allocator>& stringAllocator() {
    return Memory::usable(gStringAllocator);
}

/// A number's digits, zero-terminated.
struct Decimal {
    template <typename Number>
    explicit Decimal(Number number) : mText() {
        std::to_chars(mText, mText + sizeof(mText) - 1, number);
    }
    char mText[16];
};

} // namespace

BasicString<char>::BasicString() : BasicString(stringAllocator()) {}

BasicString<char>::BasicString(const SharedPtr<Memory::Allocator>& allocator)
    : mCharacters(1, '\0', allocator) {}

BasicString<char>::BasicString(const char* text) : BasicString(text, stringAllocator()) {}

BasicString<char>::BasicString(const char* text, const SharedPtr<Memory::Allocator>& allocator)
    : mCharacters(allocator) {
    if (text == nullptr)
        text = "";
    mCharacters.assign(text, text + std::strlen(text) + 1);
}

BasicString<char>::BasicString(int number) : BasicString(Decimal(number).mText) {}

BasicString<char>::BasicString(unsigned int number) : BasicString(Decimal(number).mText) {}

BasicString<char>::BasicString(const BasicString& other) : BasicString(other, stringAllocator()) {}

BasicString<char>::BasicString(const BasicString& other,
                               const SharedPtr<Memory::Allocator>& allocator)
    : mCharacters(other.mCharacters.begin(), other.mCharacters.end(), allocator) {}

BasicString<char>& BasicString<char>::operator=(const BasicString& other) {
    if (this != &other)
        mCharacters.assign(other.mCharacters.begin(), other.mCharacters.end());
    return *this;
}

BasicString<char> BasicString<char>::operator+(const BasicString& other) const {
    BasicString sum(*this);
    sum += other;
    return sum;
}

BasicString<char>& BasicString<char>::operator+=(const BasicString& other) {
    const std::size_t oldLength = getLength();
    const std::size_t addedLength = other.getLength(); // `other` may be this string
    mCharacters.resize(oldLength + addedLength + 1);
    std::memmove(mCharacters.data() + oldLength, other.mCharacters.data(), addedLength);
    mCharacters.back() = '\0';
    return *this;
}

bool BasicString<char>::operator==(const BasicString& other) const {
    return std::equal(mCharacters.begin(), mCharacters.end(), other.mCharacters.begin(),
                      other.mCharacters.end());
}

bool BasicString<char>::operator<(const BasicString& other) const {
    return std::lexicographical_compare(
        mCharacters.begin(), mCharacters.end() - 1, other.mCharacters.begin(),
        other.mCharacters.end() - 1, [](char left, char right) {
            return static_cast<signed char>(left) < static_cast<signed char>(right);
        });
}

BasicString<char> BasicString<char>::toLower() const {
    BasicString lowered(*this);
    for (char& character : lowered.mCharacters) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isupper(byte) != 0)
            character = static_cast<char>(std::tolower(byte));
    }
    return lowered;
}

std::ostream& operator<<(std::ostream& stream, const String& string) {
    return stream.write(string.getConstCharPtr(), static_cast<std::streamsize>(string.getLength()));
}

} // namespace ZUNO::Common

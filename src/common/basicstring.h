#pragma once

#include "common/memory/stlallocator.h"
#include "common/report/reporttext.h"

#include <ostream>
#include <vector>

namespace ZUNO::Common {

template <typename T>
class BasicString;

/// The library's string: plain bytes that always end with a zero.
/// The characters come from the string allocator, or from the one that the constructor is given.
/// Out of memory raises an OutOfMemoryException. No locking.
template <>
class BasicString<char> {
public:
    BasicString();
    /// An empty string with storage from `allocator`; null is the process heap.
    explicit BasicString(const SharedPtr<Memory::Allocator>& allocator);
    /// The text up to its zero; null gives the empty string.
    BasicString(const char* text);
    BasicString(const char* text, const SharedPtr<Memory::Allocator>& allocator);
    /// The number in decimal.
    explicit BasicString(int number);
    explicit BasicString(unsigned int number);
    /// Copies the characters; the copy draws from the string allocator, whatever `other` does.
    BasicString(const BasicString& other);
    BasicString(const BasicString& other, const SharedPtr<Memory::Allocator>& allocator);
    ~BasicString() = default;

    /// Copies the characters into this string's own storage.
    BasicString& operator=(const BasicString& other);

    /// Makes the string empty; needs no memory.
    void clear() { mCharacters.erase(mCharacters.begin(), mCharacters.end() - 1); }

    bool isEmpty() const { return getLength() == 0; }
    /// The number of characters without the zero.
    unsigned int getLength() const { return static_cast<unsigned int>(mCharacters.size() - 1); }

    /// The character at `index`, which is at most the length (there the zero stands).
    char& operator[](unsigned int index) { return mCharacters[index]; }
    const char& operator[](unsigned int index) const { return mCharacters[index]; }

    /// The zero-terminated text; valid until the string changes.
    const char* getConstCharPtr() const { return mCharacters.data(); }

    BasicString operator+(const BasicString& other) const;
    BasicString& operator+=(const BasicString& other);

    bool operator==(const BasicString& other) const;
    /// By signed bytes: 0x80 to 0xFF come before all ASCII characters.
    bool operator<(const BasicString& other) const;

    /// A copy in which every upper-case character of the default locale is lowered.
    BasicString toLower() const;

private:
    std::vector<char, Memory::STLAllocator<char>> mCharacters;
};

using String = BasicString<char>;

inline String operator+(const char* text, const String& string) {
    return String(text) + string;
}

std::ostream& operator<<(std::ostream& stream, const String& string);

namespace Debug {

inline ReportText& operator<<(ReportText& text, const String& string) {
    text.append(string.getConstCharPtr(), string.getLength());
    return text;
}

} // namespace Debug
} // namespace ZUNO::Common

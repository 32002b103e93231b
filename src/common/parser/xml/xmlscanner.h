#pragma once

#include "common/basicstring.h"
#include "common/memory/stlallocator.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace ZUNO::Common::Parser::XML {

/// A set of bytes.
class ByteClass {
public:
    /// The bytes of a string, its NUL among them.
    template <std::size_t Size>
    explicit constexpr ByteClass(const char (&characters)[Size]) {
        for (const char character : characters)
            mMembers[static_cast<unsigned char>(character)] = true;
    }
    constexpr bool has(char byte) const { return mMembers[static_cast<unsigned char>(byte)]; }

private:
    std::array<bool, 256> mMembers{};
};

inline constexpr char nameStartCharacters[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
inline constexpr ByteClass nameStartClass(nameStartCharacters);
inline constexpr ByteClass
    nameClass("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.,-:");
inline constexpr ByteClass whitespaceClass(" \t\n\r");

/// Walks over a document's bytes: the steps that all parts of the grammar share, and the counting
/// of lines. The document ends in a NUL, which counts as white space and as a name character, so
/// that strings can be terminated in place. Throws an XMLParserException, with the line and row of
/// the error position, for every failure.
class XMLScanner {
public:
    /// A stretch of the document.
    struct Range {
        char* mBegin;
        char* mEnd;
    };

    explicit XMLScanner(const SharedPtr<Memory::Allocator>& allocator) : mNewlines(allocator) {}

    /// Starts at the beginning of a document of `length` bytes, its NUL included. Failures carry
    /// the document's name, unless that is empty.
    void open(char* document, std::uint64_t length, const String& name);

    char* position() const { return mPosition; }
    char* end() const { return mEnd; }
    void moveTo(char* position) { mPosition = position; }
    /// From now on failures are where the scanner stands.
    void markPosition() { mErrorPosition = mPosition; }

    /// Returns the byte at the position. Fails at the end of the document.
    char current() const {
        if (mPosition == mEnd)
            failAtEnd();
        return *mPosition;
    }
    void advance() { ++mPosition; }
    /// Steps over the byte if it is `expected`; returns whether it was.
    bool accept(char expected) {
        if (current() != expected)
            return false;
        advance();
        return true;
    }

    /// Steps over white space and records its line feeds. Fails at the end of the document.
    void skipWhitespace() {
        for (; mPosition != mEnd && isWhitespace(*mPosition); ++mPosition)
            if (*mPosition == '\n')
                recordNewline(mPosition);
        current();
    }
    /// Returns the first byte from `from` on that is no white space, or the document's end. Records
    /// no line feeds.
    char* behindWhitespace(char* from) const {
        while (from != mEnd && isWhitespace(*from))
            ++from;
        return from;
    }
    /// Returns the first byte from `from` on that can't stand in a name, or the document's end.
    char* behindName(char* from) const {
        while (from != mEnd && nameClass.has(*from))
            ++from;
        return from;
    }
    /// Reads a name; it is not terminated.
    Range readName() { return readName(behindName(mPosition)); }
    /// Reads a name that is known to end at `end`.
    Range readName(char* end) {
        markPosition();
        if (!nameStartClass.has(current()))
            failAtNameStart();
        char* const begin = mPosition;
        mPosition = end;
        if (mPosition == mEnd)
            failInName();
        return {begin, end};
    }
    /// Steps over a name and the '>' directly behind it, if that is what stands here.
    bool acceptTagEnd(const char* name) {
        char* end = mPosition;
        for (; *name != '\0'; ++name, ++end)
            if (*end != *name) // at the latest the document's NUL
                return false;
        if (*end != '>')
            return false;
        markPosition(); // as for every name
        mPosition = end + 1;
        return true;
    }
    /// Returns the next `byte` from `from` on, or null.
    char* find(char* from, char byte) const {
        return static_cast<char*>(std::memchr(from, byte, static_cast<std::size_t>(mEnd - from)));
    }
    /// Returns what follows the first `text` from `from` on, or null.
    char* findBehind(char* from, const char* text) const;
    bool startsWith(const char* position, const char* text) const;

    static bool isWhitespace(char byte) { return whitespaceClass.has(byte); }
    /// Remembers a line feed, which may be overwritten afterwards.
    void recordNewline(const char* position) {
        mNewlines.push_back(static_cast<std::uint32_t>(position - mBegin));
    }

    [[noreturn]] void fail(const char* message) const;
    /// The document ends where it should not.
    [[noreturn]] void failAtEnd() const;
    /// The message is the byte at the position between `before` and `behind`.
    [[noreturn]] void failAtByte(const char* before, const char* behind) const;

private:
    [[noreturn]] void failAtNameStart() const;
    [[noreturn]] void failInName() const;

    char* mBegin = nullptr;
    char* mEnd = nullptr;
    char* mPosition = nullptr;
    char* mErrorPosition = nullptr;
    String mName;
    /// Offsets of the line feeds that were passed as white space, each once.
    std::vector<std::uint32_t, Memory::STLAllocator<std::uint32_t>> mNewlines;
};

} // namespace ZUNO::Common::Parser::XML

#pragma once

#include "common/memory/stlallocator.h"

#include <cstdint>
#include <vector>

namespace ZUNO::Common::Parser::XML {

/// Walks over a document's bytes: the steps that all parts of the grammar share, and the line
/// counting. The document ends in a NUL, which counts as white space and as a name character, so
/// that strings can be terminated in place. Every failure is an XMLParserException with the line
/// and row of the error position.
class XMLScanner {
public:
    /// A stretch of the document.
    struct Range {
        char* mBegin;
        char* mEnd;
    };

    explicit XMLScanner(const SharedPtr<Memory::Allocator>& allocator) : mNewlines(allocator) {}

    /// Starts at the beginning of a document of `length` bytes, its NUL included.
    void open(char* document, std::uint64_t length);

    char* position() const { return mPosition; }
    char* end() const { return mEnd; }
    void moveTo(char* position) { mPosition = position; }
    /// Errors from now on are where the scanner stands.
    void markPosition() { mErrorPosition = mPosition; }

    /// The byte at the position. Fails at the end of the document.
    char current() const;
    void advance() { ++mPosition; }
    /// Steps over the byte if it is `expected`; returns whether it was.
    bool accept(char expected);

    void skipWhitespace() { mPosition = behindWhitespace(mPosition); }
    /// The first byte from `from` on that is no white space. Fails at the end of the document.
    char* behindWhitespace(char* from);
    /// Reads a name; it is not terminated.
    Range readName();
    /// The next `byte` from `from` on, or null.
    char* find(char* from, char byte) const;
    /// What follows the first `text` from `from` on, or null.
    char* findBehind(char* from, const char* text) const;
    bool startsWith(const char* position, const char* text) const;

    static bool isWhitespace(char byte);
    /// Remembers a line feed that is about to be overwritten.
    void recordNewline(const char* position);

    [[noreturn]] void fail(const char* message) const;
    /// The message is the byte at the position between `before` and `behind`.
    [[noreturn]] void failAtByte(const char* before, const char* behind) const;

private:
    [[noreturn]] void failAtEnd() const;

    char* mBegin = nullptr;
    char* mEnd = nullptr;
    char* mPosition = nullptr;
    char* mErrorPosition = nullptr;
    /// Offsets of the line feeds passed as white space, in the order of passing, some repeatedly.
    std::vector<std::uint32_t, Memory::STLAllocator<std::uint32_t>> mNewlines;
};

} // namespace ZUNO::Common::Parser::XML

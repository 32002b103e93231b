#pragma once

#include "common/io/filesystem.h"
#include "common/parser/xml/xmlscanner.h"
#include "common/parser/xml/xmltreebuilder.h"

#include <list>

namespace ZUNO::Common::Parser::XML {

/// Reads a whole document into memory and builds its tree.
///
/// The accepted subset: elements with attributes in double quotes, holding either text or child
/// elements; empty elements; comments and processing instructions, which are skipped. References
/// such as "&amp;" are not decoded. Names, values and texts stay in the parser's buffer and are
/// terminated there: the tree refers to them, and lives until the parser parses again or ends.
class XMLParser : public Memory::MemoryManaged {
public:
    /// How deep elements may be nested.
    static constexpr std::size_t maxDepth = 4096;

    XMLParser();
    ~XMLParser() override;

    /// Parses what the stream holds from its position on and returns the root, which stays the
    /// parser's. Raises an XMLParserException (with line and row) for what is no such document,
    /// an IOException when the stream can't be read whole, an ArgumentNullException without one.
    const XMLNodeElements* parse(IO::Stream* stream);

    /// Parses a file. Where it holds an element `xi:include` with the attribute "href", the
    /// document of that name takes the element's place (a relative name is looked up from the
    /// working directory); its errors carry its own lines. Inclusion deeper than `maxIncludes`, or
    /// of a document that is being read already, raises an XMLParserException. Raises what opening
    /// the file raises, and an ArgumentNullException without a file system, which must live as
    /// long as the call.
    const XMLNodeElements* parseFile(const String& filename, IO::FileSystem* fSystem);

    /// How many documents may be read within each other.
    static constexpr unsigned int maxIncludes = 32;

private:
    /// What stands at a place of the document.
    enum NodeCode : int {
        CODE_INVALID = -4,
        CODE_END_TAG = -3,
        CODE_INSTRUCTION = -2,
        CODE_COMMENT = -1,
        CODE_EMPTY = NODE_EMPTY,
        CODE_TEXT = NODE_TEXT,
        CODE_ELEMENTS = NODE_ELEMENTS,
        CODE_INCLUDE = 3
    };
    struct Node {
        NodeCode mCode;
        char* mBegin;
        char* mEnd; ///< of a comment or instruction
    };

    void readDocument(IO::Stream* stream);
    void parseBuffer();

    Node classify(char* position);
    Node classifyElement(char* begin);

    void readElements();
    void beginElements();
    /// Returns whether that was the root's end.
    bool endElements();
    void readEmpty();
    void readText();
    void readInclude();
    void include(const String& href);
    /// Fails when the document can't be included here.
    void checkInclusion(const String& href, const String& fullName) const;
    const char* readStartTag();
    void readAttributes();
    void readEndTag(const char* startName);

    char* mBuffer = nullptr;
    std::uint64_t mBufferLength = 0;
    XMLScanner mScanner;
    XMLTreeBuilder* mBuilder;
    IO::FileSystem* mFileSystem = nullptr; ///< set while `parseFile` runs
    String mFullName;                      ///< of the file that `parseFile` reads
    const XMLParser* mIncluder = nullptr;  ///< the parser that this one reads a document for
    /// One for each inclusion: the tree refers to their buffers.
    std::list<SharedPtr<XMLParser>, Memory::STLAllocator<SharedPtr<XMLParser>>> mIncluded;
};

} // namespace ZUNO::Common::Parser::XML

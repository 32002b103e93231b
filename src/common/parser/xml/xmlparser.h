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

    /// Parses what the stream holds from its position on. Returns the root, which stays the
    /// parser's. Throws an XMLParserException (with line and row) for what is no such document, an
    /// IOException when the stream can't be read whole or its length does not fit 32 bits of
    /// memory, an ArgumentNullException without a stream.
    const XMLNodeElements* parse(IO::Stream* stream);

    /// Parses a file. Where it holds an element `xi:include` with the attribute "href", the
    /// document of that name takes the element's place; a relative name is looked up from the
    /// working directory. Throws as `parse` and as `FileSystem::openFile`, and an
    /// ArgumentNullException without a file system. Failures in an included document carry its
    /// lines and its name. Throws an XMLParserException for inclusion deeper than `maxIncludes`, of
    /// a document that is being read already, and for more than `maxInclusions` altogether.
    /// Lifetime: the file system is used during the call only.
    const XMLNodeElements* parseFile(const String& filename, IO::FileSystem* fSystem);

    /// How many documents may be read within each other.
    static constexpr unsigned int maxIncludes = 32;
    /// How many documents one may include, those that they include among them. Without this bound a
    /// few documents that each include the next twice make an endless one.
    static constexpr unsigned int maxInclusions = 1024;

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
    /// What a look ahead found out about the node on which the scanner stands.
    struct Node {
        NodeCode mCode;
        char* mEnd = nullptr;     ///< what follows a comment or an instruction
        char* mNameEnd = nullptr; ///< what follows an element's name
    };

    void readDocument(IO::Stream* stream);
    [[noreturn]] void failToRead() const;
    void parseBuffer();

    /// Moves to the next node and looks ahead.
    Node classify();
    Node classifyElement(char* name);

    void readElements(const Node& root);
    void beginElements(const Node& node);
    /// Returns whether that was the root's end.
    bool endElements();
    void readEmpty(const Node& node);
    void readText(const Node& node);
    void readInclude(const Node& node);
    void include(const String& href);
    /// Fails when the document can't be included here.
    void countInclusion(const String& href);
    const char* readStartTag(const Node& node);
    void readAttributes();
    void readEndTag(const char* startName);

    char* mBuffer = nullptr;
    std::uint64_t mBufferLength = 0;
    XMLScanner mScanner;
    XMLTreeBuilder* mBuilder;
    IO::FileSystem* mFileSystem = nullptr; ///< set while `parseFile` runs
    String mName;                          ///< of the file that `parseFile` reads
    XMLParser* mIncluder = nullptr;        ///< the parser that this one reads a document for
    unsigned int mInclusions = 0;          ///< counted by the outermost parser
    /// One for each inclusion: the tree refers to their buffers.
    std::list<SharedPtr<XMLParser>, Memory::STLAllocator<SharedPtr<XMLParser>>> mIncluded;
};

} // namespace ZUNO::Common::Parser::XML

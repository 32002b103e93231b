#pragma once

#include "common/io/stream.h"
#include "common/parser/xml/xmlnode.h"

namespace ZUNO::Common::Parser::XML {

/// Writes a document: one element a line, indented by tabs, lines ended by a line feed.
/// Names, values and texts are written as they are: nothing is escaped, so that a quote, an angle
/// bracket or an ampersand in them gives a document that is not read back unchanged.
/// What the stream raises leaves these functions.
class XMLWriter {
public:
    XMLWriter();
    virtual ~XMLWriter() = default;

    /// Writes the line of the XML declaration.
    virtual void writeHeader(IO::Stream& stream);
    /// Writes the tree. Raises an ArgumentNullException for a null node.
    virtual void write(IO::Stream& stream, const XMLNode* root);

private:
    static constexpr std::size_t maxIndentation = 1024;

    /// Writes what stands before a node's children and returns whether they come now.
    bool writeStart(IO::Stream& stream, const XMLNode* node, std::size_t depth);
    void writeEnd(IO::Stream& stream, const XMLNode* node);
    void indent(IO::Stream& stream, std::size_t depth);

    char mTabs[maxIndentation + 1];
};

} // namespace ZUNO::Common::Parser::XML

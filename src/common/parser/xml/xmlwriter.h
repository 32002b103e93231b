#pragma once

#include "common/io/stream.h"
#include "common/parser/xml/xmlnode.h"

namespace ZUNO::Common::Parser::XML {

/// Writes documents: each element on a line of its own, indented by one tab for each element around
/// it (1,024 at most), with a line feed at the end.
/// Nothing is escaped: names, values and texts are written as they are. A quote or a closing angle
/// bracket in a value, or an opening one in a text, gives a document that may not be read back.
/// Throws what the stream throws.
class XMLWriter {
public:
    XMLWriter();
    virtual ~XMLWriter() = default;

    /// Writes the XML declaration, a line that stands before the root.
    virtual void writeHeader(IO::Stream& stream);
    /// Writes a node and all that is below it. Throws an ArgumentNullException for a null node.
    /// Cost: one call of the stream for each piece of text; memory only for the depth of the tree.
    virtual void write(IO::Stream& stream, const XMLNode* root);

private:
    static constexpr std::size_t maxIndentation = 1024;

    /// Writes what stands before a node's children, or the whole node when it can have none.
    /// Returns whether children and the closing tag are still to be written.
    bool writeStart(IO::Stream& stream, const XMLNode* node, std::size_t depth);
    void writeEnd(IO::Stream& stream, const XMLNode* node);
    void indent(IO::Stream& stream, std::size_t depth);

    char mTabs[maxIndentation + 1];
};

} // namespace ZUNO::Common::Parser::XML

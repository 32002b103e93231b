#include "common/parser/xml/xmlwriter.h"

#include "common/exceptions/argumentexceptions.h"
#include "common/memory/globalallocators.h"

#include <algorithm>
#include <vector>

namespace ZUNO::Common::Parser::XML {

namespace {

void put(IO::Stream& stream, const char* text) {
    if (*text != '\0')
        stream.write(text, std::strlen(text));
}

/// An element whose children are being written.
struct OpenElement {
    explicit OpenElement(const XMLNode* node)
        : mNode(static_cast<const XMLNodeElements*>(node)), mNext(mNode->children().begin()) {}

    const XMLNodeElements* mNode;
    XMLNodeElements::Children::Iterator mNext;
};

} // namespace

XMLWriter::XMLWriter() : mTabs() {
    std::fill(std::begin(mTabs), std::end(mTabs), '\t');
}

void XMLWriter::writeHeader(IO::Stream& stream) {
    put(stream, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n");
}

void XMLWriter::write(IO::Stream& stream, const XMLNode* root) {
    // The elements that are open, from the root inwards: a recursion would take as much stack as
    // the tree is deep.
    std::vector<OpenElement, Memory::STLAllocator<OpenElement>> open(gObjectAllocator);
    if (writeStart(stream, root, 0))
        open.emplace_back(root);
    while (!open.empty()) {
        OpenElement& innermost = open.back();
        if (innermost.mNext == XMLNodeElements::Children::end()) {
            indent(stream, open.size() - 1);
            writeEnd(stream, innermost.mNode);
            open.pop_back();
            continue;
        }
        const XMLNode* const child = *innermost.mNext;
        ++innermost.mNext;
        if (writeStart(stream, child, open.size()))
            open.emplace_back(child);
    }
}

bool XMLWriter::writeStart(IO::Stream& stream, const XMLNode* node, std::size_t depth) {
    if (node == nullptr)
        throw new Exceptions::ArgumentNullException("node", "NULL pointer node in the tree");
    indent(stream, depth);
    put(stream, "<");
    put(stream, node->mName);
    for (const auto& [name, value] : node->mAttributes) {
        put(stream, " ");
        put(stream, name);
        put(stream, "=\"");
        put(stream, value);
        put(stream, "\"");
    }
    if (node->mKind == NODE_EMPTY) {
        put(stream, "/>\n");
        return false;
    }
    put(stream, ">");
    if (node->mKind == NODE_ELEMENTS) {
        put(stream, "\n");
        return true;
    }
    put(stream, node->mText);
    writeEnd(stream, node);
    return false;
}

void XMLWriter::writeEnd(IO::Stream& stream, const XMLNode* node) {
    put(stream, "</");
    put(stream, node->mName);
    put(stream, ">\n");
}

void XMLWriter::indent(IO::Stream& stream, std::size_t depth) {
    if (depth != 0)
        stream.write(mTabs, std::min(depth, maxIndentation));
}

} // namespace ZUNO::Common::Parser::XML

#include "common/parser/xml/xmltreereader.h"

namespace ZUNO::Common::Parser::XML {

namespace {

/// A node's place in its document, as reports show it: 'a'->'b'.
struct Path {
    const XMLNode* mNode;
};

Debug::ReportText& operator<<(Debug::ReportText& text, const Path& path) {
    std::size_t depth = 0;
    for (const XMLNode* node = path.mNode; node != nullptr; node = node->mParent)
        ++depth;
    // From the root down, and without memory: a report may be about the lack of it.
    while (depth-- != 0) {
        const XMLNode* node = path.mNode;
        for (std::size_t below = 0; below < depth; ++below)
            node = node->mParent;
        text << '\'' << node->mName << (depth != 0 ? "'->" : "'");
    }
    return text;
}

} // namespace

bool getRequiredElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name) {
    return getOptionalElements(out, parent, name) || reportMissingTag(parent, name);
}

bool getOptionalElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name) {
    out = parent->getChildElements(name);
    return out != nullptr;
}

bool getRequiredText(const char*& out, const XMLNodeElements* parent, const char* name) {
    return parent->getChildText(out, name) || reportMissingTag(parent, name);
}

bool reportMissingTag(const XMLNodeElements* parent, const char* name) {
    ZUNO_REPORT("", "In " << Path{parent} << " the tag '" << name << "' is required !");
    return false;
}

void reportMissingAttribute(const XMLNode* node, const char* name) {
    ZUNO_REPORT("", "In " << Path{node} << " the attribute '" << name << "' is required !");
}

} // namespace ZUNO::Common::Parser::XML

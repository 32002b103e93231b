#include "common/parser/xml/xmltreereader.h"

namespace ZUNO::Common::Parser::XML {

namespace {

/// A node's place in its document, as reports show it: 'a'->'b'.
struct Path {
    const XMLNode* mNode;
};

/// How many of the innermost names a report shows of a deep path.
constexpr unsigned int shownLevels = 16;

Debug::ReportText& operator<<(Debug::ReportText& text, const Path& path) {
    const XMLNode* names[shownLevels];
    unsigned int count = 0;
    const XMLNode* node = path.mNode;
    for (; node != nullptr && count < shownLevels; node = node->mParent)
        names[count++] = node;
    if (node != nullptr)
        text << "...->";
    while (count-- != 0)
        text << '\'' << names[count]->mName << (count != 0 ? "'->" : "'");
    return text;
}

bool reportMissing(const XMLNodeElements* parent, const char* name) {
    ZUNO_REPORT("", "In " << Path{parent} << " the tag '" << name << "' is required !");
    return false;
}

} // namespace

bool getRequiredElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name) {
    return getOptionalElements(out, parent, name) || reportMissing(parent, name);
}

bool getOptionalElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name) {
    out = parent->getChildElements(name);
    return out != nullptr;
}

template <typename T>
bool getRequiredValue(T& out, const XMLNodeElements* parent, const char* name) {
    return parent->getChildValue(out, name) || reportMissing(parent, name);
}

template bool getRequiredValue(std::int32_t&, const XMLNodeElements*, const char*);
template bool getRequiredValue(std::uint32_t&, const XMLNodeElements*, const char*);
template bool getRequiredValue(std::int64_t&, const XMLNodeElements*, const char*);
template bool getRequiredValue(float&, const XMLNodeElements*, const char*);
template bool getRequiredValue(Math::Vec3<float>&, const XMLNodeElements*, const char*);

bool getRequiredText(const char*& out, const XMLNodeElements* parent, const char* name) {
    return parent->getChildText(out, name) || reportMissing(parent, name);
}

void reportMissingAttribute(const XMLNode* node, const char* name) {
    ZUNO_REPORT("", "In " << Path{node} << " the attribute '" << name << "' is required !");
}

} // namespace ZUNO::Common::Parser::XML

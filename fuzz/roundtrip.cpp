// What the parser read is written, and read and written again, as the same bytes.
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmlwriter.h"
#include "fuzz/ground.h"

#include <cstring>
#include <memory>

using namespace ZUNO;
using namespace Common::Parser::XML;

namespace {

/// A start tag ends at its first '>', in a value too, and attributes are written in their names'
/// order: where such a value moves to the front, another node is read.
bool endsTagEarly(const XMLNode* node) {
    for (const auto& [name, value] : node->mAttributes)
        if (std::strchr(value, '>') != nullptr)
            return true;
    if (node->mKind == NODE_ELEMENTS)
        for (const XMLNode* const child : static_cast<const XMLNodeElements*>(node)->children())
            if (endsTagEarly(child))
                return true;
    return false;
}

/// Whether a document was read, and written so that it can be read again.
bool rewrite(const Fuzz::Ground& ground, const char* from, const char* to) {
    const std::unique_ptr<XMLParser> parser(
        Common::Memory::createManaged<XMLParser>(Common::gObjectAllocator));
    bool isLasting = true;
    const bool isRead = Fuzz::succeeds([&] {
        const XMLNodeElements* const root = parser->parse(ground.open(from, 1).get());
        XMLWriter writer;
        const auto out = ground.open(to, 3);
        writer.writeHeader(*out);
        writer.write(*out, root);
        isLasting = !endsTagEarly(root);
    });
    return isRead && isLasting;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (std::memchr(data, '\0', size) != nullptr)
        return 0; // it counts as a name's character, and ends the name: such names don't come back
    const Fuzz::Ground ground;
    ground.put("given", data, size);
    if (!rewrite(ground, "given", "once"))
        return 0;
    Fuzz::require(rewrite(ground, "once", "twice"), "what was written can be read");
    Fuzz::require(rewrite(ground, "twice", "again"), "what was written can be read");
    Fuzz::require(ground.file("twice") == ground.file("again"), "writing changes nothing more");
    return 0;
}

// The XML parser over any bytes.
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "fuzz/ground.h"

#include <memory>

using namespace ZUNO;
using namespace Common::Parser::XML;

namespace {

/// Touches every string of a tree.
std::size_t walk(const XMLNodeElements& root) {
    std::size_t length = 0;
    std::vector<const XMLNode*> waiting = {&root};
    while (!waiting.empty()) {
        const XMLNode* const node = waiting.back();
        waiting.pop_back();
        length += std::strlen(node->mName) + std::strlen(node->mText);
        for (const auto& [name, value] : node->mAttributes) {
            length += std::strlen(name) + std::strlen(value);
            Fuzz::require(node->getAttribute(name) == value, "attributes are found");
        }
        if (node->mKind == NODE_TEXT)
            continue;
        for (const XMLNode* const child : static_cast<const XMLNodeElements*>(node)->children()) {
            Fuzz::require(child->mParent == node, "children know their parent");
            waiting.push_back(child);
        }
    }
    return length;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    ground.put("d", data, size);
    const std::unique_ptr<XMLParser> parser(
        Common::Memory::createManaged<XMLParser>(Common::gObjectAllocator));
    for (int i = 0; i < 2; ++i) // a parser can be used again
        Fuzz::succeeds([&] {
            const XMLNodeElements* const root = parser->parse(ground.open("d", 1).get());
            Fuzz::require(walk(*root) <= size, "a tree holds what the document held");
        });
    return 0;
}

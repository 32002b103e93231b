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

bool rewrite(const Fuzz::Ground& ground, const char* from, const char* to) {
    const std::unique_ptr<XMLParser> parser(
        Common::Memory::createManaged<XMLParser>(Common::gObjectAllocator));
    return Fuzz::succeeds([&] {
        const XMLNodeElements* const root = parser->parse(ground.open(from, 1).get());
        XMLWriter writer;
        const auto out = ground.open(to, 3);
        writer.writeHeader(*out);
        writer.write(*out, root);
    });
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

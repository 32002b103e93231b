#include "navmesh/navmeshfiles.h"

#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmltreereader.h"
#include "navmesh/resourceinterface.h"

#include <memory>

namespace ZUNO::NavMesh {

using namespace Common;

SharedPtr<NavMeshContainer> loadNavMeshXML(const String& fileName) {
    ResourceInterface* const resources = ResourceInterface::getInstance();
    ZUNO_CHECK_AS(resources != nullptr, "resources != NULL", "NavMesh library is not initialised");
    if (resources == nullptr)
        return {};
    const SharedPtr<Memory::Allocator>& allocator = resources->getAllocator();
    const SharedPtr<IO::Stream> stream = resources->openReadStream(fileName);
    const std::unique_ptr<Parser::XML::XMLParser> parser(
        Memory::createManaged<Parser::XML::XMLParser>(allocator));
    const Parser::XML::XMLNodeElements* const top = parser->parse(stream.get());
    const Parser::XML::XMLNodeElements* element = nullptr;
    SharedPtr<NavMeshContainer> mesh;
    if (Parser::XML::getRequiredElements(element, top, "navmesh")) {
        mesh = Memory::createManaged<NavMeshContainer>(allocator);
        if (!mesh->readXML(*element))
            mesh = nullptr;
    }
    stream->close();
    return mesh;
}

} // namespace ZUNO::NavMesh

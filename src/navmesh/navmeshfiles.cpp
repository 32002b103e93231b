#include "navmesh/navmeshfiles.h"

#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmltreereader.h"
#include "common/parser/xml/xmlwriter.h"
#include "navmesh/resourceinterface.h"

#include <memory>

namespace ZUNO::NavMesh {

using namespace Common;

namespace {

/// The library's resources; null, after a report, while it is closed.
ResourceInterface* findResources() {
    ResourceInterface* const resources = ResourceInterface::getInstance();
    ZUNO_CHECK_AS(resources != nullptr, "resources != NULL", "NavMesh library is not initialised");
    return resources;
}

/// The same, for saving a mesh, which must not be null.
ResourceInterface* findResourcesFor(const SharedPtr<NavMeshContainer>& mesh) {
    return ZUNO_CHECK_AS(mesh != nullptr, "mesh != NULL", "There is no mesh to save")
               ? findResources()
               : nullptr;
}

} // namespace

SharedPtr<NavMeshContainer> loadNavMeshXML(const String& fileName) {
    ResourceInterface* const resources = findResources();
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

void saveNavMeshXML(const String& fileName, const SharedPtr<NavMeshContainer>& mesh) {
    ResourceInterface* const resources = findResourcesFor(mesh);
    if (resources == nullptr)
        return;
    const SharedPtr<IO::Stream> stream = resources->openWriteStream(fileName);
    const std::unique_ptr<Parser::XML::XMLTreeBuilder> builder(
        Memory::createManaged<Parser::XML::XMLTreeBuilder>(resources->getAllocator()));
    builder->begin("ZUNO", true);
    mesh->writeXML(*builder);
    Parser::XML::XMLWriter writer;
    writer.writeHeader(*stream);
    writer.write(*stream, builder->getRoot());
    stream->close();
}

SharedPtr<NavMeshContainer> loadNavMeshBinary(const String& fileName) {
    ResourceInterface* const resources = findResources();
    if (resources == nullptr)
        return {};
    const SharedPtr<IO::Stream> stream = resources->openReadStream(fileName);
    SharedPtr<NavMeshContainer> mesh(
        Memory::createManaged<NavMeshContainer>(resources->getAllocator()));
    if (!mesh->readBinary(stream))
        mesh = nullptr;
    stream->close();
    return mesh;
}

void saveNavMeshBinary(const String& fileName, const SharedPtr<NavMeshContainer>& mesh) {
    ResourceInterface* const resources = findResourcesFor(mesh);
    if (resources == nullptr)
        return;
    const SharedPtr<IO::Stream> stream = resources->openWriteStream(fileName);
    mesh->writeBinary(stream, 1, resources->getAllocator());
    stream->close();
}

} // namespace ZUNO::NavMesh

#include "navmesh/navmeshfiles.h"

#include "common/memory/objectcreation.h"
#include "navmesh/meshforms.h"
#include "navmesh/resourceinterface.h"

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
    const SharedPtr<IO::Stream> stream = resources->openReadStream(fileName);
    SharedPtr<NavMeshContainer> mesh = readMeshDocument(*stream, resources->getAllocator());
    stream->close();
    return mesh;
}

void saveNavMeshXML(const String& fileName, const SharedPtr<NavMeshContainer>& mesh) {
    ResourceInterface* const resources = findResourcesFor(mesh);
    if (resources == nullptr)
        return;
    const SharedPtr<IO::Stream> stream = resources->openWriteStream(fileName);
    writeMeshDocument(*mesh, *stream, resources->getAllocator());
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

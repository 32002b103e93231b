#include "navmesh/meshforms.h"

#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmltreereader.h"
#include "common/parser/xml/xmlwriter.h"

#include <algorithm>
#include <memory>

namespace ZUNO::NavMesh {

using namespace Common;
using namespace Common::Parser::XML;

std::int32_t findNodeUnfitForBinary(const NavMeshContainer& mesh) {
    const auto isUnfit = [](const NavMeshContainer::NavNode& node) {
        const auto corners = static_cast<std::ptrdiff_t>(node.mPolygon.size());
        return std::ssize(node.mNeighbours) > corners &&
               std::any_of(node.mNeighbours.begin() + corners, node.mNeighbours.end(),
                           [](std::int32_t neighbour) { return neighbour >= 0; });
    };
    const auto first = std::find_if(mesh.mNodes.begin(), mesh.mNodes.end(), isUnfit);
    return first != mesh.mNodes.end() ? static_cast<std::int32_t>(first - mesh.mNodes.begin()) : -1;
}

SharedPtr<NavMeshContainer> readMeshDocument(IO::Stream& stream,
                                             const SharedPtr<Memory::Allocator>& allocator) {
    const std::unique_ptr<XMLParser> parser(Memory::createManaged<XMLParser>(allocator));
    const XMLNodeElements* const top = parser->parse(&stream);
    const XMLNodeElements* element = nullptr;
    if (!getRequiredElements(element, top, "navmesh"))
        return {};
    SharedPtr<NavMeshContainer> mesh(Memory::createManaged<NavMeshContainer>(allocator));
    return mesh->readXML(*element) ? mesh : SharedPtr<NavMeshContainer>();
}

void writeMeshDocument(const NavMeshContainer& mesh, IO::Stream& stream,
                       const SharedPtr<Memory::Allocator>& allocator) {
    const std::unique_ptr<XMLTreeBuilder> builder(Memory::createManaged<XMLTreeBuilder>(allocator));
    builder->begin("ZUNO", true);
    mesh.writeXML(*builder);
    XMLWriter writer;
    writer.writeHeader(stream);
    writer.write(stream, builder->getRoot());
}

} // namespace ZUNO::NavMesh

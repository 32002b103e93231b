#include "hostkit/meshloading.h"

#include "common/callback/openstream.h"
#include "common/interface.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmltreereader.h"
#include "hostkit/session.h"
#include "navmesh/navmeshcontainer.h"

#include <memory>
#include <stdexcept>

namespace ZUNO::HostKit {

using namespace Common;

namespace {

using Files = SharedPtr<Callback::FileIOCallback>;
using Mesh = SharedPtr<NavMesh::NavMeshContainer>;

/// The binary form begins with its byte order, 0 or 1, which no document does.
bool isBinary(const SharedPtr<IO::Stream>& stream) {
    unsigned char first = 0;
    return stream->read(&first, 1) == 1 && first <= 1;
}

Mesh readMesh(const String& fileName, const Files& files) {
    const SharedPtr<Memory::Allocator>& allocator = Common::getAllocator();
    const auto open = [&] {
        return Callback::openStream(allocator, files, fileName, IO::FACCESS_READ);
    };
    Mesh mesh(Memory::createManaged<NavMesh::NavMeshContainer>(allocator));
    if (isBinary(open()))
        return mesh->readBinary(open()) ? mesh : Mesh();
    const SharedPtr<IO::Stream> stream = open();
    const std::unique_ptr<Parser::XML::XMLParser> parser(
        Memory::createManaged<Parser::XML::XMLParser>(allocator));
    const Parser::XML::XMLNodeElements* const top = parser->parse(stream.get());
    const Parser::XML::XMLNodeElements* element = nullptr;
    const bool isMesh = Parser::XML::getRequiredElements(element, top, "navmesh");
    return isMesh && mesh->readXML(*element) ? mesh : Mesh();
}

} // namespace

MeshView loadMeshView(const std::string& fileName, const Files& fileIO) {
    const Foundation foundation;
    try {
        const Mesh mesh = readMesh(fileName.c_str(), fileIO);
        if (mesh == nullptr)
            throw std::runtime_error(fileName + ": no navigation mesh");
        return MeshView(*mesh);
    } catch (Exceptions::Exception* exception) {
        throw std::runtime_error(fileName + ": " + takeMessage(exception));
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(fileName + ": " + error.what());
    }
}

MeshView loadMeshView(const std::string& fileName) {
    const Foundation foundation;
    return loadMeshView(fileName, Files(new StdioFileCallback));
}

} // namespace ZUNO::HostKit

#include "hostkit/meshfile.h"

#include "common/callback/openstream.h"
#include "common/exceptions/exception.h"
#include "common/interface.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmltreereader.h"
#include "hostkit/exceptiontext.h"
#include "navmesh/meshdefects.h"

#include <memory>
#include <stdexcept>

namespace ZUNO::HostKit {

using namespace Common;

namespace {

using Mesh = SharedPtr<NavMesh::NavMeshContainer>;

SharedPtr<IO::Stream> openFile(const std::string& fileName, const MeshFiles& files) {
    return Callback::openStream(Common::getAllocator(), files, fileName.c_str(), IO::FACCESS_READ);
}

/// The binary form begins with its byte order, 0 or 1, which no document does.
bool beginsAsBinary(IO::Stream& stream) {
    unsigned char first = 0;
    return stream.read(&first, 1) == 1 && first <= 1;
}

bool readDocument(NavMesh::NavMeshContainer& mesh, IO::Stream& stream) {
    const std::unique_ptr<Parser::XML::XMLParser> parser(
        Memory::createManaged<Parser::XML::XMLParser>(Common::getAllocator()));
    const Parser::XML::XMLNodeElements* element = nullptr;
    return Parser::XML::getRequiredElements(element, parser->parse(&stream), "navmesh") &&
           mesh.readXML(*element);
}

class FirstDefect : public NavMesh::DefectListener {
public:
    bool onDefect(const char* text) override {
        mText = text;
        return false;
    }
    std::string mText;
};

/// Runs an action; what it raises becomes a std::runtime_error with the file's name.
template <typename Action>
auto withName(const std::string& fileName, Action action) {
    try {
        return action();
    } catch (Exceptions::Exception* exception) {
        throw std::runtime_error(fileName + ": " + takeMessage(exception));
    }
}

} // namespace

bool isBinaryMesh(const std::string& fileName, const MeshFiles& files) {
    return withName(fileName, [&] { return beginsAsBinary(*openFile(fileName, files)); });
}

SharedPtr<NavMesh::NavMeshContainer> readMesh(const std::string& fileName, const MeshFiles& files) {
    const bool isBinary = isBinaryMesh(fileName, files);
    return withName(fileName, [&] {
        Mesh mesh(Memory::createManaged<NavMesh::NavMeshContainer>(Common::getAllocator()));
        const SharedPtr<IO::Stream> stream = openFile(fileName, files);
        if (!(isBinary ? mesh->readBinary(stream) : readDocument(*mesh, *stream)))
            throw std::runtime_error(fileName + ": no usable navigation mesh");
        FirstDefect defect;
        if (!findDefects(*mesh, defect))
            throw std::runtime_error(fileName + ": " + defect.mText);
        return mesh;
    });
}

std::uint64_t digestOfFile(const std::string& fileName, const MeshFiles& files) {
    try {
        return digestOf(*readMesh(fileName, files));
    } catch (const std::runtime_error&) {
        return 0;
    }
}

} // namespace ZUNO::HostKit

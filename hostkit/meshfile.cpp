#include "hostkit/meshfile.h"

#include "common/callback/openstream.h"
#include "common/exceptions/memoryexceptions.h"
#include "common/interface.h"
#include "common/memory/objectcreation.h"
#include "hostkit/exceptiontext.h"
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"

#include <new>
#include <stdexcept>

namespace ZUNO::HostKit {

using namespace Common;

namespace {

using Mesh = SharedPtr<NavMesh::NavMeshContainer>;

SharedPtr<IO::Stream> openFile(const std::string& fileName, const MeshFiles& files) {
    return Callback::openStream(Common::getAllocator(), files, fileName.c_str(), IO::FACCESS_READ);
}

bool beginsAsBinary(IO::Stream& stream) {
    unsigned char first = 0;
    return stream.read(&first, 1) == 1 && NavMesh::beginsBinaryForm(first);
}

/// Null, after a report, when something is missing.
Mesh readBinary(const SharedPtr<IO::Stream>& stream) {
    Mesh mesh(Memory::createManaged<NavMesh::NavMeshContainer>(Common::getAllocator()));
    return mesh->readBinary(stream) ? mesh : Mesh();
}

/// Runs an action; what it raises becomes a std::runtime_error with the file's name, or a
/// std::bad_alloc when there was no memory.
template <typename Action>
auto withName(const std::string& fileName, Action action) {
    try {
        return action();
    } catch (Memory::OutOfMemoryException* exception) {
        delete exception;
        throw std::bad_alloc();
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
        const SharedPtr<IO::Stream> stream = openFile(fileName, files);
        Mesh mesh = isBinary ? readBinary(stream)
                             : NavMesh::readMeshDocument(*stream, Common::getAllocator());
        if (mesh == nullptr)
            throw std::runtime_error(fileName + ": no usable navigation mesh");
        findDefects(*mesh, [&](const char* text) -> bool {
            throw std::runtime_error(fileName + ": " + text);
        });
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

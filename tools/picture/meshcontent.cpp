// Meshes that a tool makes itself, and the bytes of their files.
#include "common/callback/openstream.h"
#include "common/memory/globalallocators.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmltreebuilder.h"
#include "common/parser/xml/xmlwriter.h"
#include "hostkit/exceptiontext.h"
#include "hostkit/memoryfilecallback.h"
#include "hostkit/meshfile.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/reportkeeper.h"

#include <stdexcept>
#include <utility>

namespace ZUNO::Tools {

using namespace Common;

LoadedMesh::LoadedMesh()
    : mMesh(Memory::createManaged<NavMesh::NavMeshContainer>(gObjectAllocator)) {}

std::string LoadedMesh::toXML() const {
    return HostKit::textOf(*mMesh);
}

std::string LoadedMesh::contentIn(MeshForm form) const {
    const ReportKeeper keeper;
    auto* const memory = new HostKit::MemoryFileCallback;
    const SharedPtr<Callback::FileIOCallback> files(memory);
    try {
        const SharedPtr<IO::Stream> stream =
            Callback::openStream(gObjectAllocator, files, "mesh", IO::FACCESS_WRITE);
        if (form == MeshForm::BINARY) {
            mMesh->writeBinary(stream, 1);
        } else {
            Parser::XML::XMLTreeBuilder builder;
            builder.begin("ZUNO", true);
            mMesh->writeXML(builder);
            Parser::XML::XMLWriter writer;
            writer.writeHeader(*stream);
            writer.write(*stream, builder.getRoot());
        }
        stream->close();
    } catch (Exceptions::Exception* exception) {
        throw std::runtime_error(HostKit::takeMessage(exception));
    }
    return std::move(memory->mFiles["mesh"]);
}

} // namespace ZUNO::Tools

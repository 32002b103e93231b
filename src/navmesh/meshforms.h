/// What the two forms of a mesh begin with and can hold, apart from where their bytes lie.
#pragma once

#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// Returns whether a mesh whose first byte is this is in the binary form, which begins with its
/// byte order, 0 or 1. No document begins so.
constexpr bool beginsBinaryForm(int firstByte) {
    return firstByte == 0 || firstByte == 1;
}

/// Returns the lowest node with a neighbour behind its last corner, or -1. The binary form has one
/// count for a node's corners and neighbours and loses such a neighbour.
std::int32_t findNodeUnfitForBinary(const NavMeshContainer& mesh);

/// Returns the mesh of a document that holds a "navmesh" element below its root; null, after a
/// report, when something that must be there is missing. Mesh and parser take their memory from
/// `allocator`. Throws what the stream and the parser throw.
Common::SharedPtr<NavMeshContainer>
readMeshDocument(Common::IO::Stream& stream,
                 const Common::SharedPtr<Common::Memory::Allocator>& allocator);

/// Writes a whole document: declaration, root and the mesh in it. The tree takes its memory from
/// `allocator`. Throws what the stream throws.
void writeMeshDocument(const NavMeshContainer& mesh, Common::IO::Stream& stream,
                       const Common::SharedPtr<Common::Memory::Allocator>& allocator);

} // namespace ZUNO::NavMesh

/// Meshes from and to files, through the file callback that the mesh library was started with.
#pragma once

#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// These return the mesh in a file of the XML form or of the binary form; null, after a report,
/// when something that must be in it is missing, or while the library is not started. Throws what
/// the stream throws (for a file that is missing or can't be read), an XMLParserException for what
/// is no XML, a SerializeException for what is no whole binary form. Memory comes from the
/// library's allocator.
Common::SharedPtr<NavMeshContainer> loadNavMeshXML(const Common::String& fileName);
Common::SharedPtr<NavMeshContainer> loadNavMeshBinary(const Common::String& fileName);

/// These save a mesh: the XML form keeps six significant digits of each number, the binary form
/// every bit, but no neighbour behind a node's last corner. Memory comes from the library's
/// allocator.
/// Reports a null mesh or a library that is not started, and saves nothing then; reports the first
/// node that loses a neighbour. Throws what the stream throws.
void saveNavMeshXML(const Common::String& fileName,
                    const Common::SharedPtr<NavMeshContainer>& mesh);
void saveNavMeshBinary(const Common::String& fileName,
                       const Common::SharedPtr<NavMeshContainer>& mesh);

} // namespace ZUNO::NavMesh

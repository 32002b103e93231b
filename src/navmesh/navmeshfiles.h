/// Meshes from and to files of the host's.
#pragma once

#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// Loads a mesh from its XML form. Null, after a report, when something that must be in it is
/// missing, and while the library is not started. What the stream and the parser raise (a missing
/// file, a file that is no XML) leaves this function.
Common::SharedPtr<NavMeshContainer> loadNavMeshXML(const Common::String& fileName);

/// Saves a mesh in its XML form: floats keep six significant digits. What the stream raises leaves
/// this function. A null mesh, or a library that is not started, is reported and saves nothing.
void saveNavMeshXML(const Common::String& fileName,
                    const Common::SharedPtr<NavMeshContainer>& mesh);

/// The same for the binary form, which keeps every bit. What the storage raises (a file that is cut
/// or no such mesh) leaves these functions.
Common::SharedPtr<NavMeshContainer> loadNavMeshBinary(const Common::String& fileName);
void saveNavMeshBinary(const Common::String& fileName,
                       const Common::SharedPtr<NavMeshContainer>& mesh);

} // namespace ZUNO::NavMesh

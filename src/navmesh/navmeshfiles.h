/// Meshes from files of the host's.
#pragma once

#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// Loads a mesh from its XML form. Null, after a report, when something that must be in it is
/// missing, and while the library is not started. What the stream and the parser raise (a missing
/// file, a file that is no XML) leaves this function.
Common::SharedPtr<NavMeshContainer> loadNavMeshXML(const Common::String& fileName);

} // namespace ZUNO::NavMesh

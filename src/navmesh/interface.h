/// Start-up and shut-down of the navigation-mesh library.
#pragma once

#include "common/callback/fileiocallback.h"
#include "common/callback/memorycallback.h"
#include "navmesh/navmeshbuilder.h"
#include "navmesh/navmeshoptimizer.h"

namespace ZUNO::NavMesh {

/// Starts the library on the foundation, which must run: its allocator over `parent` (null: the
/// foundation's library allocator), its file access, and the generator's two objects.
/// Reports null callbacks, and a second start, which keeps what runs.
/// Throws an OutOfMemoryException, and the library is closed then.
void initLibrary(const Common::SharedPtr<Common::Callback::MemoryCallback>& cbMemory,
                 const Common::SharedPtr<Common::Callback::FileIOCallback>& cbFileIO,
                 const Common::SharedPtr<Common::Memory::Allocator>& parent = {});

/// Shuts the library down; everything taken from its allocator must have been released.
/// While closed this is reported and changes nothing. A generator object that is still held
/// outside is reported, and lives until it is let go.
void closeLibrary();

/// The generator's objects; null, after a report, while the library is closed.
Common::SharedPtr<NavMeshBuilder> getNavMeshBuilder();
Common::SharedPtr<NavMeshOptimizer> getNavMeshOptimizer();

/// The library's allocator; null while it is closed.
const Common::SharedPtr<Common::Memory::Allocator>& getAllocator();

} // namespace ZUNO::NavMesh

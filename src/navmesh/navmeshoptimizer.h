#pragma once

#include "common/memory/memorymanaged.h"
#include "common/referencecounted.h"

namespace ZUNO::NavMesh {

/// Stands for the generator's second half, which merges the polygons of a built mesh, as
/// `NavMeshBuilder` does for the first.
class NavMeshOptimizer : public Common::Memory::MemoryManaged, public Common::ReferenceCounted {};

} // namespace ZUNO::NavMesh

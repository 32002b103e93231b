/// The two service objects of the mesh generator. The generator itself is not part of the
/// runtime; its objects stand for it, so that their lifetimes are checked at shut-down.
#pragma once

#include "common/memory/memorymanaged.h"
#include "common/referencecounted.h"

namespace ZUNO::NavMesh {

class NavMeshBuilder : public Common::Memory::MemoryManaged, public Common::ReferenceCounted {};

class NavMeshOptimizer : public Common::Memory::MemoryManaged, public Common::ReferenceCounted {};

} // namespace ZUNO::NavMesh

#pragma once

#include "common/memory/memorymanaged.h"
#include "common/referencecounted.h"

namespace ZUNO::NavMesh {

/// Stands for the generator that builds a mesh from a scene, which is not part of the runtime: the
/// library makes one when it starts, so that holders' lifetimes are checked when it closes.
class NavMeshBuilder : public Common::Memory::MemoryManaged, public Common::ReferenceCounted {};

} // namespace ZUNO::NavMesh

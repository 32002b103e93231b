/// Meshes of either form through a host's files, without a running world.
#pragma once

#include "common/callback/fileiocallback.h"
#include "common/sharedptr.h"
#include "navmesh/navmeshcontainer.h"

#include <cstdint>
#include <string>

namespace ZUNO::HostKit {

using MeshFiles = Common::SharedPtr<Common::Callback::FileIOCallback>;

/// Returns whether the file begins as the binary form does. Throws what opening a file raises, as a
/// std::runtime_error.
bool isBinaryMesh(const std::string& fileName, const MeshFiles& files);

/// Reads a mesh of either form, which its content tells. The foundation must run as long as the
/// mesh is held.
/// Throws a std::runtime_error that names the file: for what opening and reading it raised, for
/// what is missing in it (reported before), and for the first defect that no world could run with.
/// Throws a std::bad_alloc when memory ends.
Common::SharedPtr<NavMesh::NavMeshContainer> readMesh(const std::string& fileName,
                                                      const MeshFiles& files);

/// Returns the XML form of what a world reads of a mesh, with every bit of its numbers; names of
/// characters and surface types, which it does not read, are left out.
std::string textOf(const NavMesh::NavMeshContainer& mesh);

/// Returns a number for what a world reads of a mesh: the same for both forms of it, on every
/// system. Meshes that differ by a bit have another one (but for a chance of 1 in 2^64).
std::uint64_t digestOf(const NavMesh::NavMeshContainer& mesh);

/// Returns the digest of the mesh in a file, or 0 for one that `readMesh` refuses.
std::uint64_t digestOfFile(const std::string& fileName, const MeshFiles& files);

} // namespace ZUNO::HostKit

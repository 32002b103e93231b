#pragma once

#include "hostkit/foundation.h"
#include "navmesh/navmeshcontainer.h"

#include <string>
#include <vector>

namespace ZUNO::Tools {

/// A tool's own copy of a mesh, for what the exports don't tell: pictures and figures. Its
/// libraries run as long as it lives, beside those of the runtime.
class LoadedMesh {
public:
    /// Raises a std::runtime_error, with the file's name and what was found wrong in it.
    explicit LoadedMesh(const std::string& fileName);
    ~LoadedMesh();
    LoadedMesh(const LoadedMesh&) = delete;
    LoadedMesh& operator=(const LoadedMesh&) = delete;

    const NavMesh::NavMeshContainer& operator*() const { return *mMesh.get(); }
    const NavMesh::NavMeshContainer* operator->() const { return mMesh.get(); }

private:
    void load(const std::string& fileName);
    void close();

    HostKit::Foundation mFoundation;
    Common::SharedPtr<NavMesh::NavMeshContainer> mMesh;
};

/// For each node the number of its island: the nodes that can be reached from one another.
/// Islands are numbered by size, the largest first.
std::vector<unsigned int> findIslands(const NavMesh::NavMeshContainer& mesh);

} // namespace ZUNO::Tools

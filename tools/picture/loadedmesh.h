#pragma once

#include "hostkit/foundation.h"
#include "navmesh/navmeshcontainer.h"

#include <string>
#include <vector>

namespace ZUNO::Tools {

/// A tool's own copy of a mesh, for what the exports don't tell: pictures, figures, conversion.
/// Its libraries run as long as it lives, beside those of the runtime.
class LoadedMesh {
public:
    /// Whether a mesh that no world could run with is an error.
    enum class Defects { REFUSED, ACCEPTED };

    /// Loads a mesh of either form. Raises a std::runtime_error, with the file's name and what was
    /// found wrong in it.
    explicit LoadedMesh(const std::string& fileName, Defects defects = Defects::REFUSED);
    /// An empty mesh, to be filled and saved.
    LoadedMesh();
    ~LoadedMesh();
    LoadedMesh(const LoadedMesh&) = delete;
    LoadedMesh& operator=(const LoadedMesh&) = delete;

    const NavMesh::NavMeshContainer& operator*() const { return *mMesh; }
    const NavMesh::NavMeshContainer* operator->() const { return mMesh.get(); }

    /// The mesh itself, to be let go before this object ends.
    const Common::SharedPtr<NavMesh::NavMeshContainer>& shared() const { return mMesh; }

    bool isBinary() const { return mIsBinary; }

    /// Saves the mesh in the form that the suffix names: ".xml" or ".bin". Raises a
    /// std::runtime_error.
    void save(const std::string& fileName) const;

    /// The text of its XML form.
    std::string toXML() const;

private:
    static void startLibrary();
    void load(const std::string& fileName, Defects defects);
    void close();

    HostKit::Foundation mFoundation;
    Common::SharedPtr<NavMesh::NavMeshContainer> mMesh;
    bool mIsBinary = false;
};

/// The form that a file name's suffix names. Raises a std::runtime_error for another.
enum class MeshForm { XML, BINARY };
MeshForm formOf(const std::string& fileName);

/// For each node the number of its island: the nodes that can be reached from one another.
/// Islands are numbered by size, the largest first.
std::vector<unsigned int> findIslands(const NavMesh::NavMeshContainer& mesh);

/// What is counted of a mesh.
struct MeshCounts {
    std::size_t mBorders = 0;
    std::size_t mLinks = 0;                ///< borders with a neighbour
    std::vector<std::size_t> mIslandSizes; ///< in nodes, the largest first
};
MeshCounts countMesh(const NavMesh::NavMeshContainer& mesh);

/// A host's position over a point of the mesh's plane: what that point is without its up component.
Common::Math::Vec2<float> positionAt(const NavMesh::NavMeshContainer& mesh,
                                     const Common::Math::Vec2<float>& point);

} // namespace ZUNO::Tools

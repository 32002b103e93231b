#pragma once

#include "hostkit/meshview.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::HostKit {

/// Fills the flat arrays of a view from a mesh.
class MeshViewBuilder {
public:
    MeshViewBuilder(const NavMesh::NavMeshContainer& mesh, MeshView& view)
        : mMesh(mesh), mView(view) {}

    /// Throws a std::invalid_argument for a mesh that no world could run with.
    void build();

private:
    using NavNode = NavMesh::NavMeshContainer::NavNode;

    void requireSoundness() const;
    void copyMesh();
    void linkNode(std::uint32_t node);
    /// Links a node to a neighbour by all that their outlines share.
    void linkTo(std::uint32_t node, std::uint32_t target);
    bool linkByEdges(std::uint32_t node, std::uint32_t target);
    bool linkByOverlaps(std::uint32_t node, std::uint32_t target);
    bool isClockwise(std::uint32_t node) const;
    bool isSamePlace(std::uint32_t a, std::uint32_t b) const;
    void markWalls();
    void findIslands();
    void indexBoxes();

    const NavMesh::NavMeshContainer& mMesh;
    MeshView& mView;
    bool mIsTurned = false; ///< the outline that is being linked runs clockwise
};

} // namespace ZUNO::HostKit

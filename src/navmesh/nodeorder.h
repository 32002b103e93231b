#pragma once

#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// The nodes of a mesh in an order in which an island follows the other, and within an island
/// places near to each other in the plane mostly have near ranks: along a curve that fills the
/// plane, quarter by quarter. Made while a graph is; holds 16 bytes a node meanwhile.
class NodeOrder {
public:
    NodeOrder(const NavMeshContainer& mesh,
              const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    /// A node and where it belongs.
    struct Entry {
        std::uint32_t mIsland; ///< the lowest id of a node on it
        std::uint32_t mPlace;  ///< along the curve
        std::uint32_t mNode;
        bool operator<(const Entry& other) const {
            if (mIsland != other.mIsland)
                return mIsland < other.mIsland;
            return mPlace != other.mPlace ? mPlace < other.mPlace : mNode < other.mNode;
        }
    };
    const NavMeshContainer::Vector<Entry>& entries() const { return mEntries; }

private:
    void joinIslands(const NavMeshContainer& mesh);
    std::uint32_t islandOf(std::uint32_t node);
    void findPlaces(const NavMeshContainer& mesh);

    NavMeshContainer::Vector<Entry> mEntries;
};

} // namespace ZUNO::NavMesh

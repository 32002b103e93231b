#include "navmesh/nodeorder.h"

#include "common/math/rect.h"
#include "navmesh/astarnavmesh.h"

#include <algorithm>

namespace ZUNO::NavMesh {

namespace {

/// The lower sixteen bits of a number, each with a gap behind it.
std::uint32_t spread(std::uint32_t number) {
    number = (number | number << 8) & 0x00FF00FF;
    number = (number | number << 4) & 0x0F0F0F0F;
    number = (number | number << 2) & 0x33333333;
    return (number | number << 1) & 0x55555555;
}

/// A coordinate in 65,536 steps between two others; 0 for what is no number.
std::uint32_t stepOf(float coordinate, float low, float high) {
    const float step = (coordinate - low) / (high - low) * 65535;
    return step > 0 ? static_cast<std::uint32_t>(std::min(step, 65535.0F)) : 0;
}

} // namespace

NodeOrder::NodeOrder(const NavMeshContainer& mesh,
                     const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mEntries(allocator) {
    const auto count = static_cast<std::uint32_t>(mesh.mNodes.size());
    mEntries.reserve(count);
    for (std::uint32_t node = 0; node < count; ++node)
        mEntries.push_back({node, 0, node});
    joinIslands(mesh);
    findPlaces(mesh);
    std::sort(mEntries.begin(), mEntries.end());
}

// Each node points to a lower one of its island, or, the lowest, to itself.
void NodeOrder::joinIslands(const NavMeshContainer& mesh) {
    for (std::uint32_t node = 0; node < mEntries.size(); ++node)
        NavMeshEdge::forEach(mesh.mNodes[node], [&](std::uint32_t, std::uint32_t end) {
            const std::uint32_t here = islandOf(node);
            const std::uint32_t there = islandOf(end);
            mEntries[std::max(here, there)].mIsland = std::min(here, there);
        });
    for (Entry& entry : mEntries)
        entry.mIsland = islandOf(entry.mIsland);
}

std::uint32_t NodeOrder::islandOf(std::uint32_t node) {
    while (mEntries[node].mIsland != node) {
        std::uint32_t& next = mEntries[node].mIsland;
        next = mEntries[next].mIsland; // halves the way for the next time
        node = next;
    }
    return node;
}

void NodeOrder::findPlaces(const NavMeshContainer& mesh) {
    Common::Math::Rect bounds{};
    for (const auto& vertex : mesh.mVertices)
        bounds.grow(mesh.projectToPlane(vertex));
    for (Entry& entry : mEntries) {
        const auto centre =
            mesh.projectToPlane(mesh.getNodeCenter(static_cast<std::int32_t>(entry.mNode)));
        entry.mPlace = spread(stepOf(centre.mX, bounds.mMin.mX, bounds.mMax.mX)) |
                       spread(stepOf(centre.mY, bounds.mMin.mY, bounds.mMax.mY)) << 1;
    }
}

} // namespace ZUNO::NavMesh

#include "tools/zunobake/unreachable.h"

#include "hostkit/surface.h"

#include <algorithm>
#include <numeric>
#include <sstream>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

/// The part on which walkers begin.
std::size_t partOf(const NavMesh::NavMeshContainer& mesh, const std::vector<unsigned int>& islands,
                   const std::vector<float>& from) {
    const HostKit::Place place =
        findGround(HostKit::MeshView(mesh), {from[0], from[1], from[2]}, 2 * mesh.mCubeSize);
    if (!place) {
        std::ostringstream text;
        text << "--from " << from[0] << ',' << from[1] << ',' << from[2]
             << ": there is no ground to walk on at this place";
        throw std::runtime_error(text.str());
    }
    return islands[place.mNode];
}

} // namespace

std::vector<UnreachablePart> listUnreachable(const NavMesh::NavMeshContainer& mesh,
                                             const std::vector<float>& from,
                                             PassageFinder* passages) {
    const std::vector<unsigned int> islands = findIslands(mesh);
    const std::vector<MeshPart> parts = measureParts(mesh, islands);
    const std::size_t begin = from.empty() ? largestOf(parts) : partOf(mesh, islands, from);
    std::vector<UnreachablePart> unreachable;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (i != begin)
            unreachable.push_back({parts[i], {}});
    std::stable_sort(unreachable.begin(), unreachable.end(),
                     [](const UnreachablePart& a, const UnreachablePart& b) {
                         return a.mPart.mArea > b.mPart.mArea;
                     });
    const auto target = static_cast<std::uint32_t>(parts[begin].mLargestNode);
    for (std::size_t i = 0; passages != nullptr && i < std::min(mostExplained, unreachable.size());
         ++i)
        unreachable[i].mPassage =
            passages->find(static_cast<std::uint32_t>(unreachable[i].mPart.mLargestNode), target);
    return unreachable;
}

} // namespace ZUNO::Tools

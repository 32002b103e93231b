#include "tools/picture/meshfigures.h"

#include "common/report/reporttext.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ZUNO::Tools {

std::vector<unsigned int> findIslands(const NavMesh::NavMeshContainer& mesh) {
    const std::size_t count = mesh.mNodes.size();
    std::vector<unsigned int> leader(count);
    std::iota(leader.begin(), leader.end(), 0U);
    const auto leaderOf = [&](unsigned int node) {
        while (leader[node] != node)
            node = leader[node] = leader[leader[node]];
        return node;
    };
    for (unsigned int id = 0; id < count; ++id)
        for (const std::int32_t neighbour : mesh.mNodes[id].mNeighbours)
            if (neighbour >= 0)
                leader[leaderOf(id)] = leaderOf(static_cast<unsigned int>(neighbour));
    std::vector<unsigned int> size(count);
    for (unsigned int id = 0; id < count; ++id)
        ++size[leaderOf(id)];
    std::vector<unsigned int> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](unsigned int a, unsigned int b) { return size[a] > size[b]; });
    std::vector<unsigned int> rank(count);
    for (unsigned int i = 0; i < count; ++i)
        rank[order[i]] = i;
    std::vector<unsigned int> islands(count);
    for (unsigned int id = 0; id < count; ++id)
        islands[id] = rank[leaderOf(id)];
    return islands;
}

MeshCounts countMesh(const NavMesh::NavMeshContainer& mesh) {
    MeshCounts counts;
    for (const auto& node : mesh.mNodes) {
        counts.mBorders += node.mPolygon.size();
        for (const std::int32_t neighbour : node.mNeighbours)
            counts.mLinks += neighbour >= 0 ? 1 : 0;
    }
    for (const unsigned int island : findIslands(mesh)) {
        counts.mIslandSizes.resize(std::max<std::size_t>(counts.mIslandSizes.size(), island + 1));
        ++counts.mIslandSizes[island];
    }
    return counts;
}

std::vector<MeshPart> measureParts(const NavMesh::NavMeshContainer& mesh,
                                   const std::vector<unsigned int>& islands) {
    std::vector<MeshPart> parts;
    std::vector<double> largest;
    for (std::size_t id = 0; id < mesh.mNodes.size(); ++id) {
        const std::size_t island = islands[id];
        parts.resize(std::max(parts.size(), island + 1));
        largest.resize(parts.size(), -1);
        MeshPart& part = parts[island];
        const auto& corners = mesh.mNodes[id].mPolygon;
        const auto corner = [&](std::size_t i) {
            return mesh.projectToPlane(mesh.mVertices[corners[i]]);
        };
        double area = 0;
        for (std::size_t i = 2; i < corners.size(); ++i)
            area += std::abs(double{signedArea(corner(0), corner(i - 1), corner(i))}) / 2;
        ++part.mNodes;
        part.mArea += area;
        if (area > largest[island]) {
            largest[island] = area;
            part.mLargestNode = static_cast<std::int32_t>(id);
            part.mPlace = mesh.getNodeCenter(part.mLargestNode);
        }
    }
    return parts;
}

std::size_t largestOf(const std::vector<MeshPart>& parts) {
    const auto isSmaller = [](const MeshPart& a, const MeshPart& b) { return a.mArea < b.mArea; };
    return static_cast<std::size_t>(std::max_element(parts.begin(), parts.end(), isSmaller) -
                                    parts.begin());
}

bool findUnreachable(const NavMesh::NavMeshContainer& mesh,
                     const std::function<bool(const char* text)>& listener) {
    const std::vector<MeshPart> parts = measureParts(mesh, findIslands(mesh));
    const std::size_t largest = largestOf(parts);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i == largest)
            continue;
        const auto& [nodes, area, node, place] = parts[i];
        Common::Debug::ReportText text;
        text << (nodes == 1 ? "node " : "the nodes around node ") << node << ", at " << place.mX
             << ", " << place.mY << ", " << place.mZ
             << ", can't be reached from the largest island (" << nodes
             << (nodes == 1 ? " node, " : " nodes, ") << area << " square units)";
        if (!listener(text.text()))
            return false;
    }
    return parts.size() < 2;
}

Common::Math::Vec2<float> positionAt(const NavMesh::NavMeshContainer& mesh,
                                     const Common::Math::Vec2<float>& point) {
    const Common::Math::Vec3<float>& x = mesh.mXAxis;
    const Common::Math::Vec3<float>& y = mesh.mYAxis;
    const Common::Math::Vec3<float> position(x.mX * point.mX + y.mX * point.mY,
                                             x.mY * point.mX + y.mY * point.mY,
                                             x.mZ * point.mX + y.mZ * point.mY);
    return position.killComponent(mesh.mNormal.getDominantAxis());
}

} // namespace ZUNO::Tools

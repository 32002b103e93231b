#include "benchmarks/costlymesh.h"

#include <cmath>
#include <random>

namespace ZUNO::Benchmarks {

CostlyMesh::CostlyMesh(float cubeSize) {
    mMesh.mNormal = {0, 1, 0};
    mMesh.mXAxis = {1, 0, 0};
    mMesh.mYAxis = {0, 0, 1};
    mMesh.mCubeSize = cubeSize;
    mMesh.mHeights.push_back(2);
}

void CostlyMesh::beginShape(float x, float y, float z) {
    mFirst.push_back(static_cast<int>(mMesh.mNodes.size()));
    mAway = {x, y, z};
}

std::uint32_t CostlyMesh::corner(float x, float z) {
    if (mEntries < mostEntries)
        mMesh.mVertices.push_back(mAway + Mesh::Point3(x, 0, z));
    return static_cast<std::uint32_t>(mMesh.mVertices.size() - 1);
}

void CostlyMesh::node(const std::vector<std::uint32_t>& corners,
                      const std::vector<int>& neighbours) {
    mEntries += 2 * corners.size() + neighbours.size() + 4;
    if (mEntries >= mostEntries)
        return;
    auto& added = mMesh.mNodes.emplace_back(mMesh.getAllocator());
    added.mHeightClass = 0;
    added.mPolygon.assign(corners.begin(), corners.end());
    for (const int neighbour : neighbours)
        added.mNeighbours.push_back(neighbour < 0 ? neighbour : mFirst.back() + neighbour);
}

void CostlyMesh::box(float x, float z, float width, float depth,
                     const std::vector<int>& neighbours) {
    node({corner(x, z), corner(x + width, z), corner(x + width, z + depth), corner(x, z + depth)},
         neighbours);
}

void CostlyMesh::link(int shape, int other) {
    const auto first = static_cast<std::size_t>(mFirst[static_cast<std::size_t>(shape)]);
    if (first < mMesh.mNodes.size())
        mMesh.mNodes[first].mNeighbours.push_back(mFirst[static_cast<std::size_t>(other)]);
}

const CostlyMesh::Mesh& CostlyMesh::finish() {
    const auto count = static_cast<int>(mMesh.mNodes.size());
    for (auto& node : mMesh.mNodes)
        for (int& neighbour : node.mNeighbours)
            neighbour = neighbour < count ? neighbour : -1;
    return mMesh;
}

void fillGrid(CostlyMesh& mesh, float columns, float rows) {
    mesh.box(0, 0, columns, rows, {});
}

void fillStack(CostlyMesh& mesh, int count, float side, int links) {
    const std::vector<std::uint32_t> ring{mesh.corner(0, 0), mesh.corner(side, 0),
                                          mesh.corner(side, side), mesh.corner(0, side)};
    for (int i = 0; i < count; ++i) {
        std::vector<int> neighbours;
        for (int k = 1; k <= links; ++k)
            neighbours.push_back((i + k) % count);
        mesh.node(ring, neighbours);
    }
}

void fillTower(CostlyMesh& mesh, int count, float side, float height) {
    for (int i = 0; i < count; ++i) {
        mesh.box(0, 0, side, side, {i + 1});
        mesh.rise(height / static_cast<float>(count));
    }
}

void fillRound(CostlyMesh& mesh, int corners, float radius) {
    std::vector<std::uint32_t> ring;
    for (int i = 0; i < corners; ++i) {
        const double angle = 6.283185307179586 * i / corners;
        ring.push_back(mesh.corner(static_cast<float>(radius * std::cos(angle)),
                                   static_cast<float>(radius * std::sin(angle))));
    }
    mesh.node(ring, {});
}

void fillFan(CostlyMesh& mesh, int count, float size) {
    const std::uint32_t tip = mesh.corner(0, 0);
    for (int i = 0; i < count; ++i) {
        const float z = size * static_cast<float>(i) / static_cast<float>(count);
        const float next = size * static_cast<float>(i + 1) / static_cast<float>(count);
        mesh.node({tip, mesh.corner(size, z), mesh.corner(size, next)},
                  {i - 1, -1, i + 1 == count ? -1 : i + 1});
    }
}

void fillTangle(CostlyMesh& mesh, int count, int links, float away) {
    std::mt19937 random(7);
    for (int i = 0; i < count; ++i) {
        std::vector<int> neighbours;
        for (int k = 0; k < links; ++k)
            neighbours.push_back(static_cast<int>(random() % static_cast<unsigned>(count)));
        if (i == 0) // far off, and reached from the last one
            mesh.box(away, away, away / 8 + 1, away / 8 + 1, neighbours);
        else
            mesh.box(static_cast<float>(random() % 1000), static_cast<float>(random() % 1000), 1, 1,
                     i + 1 == count ? std::vector<int>{0, i - 1} : neighbours);
    }
}

void fillSavings(CostlyMesh& mesh, int leaves, int steps) {
    const int hub = 2;
    const int firstStep = 3;
    const int firstLeaf = firstStep + steps;
    mesh.box(1e9F, 0, 1e8F, 1e8F, {}); // the goal
    mesh.box(-800, 700, 2, 2, {hub});  // the long way
    std::vector<int> all;
    for (int i = 0; i < leaves; ++i)
        all.push_back(firstLeaf + i);
    mesh.box(static_cast<float>(steps), 0, 1, 1, all);
    for (int i = 0; i < steps; ++i)
        mesh.box(static_cast<float>(i), 0, 1, 1,
                 i == 0           ? std::vector<int>{1, firstStep + 1}
                 : i + 1 == steps ? std::vector<int>{hub}
                                  : std::vector<int>{firstStep + i + 1});
    const std::vector<std::uint32_t> ring{mesh.corner(0, 50), mesh.corner(9, 50),
                                          mesh.corner(9, 59)};
    for (int i = 0; i < leaves; ++i)
        mesh.node(ring, i == 0 ? std::vector<int>{0} : std::vector<int>{});
}

void fillDoubling(CostlyMesh& mesh, int stages, float away) {
    const int steps = 4 * stages;
    const int firstStep = 3;
    const int chain = firstStep + steps; // of each stage: the long way, the short one, its end
    const auto longest = static_cast<float>(1 << stages);
    mesh.box(away, 0, away / 8, away / 8, {}); // the goal
    mesh.box(-4 * longest, 0, 2, 2, {2});      // the long way
    mesh.box(0, 0, 1, 1, {chain + 1, chain});  // the chain's begin
    for (int i = 0; i < steps; ++i)
        mesh.box(static_cast<float>(i - steps), 0, 1, 1,
                 i == 0           ? std::vector<int>{1, firstStep + 1}
                 : i + 1 == steps ? std::vector<int>{2}
                                  : std::vector<int>{firstStep + i + 1});
    for (int i = 0; i < stages; ++i) {
        const int stage = chain + 3 * i;
        const auto x = static_cast<float>(2 * i);
        mesh.box(x + 1, longest / static_cast<float>(2 << i), 1, 1, {stage + 2});
        mesh.box(x + 1, 0, 1, 1, {stage + 2});
        mesh.box(x + 2, 0, 1, 1,
                 i + 1 == stages ? std::vector<int>{} : std::vector<int>{stage + 4, stage + 3});
    }
}

void fillRow(CostlyMesh& mesh, int leaves, bool isTurned) {
    const std::vector<int> back{1};
    std::vector<int> all;
    for (int i = 0; i < leaves; ++i)
        all.push_back(isTurned ? 3 + leaves - i : 4 + i);
    mesh.box(-900, 0, 1, 1, {});                                                    // the goal
    mesh.box(0, 0, 1, 1, all);                                                      // the hub
    mesh.box(9e5F, 0, 1000, 1000, {0});                                             // what waits
    mesh.box(-3, 0, 1, 1, isTurned ? std::vector<int>{1} : std::vector<int>{1, 2}); // the start
    const std::uint32_t tip = mesh.corner(2, 0);
    for (int i = 0; i < leaves; ++i)
        mesh.node({tip, mesh.corner(3 + static_cast<float>(i), 0), mesh.corner(3, 1)}, back);
}

void fillHubs(CostlyMesh& mesh, int hubs, int borders) {
    for (int i = 0; i < hubs; ++i) {
        std::vector<int> neighbours;
        for (int k = 0; k < borders; ++k)
            neighbours.push_back((i + 1 + k) % hubs);
        mesh.box(static_cast<float>(i % 50) * 3, static_cast<float>(i / 50) * 3, 2, 2, neighbours);
    }
}

} // namespace ZUNO::Benchmarks

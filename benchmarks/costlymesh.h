#pragma once

#include "navmesh/navmeshcontainer.h"

#include <cstdint>
#include <vector>

namespace ZUNO::Benchmarks {

/// A mesh in the making, in the plane of x and z. Shapes are put into it one after the other, each
/// with numbers of its own for its nodes; what no longer fits into a file of 1 MB is left out.
class CostlyMesh {
public:
    using Mesh = NavMesh::NavMeshContainer;

    explicit CostlyMesh(float cubeSize);
    /// What is added from here on lies so far off.
    void beginShape(float x, float y, float z);
    std::uint32_t corner(float x, float z);
    /// Adds a node; its neighbours are numbered within the shape, and may be yet to come.
    void node(const std::vector<std::uint32_t>& corners, const std::vector<int>& neighbours);
    /// Nodes that follow lie so much higher.
    void rise(float height) { mAway.mY += height; }
    void box(float x, float z, float width, float depth, const std::vector<int>& neighbours);
    /// Adds a neighbour to a shape's first node: the first one of another shape.
    void link(int shape, int other);
    /// Returns the mesh, without neighbours that were left out.
    const Mesh& finish();

private:
    static constexpr std::size_t mostEntries = 30'000; ///< corners and neighbours in a megabyte

    Mesh mMesh;
    std::vector<int> mFirst; ///< node of each shape
    Mesh::Point3 mAway{0, 0, 0};
    std::size_t mEntries = 0;
};

/// One square, whose grid has so many columns and rows.
void fillGrid(CostlyMesh& mesh, float columns, float rows);
/// Nodes on the same spot, each a neighbour of the next ones.
void fillStack(CostlyMesh& mesh, int count, float side, int links);
/// The same, each with corners of its own and a little higher than the last.
void fillTower(CostlyMesh& mesh, int count, float side, float height);
/// One round node of so many corners.
void fillRound(CostlyMesh& mesh, int corners, float radius);
/// Slivers from one corner to the far side, each a neighbour of the one beside it.
void fillFan(CostlyMesh& mesh, int count, float size);
/// Boxes at random, linked at random; `away` lies a goal so far off that estimates are coarse.
void fillTangle(CostlyMesh& mesh, int count, int links, float away);
/// A hub with many leaves, which is reached over a long way first and by many short steps later.
/// The goal is so far off that all estimates are one, so that the cheaper way passes its saving on.
void fillSavings(CostlyMesh& mesh, int leaves, int steps);
/// A chain of nodes, each reached from the last by a short way and by one that is longer by half as
/// much as the one before. All are reached over a long way first; when a cheaper one turns up, the
/// last in the chain gets cheaper for each choice of ways, the dearest first.
void fillDoubling(CostlyMesh& mesh, int stages, float away);
/// A hub whose leaves lie each a little farther than the last, and all nearer than what waits;
/// without anything that waits they are neighbours in the opposite order.
void fillRow(CostlyMesh& mesh, int leaves, bool isTurned = false);
/// Two rows of hubs with as many borders as can be searched.
void fillHubs(CostlyMesh& mesh, int hubs, int borders);

} // namespace ZUNO::Benchmarks

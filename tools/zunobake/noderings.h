#pragma once

#include "tools/zunobake/outline.h"

#include <optional>
#include <unordered_map>

namespace ZUNO::Tools {

/// A node in the making.
struct BakedNode {
    std::vector<std::size_t> mCorners;     ///< vertices, counter-clockwise along x and z
    std::vector<std::int32_t> mNeighbours; ///< beyond the border from corner i to i + 1, or -1
    Ground mGround;
    std::uint16_t mSurface;
    std::uint16_t mAgent;
};

/// Nodes by the borders that they share, while they are cut and joined. A border that two nodes
/// share has the same two vertices in both.
class NodeRings {
public:
    /// Works on these, which must outlive it. A node that was joined to another has no corners.
    NodeRings(std::vector<GridPoint>& vertices, std::vector<BakedNode>& nodes);

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    const std::vector<BakedNode>& nodes() const { return mNodes; }
    const GridPoint& vertex(std::size_t index) const { return mVertices[index]; }
    std::size_t cornerOf(std::size_t node, std::size_t place) const {
        const std::vector<std::size_t>& corners = mNodes[node].mCorners;
        return corners[place % corners.size()];
    }
    Outline outlineOf(const std::vector<std::size_t>& corners) const;
    Outline outlineOf(std::size_t node) const { return outlineOf(mNodes[node].mCorners); }
    /// The node beyond the border from a corner to the next, or `none`.
    std::size_t neighbourOf(std::size_t node, std::size_t place) const {
        return ownerOf(cornerOf(node, place + 1), cornerOf(node, place));
    }

    /// Puts a vertex on the border from a corner to the next, in the node and its neighbour.
    /// Returns the neighbour.
    std::size_t insert(std::size_t node, std::size_t place, const GridPoint& point);
    /// Cuts a node from one corner to another. Returns the new node, which has the corners from
    /// `from` to `to`.
    std::size_t cut(std::size_t node, std::size_t from, std::size_t to);
    /// The corners of a node and its neighbour together, without the border between them; empty
    /// when they touch at several places.
    std::vector<std::size_t> cornersOfBoth(std::size_t node, std::size_t other) const;
    /// Makes a node of both.
    void join(std::size_t node, std::size_t other, std::vector<std::size_t> corners);
    /// Takes out vertices on straight borders that have the same nodes on both sides of them.
    void dropNeedlessVertices();
    /// Sets the neighbours of all nodes, and takes out those that were joined to others.
    void finish();

    /// The ground under both.
    Ground groundOfBoth(std::size_t node, std::size_t other) const;

private:
    static std::uint64_t borderOf(std::size_t from, std::size_t to) {
        return std::uint64_t{from} << 32U | to;
    }
    std::size_t ownerOf(std::size_t from, std::size_t to) const {
        const auto place = mOwners.find(borderOf(from, to));
        return place != mOwners.end() ? place->second : none;
    }
    void own(std::size_t node);
    void disown(std::size_t node);
    std::vector<GridPoint> cellsOf(std::size_t node) const;
    bool isNeedless(std::size_t vertex, const std::vector<std::size_t>& nodes) const;

    std::vector<GridPoint>& mVertices;
    std::vector<BakedNode>& mNodes;
    std::unordered_map<std::uint64_t, std::size_t> mOwners; ///< nodes by their borders
};

} // namespace ZUNO::Tools

#pragma once

#include "common/math/vec3.h"
#include "hostkit/boxtree.h"
#include "hostkit/planegeometry.h"

#include <span>
#include <vector>

namespace ZUNO::NavMesh {
class NavMeshContainer;
} // namespace ZUNO::NavMesh

namespace ZUNO::HostKit {

using Position = Common::Math::Vec3<float>;

/// The square of the distance in space, in double: no coordinates are too large for it.
inline double squareDistance(const Position& a, const Position& b) {
    const double x = double{a.mX} - double{b.mX};
    const double y = double{a.mY} - double{b.mY};
    const double z = double{a.mZ} - double{b.mZ};
    return x * x + y * y + z * z;
}

inline constexpr std::uint32_t NO_NODE = 0xFFFFFFFF;
inline constexpr std::uint32_t NO_VERTEX = 0xFFFFFFFF;
inline constexpr std::uint32_t NO_BORDER = 0xFFFFFFFF;

/// The host's own view of a mesh, for what the exports don't tell: the nodes' outlines, what two
/// neighbours share, islands, and the nodes around a place. It is made once from a mesh, which may
/// then go, and never changes.
/// Thread: any number may ask at once. Units: those of the mesh; distances in the plane are those
/// of its two axes. Cost: see docs/straight-paths.md for its bytes.
class MeshView {
public:
    /// Throws a std::invalid_argument that names the first defect of a mesh that no world could
    /// run with. Cost: some microseconds a node.
    explicit MeshView(const NavMesh::NavMeshContainer& mesh);

    std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(mReaches.size()); }
    std::uint32_t vertexCount() const { return static_cast<std::uint32_t>(mVertices.size()); }

    /// The vertices of a node's outline, in its order.
    std::span<const std::uint32_t> cornersOf(std::uint32_t node) const {
        return {&mCorners[mFirstCorners[node]], mFirstCorners[node + 1] - mFirstCorners[node]};
    }

    Position positionOf(std::uint32_t vertex) const {
        const Point& p = mVertices[vertex];
        return {p.mX, p.mY, p.mZ};
    }
    /// Whether a wall ends or bends at the vertex: only there does a shortest path turn.
    bool isAtWall(std::uint32_t vertex) const { return mIsAtWall[vertex]; }

    /// What leads from one node to another: a piece of the border that they share.
    struct Link {
        std::uint32_t mTarget;
        std::uint32_t mBorder; ///< for `borderOf`; NO_BORDER when the two nodes don't touch
    };
    /// The ways out of a node, one for each piece of border that it shares with a neighbour. A
    /// node names its neighbours, not the borders to them: what they share is found by their
    /// outlines.
    std::span<const Link> linksOf(std::uint32_t node) const {
        return {mLinks.data() + mFirstLinks[node], mFirstLinks[node + 1] - mFirstLinks[node]};
    }
    /// Whether `target` is a neighbour of the node, in this direction.
    bool isLinked(std::uint32_t node, std::uint32_t target) const {
        const auto links = linksOf(node);
        return std::any_of(links.begin(), links.end(),
                           [&](const Link& link) { return link.mTarget == target; });
    }
    /// The ends of a piece of border as one sees them who leaves the node across it.
    struct Border {
        std::uint32_t mLeft; ///< vertices
        std::uint32_t mRight;
        std::uint32_t mEdge; ///< of the node's outline: from its corner of this index to the next
    };
    Border borderOf(std::uint32_t node, const Link& link) const;

    /// A point's coordinates in the plane.
    PlanePoint planeOf(const Position& p) const {
        return {along(mXAxis, p.mX, p.mY, p.mZ), along(mYAxis, p.mX, p.mY, p.mZ)};
    }
    PlanePoint planeOf(std::uint32_t vertex) const {
        const Point& p = mVertices[vertex];
        // the sums below come to the same, and here most of the time is spent
        if (mIsPlaneXZ)
            return {double{p.mX} + 0.0, double{p.mZ} + 0.0};
        return {along(mXAxis, p.mX, p.mY, p.mZ), along(mYAxis, p.mX, p.mY, p.mZ)};
    }
    /// How high a point lies along the mesh's up direction.
    double heightOf(const Position& p) const { return along(mUp, p.mX, p.mY, p.mZ); }

    /// The node's centre, bit for bit the waypoint by which the world's paths enter it.
    Position centreOf(std::uint32_t node) const {
        const Point& p = mCentres[node];
        return {p.mX, p.mY, p.mZ};
    }

    /// Returns the node from which the world would begin a search at the point, or NO_NODE: the
    /// lowest id of a node that the point stands on, by its height class and the cube size.
    /// Cost: a walk down a tree.
    std::uint32_t findNode(const Position& point) const;
    /// Whether the point stands on the node in the world's eyes.
    bool isOnNode(const Position& point, std::uint32_t node) const;
    /// How far above and below a node's first corner a point stands on it.
    float reachAbove(std::uint32_t node) const { return mReaches[node]; }
    float reachBelow() const { return 2.0F * mCubeSize; }
    float cubeSize() const { return mCubeSize; }

    /// The number of the node's island, from 0 for the largest: nodes that neighbours connect.
    std::uint32_t islandOf(std::uint32_t node) const { return mIslands[node]; }
    /// The islands' sizes in nodes, the largest first.
    const std::vector<std::uint32_t>& islandSizes() const { return mIslandSizes; }

    /// Calls `visitor(a, b)` with the ends, in the plane, of each piece of the node's outline that
    /// leads nowhere.
    template <typename Visitor>
    void visitWalls(std::uint32_t node, Visitor visitor) const {
        const auto corners = cornersOf(node);
        for (std::uint32_t edge = 0; edge < corners.size(); ++edge) {
            const PlanePoint a = planeOf(corners[edge]);
            const PlanePoint b = planeOf(corners[edge + 1 < corners.size() ? edge + 1 : 0]);
            double done = 0;
            while (done < 1) {
                const auto [first, last] = nextOpening(node, edge, a, b, done);
                if (first > done)
                    visitor(between(a, b, done), between(a, b, first));
                done = last;
            }
        }
    }

    /// The boxes of all nodes, by their numbers.
    const BoxTree& boxes() const { return mBoxes; }

    /// The bytes that it holds: what any copy of the mesh has to hold (vertices, outlines,
    /// neighbours, heights), and what comes on top.
    struct MemoryUsage {
        std::size_t mMesh;
        std::size_t mBeyond;
    };
    MemoryUsage memoryUsage() const;

private:
    friend class MeshViewBuilder;

    struct Point {
        float mX;
        float mY;
        float mZ;
    };
    struct Opening {
        double mFirst; ///< parts of the edge
        double mLast;
    };
    /// The marks in a link's border. Without `ownMark` the border is an edge of the outline, seen
    /// the other way round with `turnedMark`.
    static constexpr std::uint32_t ownMark = 1U << 31U;
    static constexpr std::uint32_t turnedMark = 1U << 30U;

    static double along(const Position& axis, float x, float y, float z) {
        return double{axis.mX} * double{x} + double{axis.mY} * double{y} +
               double{axis.mZ} * double{z};
    }
    /// The first part of an edge from `done` on that a link opens; from 1 to 1 when none does.
    Opening nextOpening(std::uint32_t node, std::uint32_t edge, const PlanePoint& a,
                        const PlanePoint& b, double done) const;

    std::vector<Point> mVertices;
    std::vector<Point> mCentres;
    std::vector<std::uint32_t> mFirstCorners; ///< of each node, and one for the end
    std::vector<std::uint32_t> mCorners;
    std::vector<std::uint32_t> mFirstLinks; ///< of each node, and one for the end
    std::vector<Link> mLinks;
    std::vector<Border> mOwnBorders; ///< of links whose border is no whole edge
    std::vector<float> mReaches;     ///< of the height class of each node
    std::vector<std::uint32_t> mIslands;
    std::vector<std::uint32_t> mIslandSizes;
    std::vector<bool> mIsAtWall;
    BoxTree mBoxes;
    std::vector<std::uint32_t> mEverywhere; ///< nodes on which points may stand that lie far away
    Position mXAxis;
    Position mYAxis;
    Position mUp;
    bool mIsPlaneXZ = false; ///< whether the plane's axes are x and z
    float mCubeSize = 0;
};

} // namespace ZUNO::HostKit

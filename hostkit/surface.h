/// Questions about the ground that a mesh's nodes are: what lies under a point, what is nearest,
/// where one gets by walking straight on.
#pragma once

#include "hostkit/meshview.h"

#include <array>

namespace ZUNO::HostKit {

/// A place on the surface of a node, or none.
struct Place {
    explicit operator bool() const { return mNode != NO_NODE; }

    std::uint32_t mNode = NO_NODE;
    Position mPosition{0, 0, 0};
};

/// The surface of a node at a point of the plane, or at the node's point nearest to it. A node's
/// outline need not be flat: its surface is the fan of triangles from its first corner.
Position surfaceAt(const MeshView& view, std::uint32_t node, const PlanePoint& point);

/// The point of a node nearest to a point of the plane: the same point when it lies inside or on
/// the outline.
PlanePoint nearestInNode(const MeshView& view, std::uint32_t node, const PlanePoint& point);

/// Returns a place of the node at or right beside a point of its outline, where the world finds the
/// node too (its test rounds); none where the world finds no such place.
Place settle(const MeshView& view, std::uint32_t node, const PlanePoint& point);

/// Returns the place straight below or above the point, on the floor nearest in height and at most
/// `height` away; none where there is no ground, or for a point that is not finite. Where floors
/// are equally near, the node with the lowest id.
/// Its height is `view.heightOf(place.mPosition)`. Cost: a walk down a tree.
Place findGround(const MeshView& view, const Position& point,
                 float height = std::numeric_limits<float>::infinity());

/// Returns the place nearest to the point, at most `radius` away in the plane and `height` along
/// the up direction, with the distance in space; none where there is nothing so near. The world
/// finds a node there: a search can begin. Cost: a walk down a tree, longer for larger radii.
struct NearestPlace : Place {
    float mDistance = 0;
};
NearestPlace findNearest(const MeshView& view, const Position& point, float radius, float height);

/// Where one gets who walks from a place towards a point.
struct SurfaceMove {
    static constexpr std::size_t maxNodes = 128;

    Place mPlace;            ///< the end
    bool mIsReached = false; ///< whether it lies at the target, seen in the plane
    /// The nodes that lead there, from the first to that of the end; none without a start on the
    /// mesh or a finite target.
    std::array<std::uint32_t, maxNodes> mNodes;
    std::size_t mNodeCount = 0;
};
/// Returns the nearest place to the target that can be walked to within the circle around start and
/// target: the target itself where no wall is in between, else a place beside the wall, as far
/// along it as the target pulls. Meant for the steps of a frame: it looks at `maxNodes` nodes at
/// most. A start on no node stays where it is; so does one whose target is not finite.
/// Cost: no memory is taken.
SurfaceMove moveAlongSurface(const MeshView& view, const Place& start, const Position& target);

/// Walks straight from a place towards a point, up to the first wall. The place of the result is
/// the target, or where the wall stops one. Gives up, not reached, after `maxNodes` nodes.
/// Cost: one node after the other; no memory is taken.
SurfaceMove walkStraight(const MeshView& view, const Place& start, const Position& target);
SurfaceMove walkStraight(const MeshView& view, const Place& start, const PlanePoint& to);

/// Returns the distance in the plane from a place to the nearest piece of border that leads
/// nowhere, or `limit` when that is nearer. 0 for no place.
/// Cost: looks at the nodes within the distance; takes memory for them.
float distanceToWall(const MeshView& view, const Place& place, float limit);

/// Places by chance, every piece of ground as likely as every other of its size.
class RandomPlaces {
public:
    static constexpr std::uint32_t anyIsland = 0xFFFFFFFF;

    /// Over the whole mesh, or one island of it. Holds 8 bytes a node; the view must outlive it.
    explicit RandomPlaces(const MeshView& view, std::uint32_t island = anyIsland);

    /// Returns the place of a seed: the same on every system; none when there is no ground at all.
    Place pick(std::uint64_t seed) const;

private:
    const MeshView& mView;
    std::vector<double> mAreas; ///< up to and with each node
};

} // namespace ZUNO::HostKit

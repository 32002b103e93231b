/// Paths as characters walk them: from corner to corner, instead of by the nodes' centres.
#pragma once

#include "hostkit/chain.h"
#include "hostkit/chainportals.h"
#include "hostkit/funnel.h"
#include "hostkit/intervalsearch.h"
#include "hostkit/surface.h"

namespace ZUNO::HostKit {

/// Corners on the surface. Between two of them the way is straight, seen in the plane.
struct StraightPath {
    struct Corner {
        Position mPosition;
        std::uint32_t mStep; ///< the node of the chain, by its index, from which one goes on
    };

    /// The start first and the goal last; one corner when both are the same place.
    std::vector<Corner> mCorners;
    /// The nodes that the path passes, each a neighbour of the one before. The leg from one corner
    /// to the next crosses every border between their steps.
    std::vector<std::uint32_t> mChain;
    /// The sum of the legs in space.
    double mLength = 0;
};

/// Returns the length of a path as it is seen in the plane; `mLength` is that in space. Units:
/// those of the mesh. Cost: linear in the corners.
double planeLength(const MeshView& view, const StraightPath& path);

/// Plain: the shortest way through the very nodes of the path that was found. Improved: a second
/// search, no farther about than the plain path is long, passes obstacles on their shorter side;
/// where the mesh is too intricate for its budget it goes piece by piece. Lengths:
/// docs/straight-paths.md.
enum class StraightForm { PLAIN, IMPROVED };

/// Straightens paths. Keeps its lists: once they have grown, no memory is taken any more (a path
/// keeps its own lists too). One serves any number of characters.
/// Thread: each its own; they may share the view, which must outlive them.
class PathStraightener {
public:
    explicit PathStraightener(const MeshView& view)
        : mView(view), mChains(view), mSearch(view), mPortals(view) {}

    /// Straightens a path of the world's: with the start and goal that the search was opened with
    /// and all its waypoints, none for a path within one node. Returns whether that is a path on
    /// this mesh; when it isn't, the result is empty.
    /// Cost: plain some 0.1 us a waypoint; improved as docs/straight-paths.md says.
    bool straighten(const Position& start, const Position& goal,
                    const std::vector<Position>& waypoints, StraightForm form, StraightPath& path);

    /// The same for a chain of nodes, each a neighbour of the one before: from the place in the
    /// first nearest to `start` to that in the last nearest to `goal`. A chain that is none, or a
    /// point that is not finite, gives false.
    bool straightenChain(const Position& start, const Position& goal,
                         const std::vector<std::uint32_t>& chain, StraightForm form,
                         StraightPath& path);

private:
    /// Pulls the path tight through its chain.
    bool pull(StraightPath& path);
    void addCorner(const Position& position, std::uint32_t step, StraightPath& path) const;
    void improve(StraightPath& path);
    void cutCorners(StraightPath& path);
    bool joinDetour(const StraightPath& path, const SurfaceMove& walked, std::uint32_t from,
                    std::uint32_t to);
    bool replacePart(StraightPath& path, std::uint32_t from, std::uint32_t to);
    /// Seeks a shorter way between two corners. Returns false when the search gave up.
    bool improvePart(StraightPath& path, std::size_t first, std::size_t last, std::size_t budget);

    const MeshView& mView;
    ChainFinder mChains;
    Funnel mFunnel;
    IntervalSearch mSearch;
    ChainPortals mPortals;
    std::vector<std::uint32_t> mDetour;
    StraightPath mCandidate;
    PlanePoint mStart;
    PlanePoint mGoal;
};

} // namespace ZUNO::HostKit

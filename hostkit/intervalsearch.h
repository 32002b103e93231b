#pragma once

#include "hostkit/meshview.h"

namespace ZUNO::HostKit {

/// Finds shortest ways in the plane. A search state is a root, where the way bends last, and an
/// interval: the part of a border that is seen from there. Through an interval one sees intervals
/// of the next borders; what lies in the shadow of a wall's corner is seen from that corner as a
/// new root. The best state first, so the first to reach the goal's node is the shortest way.
/// Nodes are taken to be convex, and crossed by their borders alone.
/// Keeps its lists: once they have grown to the budget, no memory is taken any more.
class IntervalSearch {
public:
    explicit IntervalSearch(const MeshView& view) : mView(view) {}

    enum class Result {
        FOUND,     ///< a way shorter than the bound
        NONE,      ///< there is none
        EXHAUSTED, ///< more than `budget` intervals were seen
    };
    struct End {
        std::uint32_t mNode;
        PlanePoint mPoint;
    };
    /// Writes the nodes of a way that is shorter than `bound`. With a haste of 0 it is the shortest
    /// one; otherwise the search prefers what is near the goal, sees much less, and the way is
    /// longer by that part at most.
    Result run(const End& start, const End& goal, double bound, double haste, std::size_t budget,
               std::vector<std::uint32_t>& chain);

    /// The intervals that the last run saw.
    std::size_t seen() const { return mStates.size(); }

private:
    struct Root {
        PlanePoint mPoint;
        double mLength; ///< of the way that leads there
        std::uint32_t mVertex;
    };
    /// A ray that bounds what is seen: from a root through a point. Rays keep the very points that
    /// made them, because a corner right on a ray must be found to lie there.
    struct Ray {
        PlanePoint mPoint;
        std::uint32_t mRoot;
        std::uint32_t mVertex; ///< when the ray goes through the interval's end at a vertex
    };
    struct State {
        Ray mLeft;
        Ray mRight;
        std::uint32_t mRoot;
        std::uint32_t mBefore; ///< the state before; noState for the first
        std::uint32_t mFrom;   ///< the node that the interval leads out of
        std::uint32_t mNode;   ///< the node that it leads into
    };
    /// The interval of a state.
    struct Interval {
        PlanePoint mLeft;
        PlanePoint mRight;
    };
    struct Waiting {
        double mEstimate;
        std::uint32_t mState;
    };
    static bool isLater(const Waiting& a, const Waiting& b) { return a.mEstimate > b.mEstimate; }
    /// A ray's line.
    struct Line {
        double turnTo(const PlanePoint& point) const { return turn(mWay, point - mFrom); }

        PlanePoint mFrom;
        PlanePoint mWay;
    };
    /// What is seen through a state's interval.
    struct Sight {
        const State& mState;
        std::uint32_t mIndex; ///< of the state
        Line mLeft;
        Line mRight;
        std::uint32_t mCorners[2]; ///< the roots at the interval's ends
    };
    static constexpr std::uint32_t noState = 0xFFFFFFFF;
    static constexpr std::uint32_t noRoot = 0xFFFFFFFF;
    static constexpr std::uint32_t unmadeRoot = 0xFFFFFFFE;

    void begin(const End& start);
    void expand(std::uint32_t index);
    /// Looks at a border of the node behind a state: what the root sees of it, and what lies in
    /// the shadow to either side.
    void look(Sight& sight, const MeshView::Link& link);
    Line lineOf(const Ray& ray) const {
        const PlanePoint& from = mRoots[ray.mRoot].mPoint;
        return {from, ray.mPoint - from};
    }
    bool isCorner(const Ray& ray, const PlanePoint& root) const {
        return ray.mVertex != NO_VERTEX && mView.isAtWall(ray.mVertex) && !(ray.mPoint == root);
    }
    void add(const State& state, const Interval& interval);
    double estimate(const Root& root, const Interval& interval) const;
    /// The root at a corner that a way bends around, to the left (side 0) or to the right; noRoot
    /// when a way that is no longer leads around it already.
    std::uint32_t rootAt(std::uint32_t vertex, int side, const PlanePoint& point,
                         const Root& before);
    /// The shortest way to a corner, and the sides to which it was gone around.
    struct Arrival {
        double mLength = 0;
        std::uint32_t mVertex = NO_VERTEX;
        std::uint32_t mRun = 0;
        std::uint8_t mSides = 0;
    };
    static constexpr std::size_t fewestArrivals = 256; ///< a power of 2, as all their sizes
    Arrival& arrivalAt(std::uint32_t vertex);
    Arrival& slotOf(std::uint32_t vertex);
    void growArrivals();
    void writeChain(std::uint32_t index, std::vector<std::uint32_t>& chain) const;

    const MeshView& mView;
    std::uint32_t mStartNode = NO_NODE;
    End mGoal{NO_NODE, {}};
    double mBound = 0;
    double mHaste = 0;
    std::vector<State> mStates;
    std::vector<Root> mRoots;
    std::vector<Waiting> mWaiting;  ///< a heap, the least estimate first
    std::vector<Arrival> mArrivals; ///< hashed by vertex; those of other runs are none
    std::size_t mArrivalCount = 0;
    std::uint32_t mRun = 0;
};

} // namespace ZUNO::HostKit

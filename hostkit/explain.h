#pragma once

#include "hostkit/surface.h"

#include <string>

namespace ZUNO::HostKit {

/// Why there is, or is not, a path between two points.
struct Explanation {
    enum class Answer {
        POSSIBLE,     ///< a path leads from the start to the goal
        OFF_MESH,     ///< a point stands on no node
        OTHER_ISLAND, ///< no neighbours connect the two
        ONLY_ONE_WAY, ///< neighbours connect them, but not in this direction
    };
    /// What is known of one of the points.
    struct End {
        Position mPoint{0, 0, 0};
        std::uint32_t mNode = NO_NODE;   ///< that it stands on, in the world's eyes
        Place mFloor;                    ///< the ground straight above or below, nearest in height
        float mAbove = 0;                ///< how far the point is above that; negative: below
        NearestPlace mNearest;           ///< the place from which a search can begin
        std::uint32_t mIsland = NO_NODE; ///< of the node
        std::uint32_t mIslandSize = 0;   ///< in nodes
    };

    Answer mAnswer = Answer::POSSIBLE;
    End mStart;
    End mGoal;
    /// For two islands: where they come nearest to each other, and how near (`strait.h`).
    Place mStartShore;
    Place mGoalShore;
    float mGap = 0;
};

/// Explains why a search between the points finds a path or doesn't.
/// Cost: two walks down a tree; when the islands differ, a tree of the nodes of each and a walk for
/// each of their corners; else a look at all nodes that can be reached from the start.
Explanation explain(const MeshView& view, const Position& start, const Position& goal);

/// The same in words: one or more whole sentences, a line each.
std::string describe(const MeshView& view, const Explanation& explanation);

/// Returns the place nearest to the goal in space that can be reached from the start, for goals
/// that can't be; none when the start stands on no node or a point is not finite. Cost: a look at
/// all nodes that can be reached.
NearestPlace findNearestReachable(const MeshView& view, const Position& start,
                                  const Position& goal);

} // namespace ZUNO::HostKit

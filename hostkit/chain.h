#pragma once

#include "hostkit/meshview.h"

namespace ZUNO::HostKit {

/// Finds the nodes that a path of the world's goes through. Each waypoint is the centre of a
/// neighbour of the node before; where several neighbours have the same centre, those are taken
/// from which the waypoints go on to the goal.
/// Keeps its list: once that has grown, no memory is taken any more.
class ChainFinder {
public:
    explicit ChainFinder(const MeshView& view) : mView(view) {}

    /// Writes the nodes from that of the start to that of the goal. Returns false, with an empty
    /// chain, when the waypoints are not those of a path between the two on this mesh.
    /// Cost: some 30 ns a waypoint.
    bool find(const Position& start, const Position& goal, const std::vector<Position>& waypoints,
              std::vector<std::uint32_t>& chain);

private:
    /// A node that may be the one of its waypoint, and the candidate before it.
    struct Candidate {
        std::uint32_t mNode;
        std::uint32_t mBefore;
    };

    /// Adds the neighbours of the candidates from `first` on whose centre the waypoint is.
    void extend(std::size_t first, const Position& waypoint);

    const MeshView& mView;
    std::vector<Candidate> mCandidates; ///< for waypoint after waypoint
};

} // namespace ZUNO::HostKit

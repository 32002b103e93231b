#pragma once

#include <cstdint>

namespace ZUNO::Common::Astar {

/// The parent edge of the start node: none.
inline constexpr std::uint32_t noEdge = 0xFFFFFFFF;
/// A node id that names no node.
inline constexpr std::uint32_t noNode = 0xFFFFFFFF;

/// What a search knows of one node.
struct AStarNode {
    float mF;                  ///< estimated total cost: mG and the estimate
    float mG;                  ///< cost of the best known path from the start
    std::uint32_t mParentEdge; ///< the edge by which that path enters the node
};

/// Results of `AStar::runSearch`.
enum SearchResult : std::int32_t { SEARCH_FOUND = 0, SEARCH_RUNNING = 1, SEARCH_NO_PATH = 2 };

} // namespace ZUNO::Common::Astar

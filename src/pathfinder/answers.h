/// The answers of the exports that stand for something else than themselves.
#pragma once

namespace ZUNO::Pathfinder {

/// What `runPathSearch` returns.
enum SearchResult : int {
    PATH_FOUND = 0,   ///< the waypoints and the cost can be asked for
    PATH_RUNNING = 1, ///< the budget was used up first: call again
    PATH_NONE = 2     ///< no path leads from the start to the goal
};

/// The search id that is none. Ids of searches are 0 or more.
inline constexpr int noSearch = -1;

/// The height where there is no ground: the largest finite float.
inline constexpr float noGround = 3.4028235e38F;

/// The hit distance of a ray that meets nothing.
inline constexpr float noHit = -1.0F;

} // namespace ZUNO::Pathfinder

#pragma once

namespace ZUNO::Pathfinder {

/// The height where there is no ground: the largest finite float.
inline constexpr float noGround = 3.4028235e38F;

} // namespace ZUNO::Pathfinder

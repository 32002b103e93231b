#pragma once

#include "hostkit/surface.h"

namespace ZUNO::HostKit {

/// Where two islands come nearest to each other in space, and how near.
struct Strait {
    Place mFrom;
    Place mTo;
    float mGap = 0;
};

/// Looks for the strait between two islands, which must differ. Cost: a tree of each island's
/// nodes, and a walk down it for each corner of the other. Where that would take long, because
/// dozens of nodes lie straight above each other or have hundreds of corners, it is the nearest of
/// those that were looked at.
Strait findStrait(const MeshView& view, std::uint32_t from, std::uint32_t to);

} // namespace ZUNO::HostKit

#pragma once

#include "hostkit/surface.h"

namespace ZUNO::HostKit {

/// Where two islands come nearest to each other in space, and how near.
struct Strait {
    Place mFrom;
    Place mTo;
    float mGap = 0;
};

/// Looks for the strait between two islands, which must differ. Where more than twelve nodes of
/// the one lie straight above or below each corner of the other, it is the nearest of those that
/// were looked at. Cost: a tree of each island's nodes, and a walk down it for each corner of the
/// other.
Strait findStrait(const MeshView& view, std::uint32_t from, std::uint32_t to);

} // namespace ZUNO::HostKit

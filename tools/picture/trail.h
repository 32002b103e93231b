#pragma once

#include "hostkit/surface.h"

#include <limits>
#include <vector>

namespace ZUNO::Tools {

/// Heights, from and up to.
struct HeightRange {
    double mLow = -std::numeric_limits<double>::infinity();
    double mHigh = std::numeric_limits<double>::infinity();

    bool isAll() const { return mLow == HeightRange().mLow && mHigh == HeightRange().mHigh; }
    /// Whether any of a node lies within.
    bool holds(const HostKit::MeshView& view, std::uint32_t node) const;
};

/// A piece of a path as one sees it from above.
struct TrailPiece {
    bool mIsHidden = false; ///< another floor lies above it, or its own is not shown
    std::vector<HostKit::Position> mPoints;
};

/// Cuts the places along a path where it goes under another floor that is shown, and where it
/// leaves what is shown. Each piece ends where the next one begins.
std::vector<TrailPiece> cutTrail(const HostKit::MeshView& view, const HeightRange& shown,
                                 const std::vector<HostKit::Place>& places);

} // namespace ZUNO::Tools

#pragma once

#include "hostkit/funnel.h"
#include "hostkit/meshview.h"

#include <span>

namespace ZUNO::HostKit {

/// The portals of a chain of nodes: what two neighbours share, in one piece, and for two that don't
/// touch the points where they come nearest to each other.
/// Keeps its lists: once they have grown, no memory is taken any more.
class ChainPortals {
public:
    explicit ChainPortals(const MeshView& view) : mView(view) {}

    /// Takes the memory for so many nodes.
    void reserve(std::size_t nodes) {
        mPortals.reserve(2 * nodes); // two points for nodes that don't touch
        mEnds.reserve(2 * nodes);
        mPoints.reserve(2 * nodes);
    }

    /// Lays the portals of the nodes in their order. Returns false for nodes of which one is no
    /// neighbour of the one before.
    bool lay(std::span<const std::uint32_t> chain);

    const std::vector<Portal>& portals() const { return mPortals; }
    Position positionOf(const Funnel::Bend& bend) const;
    /// The index in the chain of the node behind the portal.
    std::uint32_t stepOf(const Funnel::Bend& bend) const { return mEnds[bend.mPortal].mStep; }

private:
    struct Ends {
        std::uint32_t mLeft; ///< vertices, or with `pointMark` of `mPoints`
        std::uint32_t mRight;
        std::uint32_t mStep;
    };
    static constexpr std::uint32_t pointMark = 1U << 31U;

    bool addPortal(std::uint32_t node, std::uint32_t next, std::uint32_t step);
    void addBorder(std::uint32_t node, std::span<const MeshView::Link> pieces, std::uint32_t step);
    void addGap(std::uint32_t node, std::uint32_t next, std::uint32_t step);
    void addPoint(std::uint32_t node, const PlanePoint& point, std::uint32_t step);

    const MeshView& mView;
    std::vector<Portal> mPortals;
    std::vector<Ends> mEnds; ///< of the portals
    std::vector<Position> mPoints;
};

} // namespace ZUNO::HostKit

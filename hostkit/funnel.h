#pragma once

#include "hostkit/planegeometry.h"

#include <cstdint>
#include <vector>

namespace ZUNO::HostKit {

/// What a path has to pass: the two ends of a border as one sees them who walks the path. Both may
/// be the same point.
struct Portal {
    PlanePoint mLeft;
    PlanePoint mRight;
};

/// Pulls a string tight that runs from a start through portals to a goal: the shortest way that
/// passes all of them in their order. Keeps the shortest ways to both ends of the portal reached so
/// far, which part at an apex; each point enters and leaves them once.
/// Cost: linear in the portals; takes no memory once its lists have grown.
class Funnel {
public:
    /// Where the string bends: at which end of which portal.
    struct Bend {
        std::uint32_t mPortal;
        bool mIsLeft;
    };

    /// Takes the memory for chains of so many nodes.
    void reserve(std::size_t nodes) {
        mItems.reserve(4 * nodes + 3);
        mBends.reserve(2 * nodes);
    }

    /// Returns the bends from start to goal, neither of which is among them; valid until the next
    /// call.
    const std::vector<Bend>& pull(const PlanePoint& start, const PlanePoint& goal,
                                  const std::vector<Portal>& portals);

private:
    struct Item {
        PlanePoint mPoint;
        Bend mBend;
    };

    void addLeft(const Item& item);
    void addRight(const Item& item);

    std::vector<Item> mItems; ///< the way to the left end backwards, the apex, the way to the right
    std::size_t mFirst = 0;
    std::size_t mApex = 0;
    std::size_t mLast = 0;
    std::vector<Bend> mBends;
};

} // namespace ZUNO::HostKit

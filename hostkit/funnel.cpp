#include "hostkit/funnel.h"

namespace ZUNO::HostKit {

const std::vector<Funnel::Bend>& Funnel::pull(const PlanePoint& start, const PlanePoint& goal,
                                              const std::vector<Portal>& portals) {
    mBends.clear();
    // to either side of the start there is room for one end of every portal, and the goal
    const std::size_t room = portals.size() + 1;
    mItems.resize(std::max(mItems.size(), 2 * room + 1));
    mFirst = mApex = mLast = room;
    mItems[mApex] = {start, {}};
    for (std::uint32_t i = 0; i < portals.size(); ++i) {
        addLeft({portals[i].mLeft, {i, true}});
        addRight({portals[i].mRight, {i, false}});
    }
    addLeft({goal, {}});
    for (std::size_t i = mApex; i-- > mFirst + 1;)
        mBends.push_back(mItems[i].mBend);
    return mBends;
}

// A new left end draws the way to it tight: what it passes on the right side falls away. When that
// reaches the apex, the way may have to follow the right side instead, and the apex moves along it.
void Funnel::addLeft(const Item& item) {
    while (mFirst < mApex &&
           turn(mItems[mFirst + 1].mPoint, mItems[mFirst].mPoint, item.mPoint) <= 0)
        ++mFirst;
    if (mFirst == mApex) {
        while (mApex < mLast &&
               turn(mItems[mApex].mPoint, mItems[mApex + 1].mPoint, item.mPoint) < 0)
            mBends.push_back(mItems[++mApex].mBend);
        mFirst = mApex;
    }
    mItems[--mFirst] = item;
}

void Funnel::addRight(const Item& item) {
    while (mLast > mApex && turn(mItems[mLast - 1].mPoint, mItems[mLast].mPoint, item.mPoint) >= 0)
        --mLast;
    if (mLast == mApex) {
        while (mApex > mFirst &&
               turn(mItems[mApex].mPoint, mItems[mApex - 1].mPoint, item.mPoint) > 0)
            mBends.push_back(mItems[--mApex].mBend);
        mLast = mApex;
    }
    mItems[++mLast] = item;
}

} // namespace ZUNO::HostKit

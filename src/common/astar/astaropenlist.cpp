#include "common/astar/astaropenlist.h"

#include <algorithm>

namespace ZUNO::Common::Astar {

void AStarOpenList::reposition(AStarNode* record) {
    // a record of the overflow part stays where it is: its order there means nothing
    const auto place = std::ranges::find(mSorted, record);
    if (place == mSorted.end())
        return;
    mSorted.erase(place);
    push(record);
}

// The order of what a refill takes decides between equal records. It is that of a list to whose end
// the first record goes, to whose front the others go while it is short, and in which later a
// better record at the end replaces the worst, of several the first; the worst goes back to the
// overflow's front. `mSorted` holds that list from its end to its front.
void AStarOpenList::refill() {
    mScratch.clear();
    mScratch.reserve(mOverflow.size()); // from here on nothing can fail half way
    const std::size_t taken = std::min(mOverflow.size(), refillLimit);
    mSorted.assign(mOverflow.begin(), mOverflow.begin() + static_cast<std::ptrdiff_t>(taken));
    // the first of the worst, seen from the front, is the last here
    const auto findWorst = [&] {
        auto worst = mSorted.end() - 1;
        for (auto place = worst; place-- != mSorted.begin();)
            if (isLess(*worst, *place))
                worst = place;
        return worst;
    };
    // while the list is short, only a worse record takes the worst's place: the earliest counts
    auto worst = std::max_element(mSorted.begin(), mSorted.end(), isLess);
    auto kept = mOverflow.begin() + static_cast<std::ptrdiff_t>(taken);
    for (auto next = kept; next != mOverflow.end(); ++next) {
        if (!isLess(*next, *worst)) {
            *kept++ = *next;
            continue;
        }
        mScratch.push_back(*worst);
        mSorted.erase(worst);
        mSorted.insert(mSorted.begin(), *next);
        worst = findWorst();
    }
    mOverflow.erase(kept, mOverflow.end());
    // what went back stands in front, the latest first; there is room for it where it was taken
    const auto first = mOverflow.begin() + static_cast<std::ptrdiff_t>(taken);
    if (mScratch.size() <= taken) {
        const auto begin = first - static_cast<std::ptrdiff_t>(mScratch.size());
        std::ranges::reverse_copy(mScratch, begin);
        mOverflow.erase(mOverflow.begin(), begin);
    } else {
        std::ranges::reverse(mScratch);
        mScratch.insert(mScratch.end(), first, mOverflow.end());
        mOverflow.swap(mScratch);
    }
    sortTaken();
}

void AStarOpenList::sortTaken() {
    // from the best on by insertion: stable, in place, and short
    for (auto next = mSorted.rbegin(); next != mSorted.rend(); ++next) {
        AStarNode* const record = *next;
        auto place = next;
        for (; place != mSorted.rbegin() && isLess(record, *(place - 1)); --place)
            *place = *(place - 1);
        *place = record;
    }
}

} // namespace ZUNO::Common::Astar

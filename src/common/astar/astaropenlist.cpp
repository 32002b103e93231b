#include "common/astar/astaropenlist.h"

#include <algorithm>

namespace ZUNO::Common::Astar {

void AStarOpenList::push(AStarNode* record) {
    const Less less;
    if (mSorted.empty() || !less(record, mSorted.back())) {
        mOverflow.push_back(record);
        return;
    }
    // behind all records of the same cost
    const auto place =
        std::ranges::find_if(mSorted, [&](const AStarNode* other) { return less(record, other); });
    mSorted.insert(place, record);
}

AStarNode* AStarOpenList::top() {
    if (mSorted.empty())
        refill();
    return mSorted.front();
}

void AStarOpenList::pop() {
    if (mSorted.empty())
        refill();
    mSorted.pop_front();
}

void AStarOpenList::clear() {
    mSorted.clear();
    mOverflow.clear();
}

void AStarOpenList::reposition(AStarNode* record) {
    // a record of the overflow part stays where it is: its order there means nothing
    const auto place = std::ranges::find(mSorted, record);
    if (place == mSorted.end())
        return;
    mSorted.erase(place);
    push(record);
}

void AStarOpenList::refill() {
    const Less less;
    const auto findWorst = [&] { return std::max_element(mSorted.begin(), mSorted.end(), less); };
    const auto move = [](RecordList& to, RecordList::iterator place, RecordList& from,
                         RecordList::iterator record) { to.splice(place, from, record); };

    move(mSorted, mSorted.end(), mOverflow, mOverflow.begin());
    auto worst = mSorted.begin();
    unsigned int count = 1;
    for (auto next = mOverflow.begin(); next != mOverflow.end();) {
        const auto record = next++;
        if (count < refillLimit) {
            move(mSorted, mSorted.begin(), mOverflow, record);
            ++count;
            if (less(*worst, *record))
                worst = record;
        } else if (less(*record, *worst)) {
            // the front of the overflow part is behind the walk
            move(mOverflow, mOverflow.begin(), mSorted, worst);
            move(mSorted, mSorted.end(), mOverflow, record);
            worst = findWorst(); // of several equal ones the first
        }
    }
    mSorted.sort(less);
}

} // namespace ZUNO::Common::Astar

#include "common/astar/astaropenlist.h"

#include <algorithm>
#include <limits>

namespace ZUNO::Common::Astar {

namespace {

/// `mF` with NaN read as infinity, so that it can be ordered. NaN arises when costs overflow.
float orderOf(const AStarNode* record) {
    return record->mF == record->mF ? record->mF : std::numeric_limits<float>::infinity();
}

bool isBetter(const AStarNode* a, const AStarNode* b) {
    return orderOf(a) < orderOf(b);
}

} // namespace

void AStarOpenList::push(AStarNode* record) {
    RecordList cell(1, record, mSorted.get_allocator());
    place(cell);
}

void AStarOpenList::place(RecordList& cell) {
    const float cost = cell.front()->mF;
    if (mSorted.empty() || !(cost < mSorted.back()->mF)) {
        mOverflow.splice(mOverflow.end(), cell);
        return;
    }
    // Behind all records of the same cost. The walk begins at the best, because savings that were
    // passed on may have lowered records in their places: the list need not be sorted.
    const auto dearer = std::find_if(mSorted.begin(), mSorted.end(),
                                     [&](const AStarNode* other) { return cost < other->mF; });
    mSorted.splice(dearer, cell);
}

AStarNode* AStarOpenList::top() {
    if (mSorted.empty())
        refill();
    return mSorted.front();
}

void AStarOpenList::pop() {
    if (mSorted.empty())
        refill();
    mPopped.clear();
    mPopped.splice(mPopped.begin(), mSorted, mSorted.begin());
}

void AStarOpenList::clear() {
    mSorted.clear();
    mOverflow.clear();
    mPopped.clear();
}

void AStarOpenList::reposition(AStarNode* record) {
    const auto found = std::find(mSorted.begin(), mSorted.end(), record);
    if (found == mSorted.end())
        return;
    RecordList cell(mSorted.get_allocator());
    cell.splice(cell.begin(), mSorted, found);
    place(cell);
}

// The first records of the overflow come into the sorted part, each before the former ones. Once it
// is full, a better record changes places with the worst: it comes in at the end, and the worst
// goes back to the overflow's begin, where this walk does not meet it again. Which of several equal
// records is the worst, and where each came in, decides how equal records leave.
void AStarOpenList::refill() {
    mSorted.splice(mSorted.begin(), mOverflow, mOverflow.begin());
    auto worst = mSorted.begin();
    for (auto next = mOverflow.begin(); next != mOverflow.end();) {
        const auto record = next++;
        if (mSorted.size() < refillLimit) {
            mSorted.splice(mSorted.begin(), mOverflow, record);
            if (isBetter(*worst, *record))
                worst = record;
        } else if (isBetter(*record, *worst)) {
            mOverflow.splice(mOverflow.begin(), mSorted, worst);
            mSorted.splice(mSorted.end(), mOverflow, record);
            worst = std::max_element(mSorted.begin(), mSorted.end(), isBetter); // the first one
        }
    }
    mSorted.sort(isBetter); // equal records keep their order
}

} // namespace ZUNO::Common::Astar

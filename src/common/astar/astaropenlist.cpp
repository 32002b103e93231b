#include "common/astar/astaropenlist.h"

#include <algorithm>
#include <array>
#include <limits>

namespace ZUNO::Common::Astar {

void AStarOpenList::reposition(AStarNode* record) {
    // a record of the overflow part stays where it is: its order there means nothing
    const auto place = std::find(mSorted.begin(), mSorted.end(), record);
    if (place == mSorted.end())
        return;
    mSorted.erase(place);
    push(record);
}

namespace {

/// A record that a refill takes.
struct Taken {
    float mF;
    std::int32_t mPlace; ///< in the order that decides between equal records, the first lowest
    AStarNode* mRecord;
};

/// What a record costs as a number that orders: costs beyond the range of `float` may have become
/// none at all.
float orderOf(const AStarNode& record) {
    return record.mF == record.mF ? record.mF : std::numeric_limits<float>::infinity();
}

/// Orders a heap whose top is the worst, of several the first. Types, for the algorithms to inline.
struct IsBetter {
    bool operator()(const Taken& a, const Taken& b) const {
        return a.mF < b.mF || (a.mF == b.mF && a.mPlace > b.mPlace);
    }
};
struct ComesAfter {
    bool operator()(const Taken& a, const Taken& b) const {
        return a.mF > b.mF || (a.mF == b.mF && a.mPlace > b.mPlace);
    }
};

} // namespace

// The order of what a refill takes decides between equal records. It is that of a list to whose end
// the first record goes, and to whose front the others go while it is short; later a better record
// at the end takes the place of the worst, which goes back to the front of the overflow.
void AStarOpenList::refill() {
    mScratch.clear();
    mScratch.reserve(mOverflow.size()); // from here on nothing can fail half way
    mSorted.reserve(refillLimit);
    std::array<Taken, refillLimit> taken;
    const std::size_t count = std::min(mOverflow.size(), refillLimit);
    const auto takenEnd = taken.begin() + static_cast<std::ptrdiff_t>(count);
    for (std::size_t i = 0; i < count; ++i)
        taken[i] = {orderOf(*mOverflow[i]), -static_cast<std::int32_t>(i), mOverflow[i]};

    const auto rest = mOverflow.begin() + static_cast<std::ptrdiff_t>(count);
    auto kept = rest;
    std::int32_t place = 0;
    // before the first exchange the worst is, of several, the one that was taken first
    auto worst = std::max_element(taken.begin(), takenEnd,
                                  [](const Taken& a, const Taken& b) { return a.mF < b.mF; });
    for (auto next = rest; next != mOverflow.end(); ++next) {
        if (!((*next)->mF < worst->mF)) {
            *kept++ = *next;
            continue;
        }
        mScratch.push_back(worst->mRecord);
        const Taken better{(*next)->mF, ++place, *next};
        if (place == 1) {
            *worst = better;
            std::make_heap(taken.begin(), takenEnd, IsBetter{});
        } else {
            std::pop_heap(taken.begin(), takenEnd, IsBetter{});
            *(takenEnd - 1) = better;
            std::push_heap(taken.begin(), takenEnd, IsBetter{});
        }
        worst = taken.begin();
    }
    mOverflow.erase(kept, mOverflow.end());
    putBack(count);

    std::sort(taken.begin(), takenEnd, ComesAfter{});
    for (auto record = taken.begin(); record != takenEnd; ++record)
        mSorted.push_back(record->mRecord);
}

/// Replaces the first records of the overflow, which were taken, by those that went back: the
/// latest first.
void AStarOpenList::putBack(std::size_t taken) {
    std::reverse(mScratch.begin(), mScratch.end());
    const auto rest = mOverflow.begin() + static_cast<std::ptrdiff_t>(taken);
    if (mScratch.size() <= taken) {
        const auto begin = rest - static_cast<std::ptrdiff_t>(mScratch.size());
        std::copy(mScratch.begin(), mScratch.end(), begin);
        mOverflow.erase(mOverflow.begin(), begin);
    } else {
        mScratch.insert(mScratch.end(), rest, mOverflow.end());
        mOverflow.swap(mScratch);
    }
}

} // namespace ZUNO::Common::Astar

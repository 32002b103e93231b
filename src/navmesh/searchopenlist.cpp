#include "navmesh/searchopenlist.h"

#include <algorithm>
#include <limits>

namespace ZUNO::NavMesh {

namespace {

/// `mF` with NaN read as infinity, so that it can be ordered. NaN arises when costs overflow.
float orderOf(const OpenEntry& entry) {
    return entry.mF == entry.mF ? entry.mF : std::numeric_limits<float>::infinity();
}

/// Turns each run of equal costs round.
void reverseEqualRuns(std::span<OpenEntry> entries) {
    for (auto begin = entries.begin(); begin != entries.end();) {
        const float cost = orderOf(*begin);
        const auto next = std::find_if(
            begin, entries.end(), [=](const OpenEntry& entry) { return orderOf(entry) != cost; });
        std::reverse(begin, next);
        begin = next;
    }
}

} // namespace

void SearchOpenList::growOverflow(std::size_t entries) {
    mOverflow.reserve(std::max(2 * (mOverflow.size() + entries), firstRoom));
}

/// Before a node is looked for.
void SearchOpenList::noteLook() {
    if (mTellsPlaces || mLooksLeft-- != 0)
        return;
    mTellsPlaces = true;
    mSorted.tellPlaces();
    for (std::uint32_t place = 0; place < mOverflow.size(); ++place)
        mRecords[mOverflow[place].mNode].setOverflowPlace(place);
}

/// Looks from the end on, where the latest are. Returns null when it is not there.
OpenEntry* SearchOpenList::findInOverflow(std::uint32_t node) {
    if (mTellsPlaces) { // a node that is just expanded is in neither part, whatever it was told
        const std::uint32_t place = mRecords[node].overflowPlace();
        return place < mOverflow.size() && mOverflow[place].mNode == node ? &mOverflow[place]
                                                                          : nullptr;
    }
    const auto place = std::find_if(mOverflow.rbegin(), mOverflow.rend(),
                                    [=](const OpenEntry& entry) { return entry.mNode == node; });
    return place != mOverflow.rend() ? &*place : nullptr;
}

void SearchOpenList::reposition(const OpenEntry& entry) {
    noteLook();
    if (OpenEntry* const sorted = mSorted.find(entry.mNode); sorted != nullptr) {
        mSorted.erase(sorted);
        push(entry);
    } else if (OpenEntry* const other = findInOverflow(entry.mNode); other != nullptr) {
        other->mF = entry.mF; // order means nothing in the overflow
    }
}

void SearchOpenList::updateCost(const OpenEntry& entry) {
    noteLook();
    if (OpenEntry* const sorted = mSorted.find(entry.mNode); sorted != nullptr)
        mSorted.setCost(sorted, entry.mF);
    else if (OpenEntry* const other = findInOverflow(entry.mNode); other != nullptr)
        other->mF = entry.mF;
}

/// The entries that a refill takes: the first ones, and later ones that were exchanged for a worse
/// one, both kept sorted, cheapest first. Where the plain list appends and sorts at the end, this
/// sorts the first ones and then keeps the order. An entry's rank in the plain list's sequence
/// decides between equal costs: the first entries have falling ranks, later ones rising ranks above
/// them. Entries of equal cost stand here by falling rank, so that
/// - one of the first goes behind its equals, a later one before them;
/// - the worst, of equals that of the lowest rank, is the last of the first ones, or else of the
///   later ones. Only before the first exchange the plain list has another worst: of equals the
///   first taken, which has the highest rank.
/// At the end each run of equals is turned round, as the plain list's stable sort leaves it.
class SearchOpenList::Selection {
public:
    /// Takes the first entries, at most as many as the limit. Each goes where so many are cheaper,
    /// behind its equals that came before.
    Selection(const OpenEntry* entries, std::size_t count) : mFirstCount(count) {
        constexpr float none = std::numeric_limits<float>::infinity();
        float costs[capacity];
        std::fill(std::begin(costs), std::end(costs), none);
        std::transform(entries, entries + count, costs, orderOf);
        std::fill(std::begin(mCosts), std::end(mCosts), free);
        for (std::size_t i = 0; i < count; ++i) {
            std::int32_t place = 0; // counted without branches, four at a time
#pragma GCC unroll 13
            for (std::size_t k = 0; k < capacity; ++k)
                place += costs[k] < costs[i] ? 1 : 0;
            while (mCosts[place] != free)
                ++place;
            mCosts[place] = costs[i];
            mFirst[place] = entries[i];
        }
        mWorst = mCosts[count - 1];
    }
    bool isBetter(const OpenEntry& entry) const {
        return entry.mF < mWorst;
    }

    /// Takes a better entry than the worst, which is returned.
    OpenEntry exchange(const OpenEntry& better) {
        if (mLaterCount == 0) // there was no exchange before
            moveFirstTakenWorstToTheEnd();
        const OpenEntry dropped = takeWorst();
        OpenEntry* place = mLater + mLaterCount++;
        for (; place != mLater && !(place[-1].mF < better.mF); --place)
            *place = place[-1];
        *place = better;
        mWorst = mLater[mLaterCount - 1].mF; // it was better: no NaN
        if (mFirstCount != 0)
            mWorst = std::max(mWorst, mCosts[mFirstCount - 1]);
        return dropped;
    }

    /// Moves all into an empty sequence, the last to leave first.
    void moveTo(OpenSequence& sequence) {
        sequence.beginFilling();
        while (mFirstCount + mLaterCount != 0)
            sequence.append(takeWorst());
        reverseEqualRuns(sequence.appended());
    }

private:
    static constexpr std::size_t capacity = (refillLimit + 3) / 4 * 4;
    static constexpr float free = -1; ///< no cost is negative

    void moveFirstTakenWorstToTheEnd() {
        OpenEntry* const end = mFirst + mFirstCount;
        OpenEntry* worst = end - 1;
        while (worst != mFirst && orderOf(worst[-1]) == mWorst)
            --worst;
        std::rotate(worst, worst + 1, end);
    }
    OpenEntry takeWorst() {
        const bool isLater =
            mLaterCount != 0 &&
            (mFirstCount == 0 || mCosts[mFirstCount - 1] < mLater[mLaterCount - 1].mF);
        return isLater ? mLater[--mLaterCount] : mFirst[--mFirstCount];
    }

    float mCosts[capacity]; ///< of the first ones, ordered, and `free` behind them
    OpenEntry mFirst[capacity];
    OpenEntry mLater[capacity];
    std::size_t mFirstCount;
    std::size_t mLaterCount = 0;
    float mWorst;
};

void SearchOpenList::refill() {
    static_assert(refillLimit <= OpenSequence::blockEntries);
    mReturned.clear();
    mReturned.reserve(mOverflow.size()); // from here on nothing can fail
    mTellsPlaces = false;
    const std::size_t count = std::min(mOverflow.size(), refillLimit);
    Selection selection(mOverflow.data(), count);
    auto kept = mOverflow.begin() + static_cast<std::ptrdiff_t>(count);
    for (auto next = kept; next != mOverflow.end(); ++next) {
        if (selection.isBetter(*next))
            mReturned.push_back(selection.exchange(*next));
        else
            *kept++ = *next;
    }
    mOverflow.erase(kept, mOverflow.end());
    returnToOverflow(count);
    selection.moveTo(mSorted);
}

/// Replaces the first entries of the overflow, which were taken, by those that went back: the
/// latest first.
void SearchOpenList::returnToOverflow(std::size_t taken) {
    std::reverse(mReturned.begin(), mReturned.end());
    mReturned.insert(mReturned.end(), mOverflow.begin() + static_cast<std::ptrdiff_t>(taken),
                     mOverflow.end());
    mOverflow.assign(mReturned.begin(), mReturned.end());
}

} // namespace ZUNO::NavMesh

#include "navmesh/searchopenlist.h"

#include <algorithm>
#include <limits>

namespace ZUNO::NavMesh {

void SearchOpenList::grow(std::size_t records) {
    mSorted.reserve(std::max(mSorted.capacity(), 2 * (mSorted.size() + records)));
    mOverflow.reserve(std::max(mOverflow.capacity(), 2 * (mOverflow.size() + records)));
}

// Behind all records of the same cost. The walk begins at the best, because savings that were
// passed on may have lowered records in their places: the list need not be sorted.
void SearchOpenList::insert(SearchRecord& record) {
    record.setState(SearchRecord::SORTED);
    const Entry entry{record.mF, record.node()};
    mSorted.push_back(entry);
    auto place = mSorted.end() - 1;
    for (; place != mSorted.begin() && !(entry.mF < (place - 1)->mF); --place)
        *place = *(place - 1);
    *place = entry;
}

NavMeshContainer::Vector<SearchOpenList::Entry>::iterator SearchOpenList::find(std::uint32_t node) {
    return std::find_if(mSorted.begin(), mSorted.end(),
                        [=](const Entry& entry) { return entry.mNode == node; });
}

void SearchOpenList::reposition(SearchRecord& record) {
    if (record.state() != SearchRecord::SORTED)
        return;
    const auto place = find(record.node());
    if (place == mSorted.end())
        return; // it was taken out
    mSorted.erase(place);
    push(record);
}

void SearchOpenList::updateCost(const SearchRecord& record) {
    if (record.state() != SearchRecord::SORTED)
        return;
    if (const auto place = find(record.node()); place != mSorted.end())
        place->mF = record.mF;
}

/// The records that a refill takes, cheapest first. Where the plain list appends and sorts at the
/// end, this keeps them sorted. A record's rank in the plain list's sequence decides between equal
/// costs: the first records have falling ranks, those that are exchanged for a worse one rising
/// ranks above them. Records of equal cost stand here by falling rank, so that
/// - one of the first goes behind its equals, a later one before them;
/// - the worst, of equals that of the lowest rank, is the last one. Only before the first exchange
///   the plain list has another worst: of equals the first taken, which has the highest rank.
/// At the end each run of equals is turned round, as the plain list's stable sort leaves it.
class SearchOpenList::Selection {
public:
    Selection() { std::fill(std::begin(mCosts), std::end(mCosts), none); }

    /// Takes one of the first records, up to the limit.
    void takeFirst(SearchRecord* record) {
        const float cost = costOf(*record);
        std::size_t place = mCount++;
        for (; place != 0 && cost < mCosts[place - 1]; --place)
            copy(place - 1, place);
        set(place, cost, record);
    }
    /// Sets what the first exchange drops.
    void findFirstWorst() {
        mWorst = mCount - 1;
        while (mWorst != 0 && mCosts[mWorst - 1] == mCosts[mWorst])
            --mWorst;
    }
    bool isBetter(const SearchRecord& record) const { return record.mF < mCosts[mWorst]; }

    /// Takes a better record than the worst, which is returned. Only with as many as the limit.
    SearchRecord* exchange(SearchRecord* better) {
        SearchRecord* const dropped = mRecords[mWorst];
        std::int32_t place = 0; // counted without branches, four at a time
        for (std::size_t i = 0; i < capacity; ++i)
            place += mCosts[i] < better->mF ? 1 : 0;
        std::move_backward(mCosts + place, mCosts + mWorst, mCosts + mWorst + 1);
        std::move_backward(mRecords + place, mRecords + mWorst, mRecords + mWorst + 1);
        set(static_cast<std::size_t>(place), better->mF, better);
        mWorst = refillLimit - 1;
        return dropped;
    }

    /// Calls `visitor(record)` for all of them, the last to leave first.
    template <typename Visitor>
    void visitFromWorst(Visitor visitor) {
        for (std::size_t end = mCount; end != 0;) { // a run of equals at a time, by falling rank
            std::size_t begin = end - 1;
            while (begin != 0 && mCosts[begin - 1] == mCosts[end - 1])
                --begin;
            for (std::size_t i = begin; i != end; ++i)
                visitor(*mRecords[i]);
            end = begin;
        }
    }

private:
    static constexpr float none = std::numeric_limits<float>::infinity();
    static constexpr std::size_t capacity = (refillLimit + 3) / 4 * 4;

    /// `mF` with NaN read as infinity, so that it can be ordered. NaN arises when costs overflow.
    static float costOf(const SearchRecord& record) {
        return record.mF == record.mF ? record.mF : none;
    }
    void set(std::size_t place, float cost, SearchRecord* record) {
        mCosts[place] = cost;
        mRecords[place] = record;
    }
    void copy(std::size_t from, std::size_t to) { set(to, mCosts[from], mRecords[from]); }

    float mCosts[capacity];
    SearchRecord* mRecords[capacity];
    std::size_t mCount = 0;
    std::size_t mWorst = 0;
};

void SearchOpenList::refill() {
    mReturned.clear();
    mReturned.reserve(mOverflow.size()); // from here on nothing can fail
    mSorted.reserve(refillLimit);
    Selection selection;
    const std::size_t count = std::min(mOverflow.size(), refillLimit);
    for (std::size_t i = 0; i < count; ++i)
        selection.takeFirst(mOverflow[i]);
    selection.findFirstWorst();
    auto kept = mOverflow.begin() + static_cast<std::ptrdiff_t>(count);
    for (auto next = kept; next != mOverflow.end(); ++next) {
        if (selection.isBetter(**next))
            mReturned.push_back(selection.exchange(*next));
        else
            *kept++ = *next;
    }
    mOverflow.erase(kept, mOverflow.end());
    returnToOverflow(count);
    selection.visitFromWorst([&](SearchRecord& record) {
        record.setState(SearchRecord::SORTED);
        mSorted.push_back({record.mF, record.node()});
    });
}

/// Replaces the first records of the overflow, which were taken, by those that went back: the
/// latest first.
void SearchOpenList::returnToOverflow(std::size_t taken) {
    std::reverse(mReturned.begin(), mReturned.end());
    const auto rest = mOverflow.begin() + static_cast<std::ptrdiff_t>(taken);
    if (mReturned.size() <= taken) {
        const auto begin = rest - static_cast<std::ptrdiff_t>(mReturned.size());
        std::copy(mReturned.begin(), mReturned.end(), begin);
        mOverflow.erase(mOverflow.begin(), begin);
    } else {
        mReturned.insert(mReturned.end(), rest, mOverflow.end());
        mOverflow.swap(mReturned);
    }
}

} // namespace ZUNO::NavMesh

#pragma once

#include "common/astar/astarnode.h"
#include "common/memory/stlallocator.h"

#include <vector>

namespace ZUNO::Common::Astar {

/// The open records of a search, best first, in two parts: a short sorted list, and an unsorted
/// overflow for what is worse than the sorted list's end. Only when the sorted part runs out are
/// the best records of the overflow gathered and sorted. The order among records of equal cost is
/// part of the results: it decides which of several equally good paths comes out.
class AStarOpenList {
public:
    explicit AStarOpenList(const SharedPtr<Memory::Allocator>& allocator)
        : mSorted(allocator), mOverflow(allocator), mScratch(allocator) {}

    void push(AStarNode* record) {
        if (mSorted.empty() || !isLess(record, mSorted.front()))
            mOverflow.push_back(record);
        else
            insert(record);
    }
    /// The best record; the list must not be empty.
    AStarNode* top() {
        if (mSorted.empty())
            refill();
        return mSorted.back();
    }
    /// Removes the best record; the list must not be empty.
    void pop() {
        if (mSorted.empty())
            refill();
        mSorted.pop_back();
    }
    bool empty() const { return mSorted.empty() && mOverflow.empty(); }
    void clear() {
        mSorted.clear();
        mOverflow.clear();
    }

    /// Finds a new place for a record whose cost was lowered.
    void reposition(AStarNode* record);
    /// Makes the record the best one, before all others of its cost.
    void pushFront(AStarNode* record) { mSorted.push_back(record); }

private:
    using RecordList = std::vector<AStarNode*, Memory::STLAllocator<AStarNode*>>;

    /// How many records a refill moves into the sorted part.
    static constexpr std::size_t refillLimit = 50;

    static bool isLess(const AStarNode* a, const AStarNode* b) { return a->mF < b->mF; }

    /// Behind all records that cost as much. Seen from the best: a record whose cost was lowered
    /// in its place may stand where the order does not put it, and the first larger one counts.
    void insert(AStarNode* record) {
        auto place = mSorted.end();
        while (place != mSorted.begin() && !isLess(record, *(place - 1)))
            --place;
        mSorted.insert(place, record);
    }
    void refill();
    void putBack(std::size_t taken);

    RecordList mSorted;   ///< the best last
    RecordList mOverflow; ///< in the order in which a refill looks at them
    RecordList mScratch;
};

} // namespace ZUNO::Common::Astar

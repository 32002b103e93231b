#pragma once

#include "common/astar/astarnode.h"
#include "common/memory/stlallocator.h"

#include <list>

namespace ZUNO::Common::Astar {

/// The open records of a search, best first, in two parts: a short sorted list, and an unsorted
/// overflow for what is worse than the sorted list's end. Only when the sorted part runs out are
/// the best records of the overflow gathered and sorted. The order among records of equal cost is
/// part of the results: it decides which of several equally good paths comes out.
class AStarOpenList {
public:
    explicit AStarOpenList(const SharedPtr<Memory::Allocator>& allocator)
        : mSorted(allocator), mOverflow(allocator) {}

    void push(AStarNode* record);
    /// The best record; the list must not be empty.
    AStarNode* top();
    /// Removes the best record; the list must not be empty.
    void pop();
    bool empty() const { return mSorted.empty() && mOverflow.empty(); }
    void clear();

    /// Finds a new place for a record whose cost was lowered.
    void reposition(AStarNode* record);
    /// Makes the record the best one, before all others of its cost.
    void pushFront(AStarNode* record) { mSorted.push_front(record); }

private:
    using RecordList = std::list<AStarNode*, Memory::STLAllocator<AStarNode*>>;

    /// How many records a refill moves into the sorted part.
    static constexpr unsigned int refillLimit = 50;

    struct Less {
        bool operator()(const AStarNode* a, const AStarNode* b) const { return a->mF < b->mF; }
    };

    void refill();

    RecordList mSorted;
    RecordList mOverflow;
};

} // namespace ZUNO::Common::Astar

#pragma once

#include "common/astar/astarnode.h"
#include "common/memory/stlallocator.h"

#include <list>

namespace ZUNO::Common::Astar {

/// The open records of a search in two parts: a short list in ascending order of cost, and an
/// unordered overflow for what costs more than the sorted part's end. Only when the sorted part
/// runs out are the best records of the overflow gathered and sorted. The order among records of
/// equal cost is part of the results: it decides which of several equally good paths comes out.
///
/// Records move between the parts with their list cells, so that `push` alone needs memory; when
/// there is none, it raises an OutOfMemoryException and changes nothing.
class AStarOpenList {
public:
    explicit AStarOpenList(const SharedPtr<Memory::Allocator>& allocator)
        : mSorted(allocator), mOverflow(allocator), mPopped(allocator) {}

    /// Adds a record behind all that cost as much.
    void push(AStarNode* record);
    /// Returns the best record; the list must not be empty.
    AStarNode* top();
    /// Removes the best record; the list must not be empty.
    void pop();
    /// Makes the record that `pop` removed last the best one again, before all that cost as much.
    /// Needs no memory. Once for each `pop`.
    void putBack() { mSorted.splice(mSorted.begin(), mPopped); }
    bool empty() const { return mSorted.empty() && mOverflow.empty(); }
    void clear();

    /// Finds a new place for a record whose cost was lowered. One in the overflow stays where it
    /// is: order means nothing there. Needs no memory. Cost: the length of the sorted part.
    void reposition(AStarNode* record);

private:
    using RecordList = std::list<AStarNode*, Memory::STLAllocator<AStarNode*>>;

    /// How many records a refill moves into the sorted part.
    static constexpr std::size_t refillLimit = 50;

    /// Moves the one record of `cell` to where the order wants it.
    void place(RecordList& cell);
    void refill();

    RecordList mSorted;
    RecordList mOverflow;
    RecordList mPopped; ///< the cell of the record that was removed last
};

} // namespace ZUNO::Common::Astar

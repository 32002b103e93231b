#pragma once

#include "navmesh/searchmemory.h"

namespace ZUNO::NavMesh {

/// `Common::Astar::AStarOpenList` made fast: records leave it in the same order.
///
/// Both parts are arrays of costs beside nodes, the sorted one with the best at its end: neither
/// looking for a place nor a refill touches a record. Sequences, and with them every decision
/// between equal costs, are those of the plain list; see `refill` for the one step that goes
/// another way.
class SearchOpenList {
public:
    explicit SearchOpenList(SearchMemory& memory)
        : mSorted(memory.mPool), mOverflow(memory.mPool), mReturned(memory.mReturned) {}

    bool isEmpty() const { return mSorted.empty() && mOverflow.empty(); }
    /// Returns the best node; the list must not be empty. Throws OutOfMemoryException, and then
    /// nothing has changed.
    std::uint32_t best() {
        if (mSorted.empty())
            refill();
        return mSorted.back().mNode;
    }
    /// Removes what `best` returned.
    void removeBest() { mSorted.pop_back(); }

    /// Makes room, so that so many entries can be pushed or repositioned without memory. Throws
    /// OutOfMemoryException, and then nothing has changed.
    void makeRoom(std::size_t entries) {
        if (mSorted.capacity() - mSorted.size() < entries ||
            mOverflow.capacity() - mOverflow.size() < entries)
            grow(entries);
    }
    /// Opens a node that is in neither part. Called for each node that a search visits.
    [[gnu::always_inline]] void push(const OpenEntry& entry) {
        if (mSorted.empty() || !(entry.mF < mSorted.front().mF))
            mOverflow.push_back(entry);
        else
            insert(entry);
    }
    /// Finds a new place for a node whose cost was lowered, if it is in the list.
    void reposition(const OpenEntry& entry);
    /// Learns the cost of a node that keeps its place although it was lowered, if it is there.
    void updateCost(const OpenEntry& entry);

    void clear() {
        mSorted.clear();
        mOverflow.clear();
    }

private:
    /// How many entries a refill moves into the sorted part.
    static constexpr std::size_t refillLimit = 50;
    /// What both parts have room for from the beginning.
    static constexpr std::size_t firstRoom = BlockPool::blockSize / sizeof(OpenEntry);

    using Entries = BlockPool::Vector<OpenEntry>;
    class Selection;

    void grow(std::size_t entries);
    void insert(OpenEntry entry);
    static OpenEntry* find(Entries& part, std::uint32_t node);
    void refill();
    void returnToOverflow(std::size_t taken);

    Entries mSorted;    ///< the best last
    Entries mOverflow;  ///< in the order in which a refill looks
    Entries& mReturned; ///< while a refill runs
};

} // namespace ZUNO::NavMesh

#pragma once

#include "navmesh/opensequence.h"

namespace ZUNO::NavMesh {

/// `Common::Astar::AStarOpenList` made fast: records leave it in the same order.
///
/// Both parts are costs beside nodes: neither looking for a place nor a refill touches a record.
/// Sequences, and with them every decision between equal costs, are those of the plain list; see
/// `refill` for the one step that goes another way. A node is looked for among all; only when one
/// expansion looks for many, the records are told where each is.
class SearchOpenList {
public:
    /// The records are those of the list's search; memory and they must outlive it.
    SearchOpenList(SearchMemory& memory, SearchRecords& records)
        : mRecords(records), mSorted(memory.mPool, records), mOverflow(memory.mPool),
          mReturned(memory.mReturned) {}

    bool isEmpty() const { return mSorted.isEmpty() && mOverflow.empty(); }
    /// Returns the best node; the list must not be empty. Throws OutOfMemoryException, and then
    /// nothing has changed.
    std::uint32_t best() {
        if (mSorted.isEmpty())
            refill();
        return mSorted.best().mNode;
    }
    /// Removes what `best` returned.
    void removeBest() { mSorted.removeBest(); }

    /// Makes room, so that so many entries can be pushed or repositioned without memory. Throws
    /// OutOfMemoryException, and then nothing has changed.
    void makeRoom(std::size_t entries) {
        mLooksLeft = looksBeforeTelling;
        mSorted.makeRoom(entries);
        if (mOverflow.capacity() - mOverflow.size() < entries)
            growOverflow(entries);
    }
    /// Opens a node that is in neither part. Called for each node that a search visits.
    [[gnu::always_inline]] void push(const OpenEntry& entry) {
        if (!mSorted.isEmpty() && entry.mF < mSorted.worst().mF)
            mSorted.insert(entry);
        else
            pushOverflow(entry);
    }
    /// Finds a new place for a node whose cost was lowered, if it is in the list.
    void reposition(const OpenEntry& entry);
    /// Learns the cost of a node that keeps its place although it was lowered, if it is there.
    void updateCost(const OpenEntry& entry);

    void clear() {
        mSorted.clear();
        mOverflow.clear();
        mTellsPlaces = false;
    }

private:
    /// How many entries a refill moves into the sorted part.
    static constexpr std::size_t refillLimit = 50;
    /// What the overflow has room for from the beginning.
    static constexpr std::size_t firstRoom = BlockPool::blockSize / sizeof(OpenEntry);
    /// How many nodes an expansion looks for among all, before it pays to tell the records.
    static constexpr unsigned int looksBeforeTelling = 8;

    using Entries = BlockPool::Vector<OpenEntry>;
    class Selection;

    void growOverflow(std::size_t entries);
    void pushOverflow(const OpenEntry& entry) {
        mOverflow.push_back(entry);
        if (mTellsPlaces)
            mRecords[entry.mNode].setOverflowPlace(
                static_cast<std::uint32_t>(mOverflow.size() - 1));
    }
    void noteLook();
    OpenEntry* findInOverflow(std::uint32_t node);
    void refill();
    void returnToOverflow(std::size_t taken);

    SearchRecords& mRecords;
    OpenSequence mSorted;
    Entries mOverflow;  ///< in the order in which a refill looks
    Entries& mReturned; ///< while a refill runs
    unsigned int mLooksLeft = 0;
    bool mTellsPlaces = false; ///< until a refill
};

} // namespace ZUNO::NavMesh

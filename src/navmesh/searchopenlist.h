#pragma once

#include "navmesh/searchrecords.h"

namespace ZUNO::NavMesh {

/// `Common::Astar::AStarOpenList` made fast: records leave it in the same order.
///
/// The sorted part is an array with the best at its end, and costs lie beside the nodes: looking
/// for a place touches no record. A record knows which part it is in, so that one in the overflow,
/// whose place does not change, is not looked for. Sequences, and with them every decision between
/// equal costs, are those of the plain list; see `refill` for the one step that goes another way.
class SearchOpenList {
public:
    explicit SearchOpenList(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mSorted(allocator), mOverflow(allocator), mReturned(allocator) {}

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

    /// Makes room, so that so many records can be pushed or repositioned without memory. Throws
    /// OutOfMemoryException, and then nothing has changed.
    void makeRoom(std::size_t records) {
        if (mSorted.capacity() - mSorted.size() < records ||
            mOverflow.capacity() - mOverflow.size() < records)
            grow(records);
    }
    /// Opens a record that is in neither part.
    void push(SearchRecord& record) {
        if (mSorted.empty() || !(record.mF < mSorted.front().mF)) {
            record.setState(SearchRecord::OVERFLOWING);
            mOverflow.push_back(&record);
        } else {
            insert(record);
        }
    }
    /// Finds a new place for an open record whose cost was lowered.
    void reposition(SearchRecord& record);
    /// Learns the cost of an open record that keeps its place although it was lowered.
    void updateCost(const SearchRecord& record);

    void clear() {
        mSorted.clear();
        mOverflow.clear();
    }

private:
    /// How many records a refill moves into the sorted part.
    static constexpr std::size_t refillLimit = 50;

    struct Entry {
        float mF; ///< the record's
        std::uint32_t mNode;
    };
    class Selection;

    void grow(std::size_t records);
    void insert(SearchRecord& record);
    NavMeshContainer::Vector<Entry>::iterator find(std::uint32_t node);
    void refill();
    void returnToOverflow(std::size_t taken);

    NavMeshContainer::Vector<Entry> mSorted;           ///< the best last
    NavMeshContainer::Vector<SearchRecord*> mOverflow; ///< in the order in which a refill looks
    NavMeshContainer::Vector<SearchRecord*> mReturned; ///< while a refill runs
};

} // namespace ZUNO::NavMesh

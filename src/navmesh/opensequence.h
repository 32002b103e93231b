#pragma once

#include "navmesh/searchmemory.h"

#include <span>

namespace ZUNO::NavMesh {

/// The sorted part of an open list: entries in a row, the worst first and the best last. It need
/// not be sorted, for a cost may be lowered in its place.
///
/// The row lies in blocks. Mostly it is one, which is walked over; among many, one is found by the
/// largest costs from each of them on. So an entry is put among thousands in hardly more time than
/// among fifty.
class OpenSequence {
public:
    /// What one block takes.
    static constexpr std::uint32_t blockEntries = BlockPool::blockSize / sizeof(OpenEntry) - 1;

    /// The records, which must outlive it, are told the blocks of their nodes by `tellPlaces`.
    OpenSequence(BlockPool& pool, SearchRecords& records)
        : mRecords(records), mBlocks(pool), mRow(pool) {}

    bool isEmpty() const { return mEnd == mBegin; }
    const OpenEntry& best() const { return mEnd[-1]; }
    const OpenEntry& worst() const { return *mWorst; }

    /// Makes room for so many entries. Throws OutOfMemoryException, and then nothing has changed.
    void makeRoom(std::size_t entries) {
        if (mLimit - mEnd < static_cast<std::ptrdiff_t>(entries))
            grow(entries);
    }
    /// Puts an entry behind all that cost no more, and before the first from the best on that costs
    /// more; the worst must.
    void insert(const OpenEntry& entry) {
        if (mEnd < mLimit)
            put(mEnd++, entry);
        else
            insertAmongMany(entry);
    }
    void removeBest() {
        if (--mEnd == mBegin)
            leaveBlock();
    }
    /// Begins to fill a sequence that is empty and had room made: `append` then adds the best, up
    /// to as many entries as a block takes, and `appended` are all of them.
    void beginFilling();
    void append(const OpenEntry& entry) { *mEnd++ = entry; }
    std::span<OpenEntry> appended() { return {mBegin, mEnd}; }

    /// Looks from the best on for a node; once places are told, in its block alone. Returns null
    /// when it is not there.
    OpenEntry* find(std::uint32_t node);
    /// Removes what `find` returned.
    void erase(OpenEntry* entry);
    /// Changes its cost in its place.
    void setCost(OpenEntry* entry, float cost);
    /// Tells the records of all nodes their blocks, and from then on of those that are moved or
    /// inserted, until the sequence is filled or cleared.
    void tellPlaces();

    void clear();

private:
    struct Block {
        Block() {}                ///< entries are written before they are read
        std::uint32_t mCount = 0; ///< of the best block as of `noteCount`; 0 outside the row
        OpenEntry mEntries[blockEntries];
        std::span<OpenEntry> entries() { return {mEntries, mCount}; }
    };
    /// A block's place in the row.
    struct Part {
        float mCeiling; ///< no entry from here to the best costs more
        std::uint32_t mBlock;
    };

    /// Puts an entry at the end of some, of which one costs more, or as far before it as it goes.
    static void put(OpenEntry* place, const OpenEntry& entry) {
        for (; !(entry.mF < place[-1].mF); --place)
            *place = place[-1];
        *place = entry;
    }
    static OpenEntry* findIn(Block& block, std::uint32_t node);
    Block& blockOf(const Part& part) { return mBlocks[part.mBlock]; }
    void grow(std::size_t entries);
    void insertAmongMany(const OpenEntry& entry);
    std::size_t partFor(float cost);
    std::size_t partOf(std::uint32_t block) const;
    void split(std::size_t part);
    std::uint32_t takeBlock();
    std::uint32_t blockWith(const OpenEntry* entry) const;
    std::uint32_t bestBlock() const { return mRow.empty() ? 0 : mRow.back().mBlock; }
    void leaveBlock();
    void drop(std::size_t part);
    void noteCount();
    void noteEnds();

    SearchRecords& mRecords;
    BlockPool::Vector<Block> mBlocks;
    BlockPool::Vector<Part> mRow; ///< worst first; empty until there was a second block
    bool mTellsPlaces = false;
    OpenEntry* mBegin = nullptr; ///< of the best block's entries
    OpenEntry* mEnd = nullptr;
    OpenEntry* mLimit = nullptr; ///< up to here entries are just put into it; `mBegin` for never
    OpenEntry* mWorst = nullptr;
};

} // namespace ZUNO::NavMesh

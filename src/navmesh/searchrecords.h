#pragma once

#include "common/astar/astarnode.h"
#include "navmesh/blockpool.h"

#include <cstdint>
#include <limits>

namespace ZUNO::NavMesh {

/// What a search knows of one node: an `AStarNode`, and its state.
struct SearchRecord {
    enum State : std::uint32_t { UNVISITED, CLOSED, OPEN };

    void setCheaperPath(std::uint32_t parentEdge, float g) {
        mF = mF - mG + g;
        mG = g;
        mParentEdge = parentEdge;
    }

    /// Where an open list has the node, as far as it has told: a block of its sequence, or a place
    /// in its overflow. What was not told gives a number that there is none of.
    void setSequenceBlock(std::uint32_t block) { setPlace(2 * block); }
    void setOverflowPlace(std::uint32_t place) { setPlace(2 * place + 1); }
    std::uint32_t sequenceBlock() const { return hasPlace(0) ? (mState - OPEN - 1) / 2 : ~0U; }
    std::uint32_t overflowPlace() const { return hasPlace(1) ? (mState - OPEN - 1) / 2 : ~0U; }

    float mF = 0;
    float mG = std::numeric_limits<float>::quiet_NaN(); ///< of an unvisited node: no cost is more
    std::uint32_t mParentEdge = 0;
    std::uint32_t mState = UNVISITED; ///< a State; more than OPEN with a place in the open list

private:
    void setPlace(std::uint32_t place) { mState = OPEN + 1 + place; }
    bool hasPlace(std::uint32_t part) const {
        return mState > OPEN && (mState - OPEN - 1) % 2 == part;
    }
};

/// The records of a search by node number, in pages that are taken when one of their nodes is first
/// visited, and found through tables that are taken likewise. What was not taken yet is stood for
/// by one empty page and one table of it, so that reading asks nothing. A search costs what it
/// visits, and a pointer for each 2,048 nodes of its graph.
class SearchRecords {
public:
    SearchRecords(std::uint32_t nodeCount, BlockPool& pool);
    ~SearchRecords() { clear(); }
    SearchRecords(const SearchRecords&) = delete;
    SearchRecords& operator=(const SearchRecords&) = delete;

    /// The node's record, which may be written once `makeRoom` was called for it.
    SearchRecord& operator[](std::uint32_t node) {
        return mTables[node / (recordsPerPage * pagesPerTable)]
            ->mPages[node / recordsPerPage % pagesPerTable]
            ->mRecords[node % recordsPerPage];
    }

    /// Makes the node's record one of this search's own, and returns it. Throws
    /// OutOfMemoryException, and then no record has changed.
    SearchRecord& makeRoom(std::uint32_t node) {
        Table* const table = mTables[node / (recordsPerPage * pagesPerTable)];
        Page* const page = table->mPages[node / recordsPerPage % pagesPerTable];
        return page != &sEmptyPage ? page->mRecords[node % recordsPerPage] : makePage(node);
    }

    /// Makes every node unvisited and gives all pages back.
    void clear();

private:
    static constexpr std::uint32_t recordsPerPage = BlockPool::blockSize / sizeof(SearchRecord);
    static constexpr std::uint32_t pagesPerTable = BlockPool::blockSize / sizeof(void*);

    struct Page {
        SearchRecord mRecords[recordsPerPage];
    };
    struct Table {
        Page* mPages[pagesPerTable];
    };

    SearchRecord& makePage(std::uint32_t node);

    static Page sEmptyPage; ///< never written
    static Table sEmptyTable;
    static constexpr Table tableOfEmptyPages();

    BlockPool& pool() { return mTables.get_allocator().pool(); }

    std::size_t mPageCount;
    BlockPool::Vector<Table*> mTables;
};

} // namespace ZUNO::NavMesh

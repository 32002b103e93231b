#pragma once

#include "common/astar/astarnode.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// What a search knows of one node: an `AStarNode`, and with it which node and how far it is.
struct SearchRecord {
    enum State : std::uint32_t {
        UNVISITED,
        OVERFLOWING, ///< open, in the open list's overflow
        SORTED,      ///< open, in the open list's sorted part, or just taken out of it
        CLOSED
    };

    SearchRecord() = default;
    SearchRecord(std::uint32_t node, std::uint32_t parentEdge, float g, float h)
        : mF(g + h), mG(g), mParentEdge(parentEdge), mNodeAndState(node << 2) {}

    std::uint32_t node() const { return mNodeAndState >> 2; }
    State state() const { return static_cast<State>(mNodeAndState & 3U); }
    void setState(State state) { mNodeAndState = (mNodeAndState & ~3U) | state; }
    void setCheaperPath(std::uint32_t parentEdge, float g) {
        mF = mF - mG + g;
        mG = g;
        mParentEdge = parentEdge;
    }

    float mF = 0;
    float mG = 0;
    std::uint32_t mParentEdge = 0;

private:
    std::uint32_t mNodeAndState = UNVISITED;
};

/// Blocks of one size for the searches of a world, from the world's allocator. What a search gives
/// back serves the next one; the allocator gets all of it when the pool ends.
class BlockPool {
public:
    static constexpr std::size_t blockSize = 512;

    explicit BlockPool(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mAllocator(allocator) {}
    ~BlockPool() { clear(); }
    BlockPool(const BlockPool&) = delete;
    BlockPool& operator=(const BlockPool&) = delete;

    /// Returns an aligned block with whatever it held. Throws OutOfMemoryException.
    void* take();
    void giveBack(void* block);
    /// Gives all memory back to the allocator; no block may be in use.
    void clear();

private:
    struct Link {
        Link* mNext;
    };
    void makeBlocks();

    Common::SharedPtr<Common::Memory::Allocator> mAllocator;
    Link* mFree = nullptr;
    Link* mChunks = nullptr; ///< what the allocator gave
};

/// The records of a search by node number, in pages that are taken when one of their nodes is first
/// visited, and found through tables that are taken likewise. What was not taken yet is stood for
/// by one empty page and one table of it, so that reading asks nothing. A search costs what it
/// visits, and a pointer for each 1,024 nodes of its graph.
class SearchRecords {
public:
    SearchRecords(std::uint32_t nodeCount, BlockPool& pool,
                  const Common::SharedPtr<Common::Memory::Allocator>& allocator);
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
    static constexpr std::uint32_t pagesPerTable = 32;

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

    BlockPool& mPool;
    NavMeshContainer::Vector<Table*> mTables;
};

} // namespace ZUNO::NavMesh

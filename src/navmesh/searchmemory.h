#pragma once

#include "navmesh/meshgraph.h"
#include "navmesh/searchrecords.h"

namespace ZUNO::NavMesh {

/// An open node in a search's open list.
struct OpenEntry {
    float mF; ///< the record's
    std::uint32_t mNode;
};

/// What an edge leads to, and what the way through it costs from the start.
struct SearchStep {
    const MeshGraph::Edge* mEdge;
    SearchRecord* mEnd;
    float mG;
};

/// What the searches of a world share: the pool that all they keep is drawn from, and room for what
/// lasts no longer than an expansion. So a search that is opened touches little memory of its own.
/// Thread: one at a time, with all its searches.
struct SearchMemory {
    explicit SearchMemory(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mPool(allocator), mSteps(mPool), mReturned(mPool), mWaiting(mPool) {}

    /// Gives all memory back to the allocator; there must be no search over it.
    void clear() {
        BlockPool::Vector<SearchStep>(mPool).swap(mSteps);
        BlockPool::Vector<OpenEntry>(mPool).swap(mReturned);
        BlockPool::Vector<std::uint32_t>(mPool).swap(mWaiting);
        mPool.clear();
    }

    BlockPool mPool;
    BlockPool::Vector<SearchStep> mSteps;      ///< over the edges of the node that is expanded
    BlockPool::Vector<OpenEntry> mReturned;    ///< while an open list is refilled
    BlockPool::Vector<std::uint32_t> mWaiting; ///< nodes whose saving is to be passed on
};

} // namespace ZUNO::NavMesh

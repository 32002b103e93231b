#pragma once

#include "common/memory/stlallocator.h"

#include <cstdint>
#include <vector>

namespace ZUNO::Common::Astar {

/// A list of edge ids.
using EdgeList = std::vector<std::uint32_t, Memory::STLAllocator<std::uint32_t>>;

/// The graph that is searched. Node ids run from 0 to the node count less one; what an edge id
/// means is the map's own affair, but noEdge names none. The ids that it hands out are trusted.
class AStarMap {
public:
    virtual ~AStarMap() = default;
    /// Appends the ids of the edges that leave the node.
    virtual void getOutEdges(EdgeList& edges, std::uint32_t node) = 0;
    virtual std::uint32_t getEdgeEndNode(std::uint32_t edge) = 0;
    virtual std::uint32_t getEdgeStartNode(std::uint32_t edge) = 0;
    virtual std::uint32_t getNodeCount() = 0;
};

} // namespace ZUNO::Common::Astar

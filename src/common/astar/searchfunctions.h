#pragma once

#include "common/memory/memorymanaged.h"

#include <cstdint>

namespace ZUNO::Common::Astar {

/// Prices edges; 0 or more.
class CostFunc : public Memory::MemoryManaged {
public:
    virtual float getCost(std::uint32_t edge) = 0;
};

/// Estimates what is left of a path.
class HeuristicFunc : public Memory::MemoryManaged {
public:
    virtual float estimate(std::uint32_t fromNode, std::uint32_t toNode) = 0;
};

} // namespace ZUNO::Common::Astar

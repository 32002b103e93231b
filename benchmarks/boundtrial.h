/// What a mesh costs those who load and ask it.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace ZUNO::Benchmarks {

/// Processor time in seconds, whatever else the machine does; of queries and expansions the
/// slowest.
struct MeshCosts {
    bool mIsLoaded = false;
    std::string mReport; ///< the first one, when it was refused
    double mLoad = 0;
    std::uint64_t mPeakBytes = 0;
    double mQuery = 0;
    double mExpansion = 0;
    double mView = 0; ///< making it
    /// The view's: ground, nearest place, a move, a straight walk, the distance to a wall, explain.
    std::array<double, 6> mViewQueries{};

    double viewQuery() const;
};

/// Runs a world, and a view, of a mesh file's content. A foundation must run, and no world.
MeshCosts measureMesh(const std::string& file);

} // namespace ZUNO::Benchmarks

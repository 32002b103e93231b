/// A search for meshes that cost more than a file can.
#pragma once

namespace ZUNO::Benchmarks {

/// Mixes shapes and changes their numbers for so many minutes, going on from the meshes that cost
/// most so far: in loading, in memory, in a query, an expansion, a query of the view. Prints each
/// new record, and at the end the dearest of each kind beside the limit that is promised, and
/// writes those meshes to the current folder.
/// Returns 1 when one is beyond its limit, and 0 else. A foundation must run, and no world.
int seekCostlyMeshes(double minutes, unsigned int seed);

} // namespace ZUNO::Benchmarks

#pragma once

#include <cstddef>

namespace ZUNO::Tests {

// What `new` was asked for. A program that asks links heaprequests.cpp, which replaces the
// operator.

/// How often it was asked so far.
std::size_t heapRequests();
/// The blocks that were not given back yet.
std::size_t heapBlocks();
/// Refuses one request, counted from 1, or none for 0. Returns whether the former order was carried
/// out.
bool refuseHeapRequest(std::size_t number);

} // namespace ZUNO::Tests

#pragma once

#include <cstddef>

namespace ZUNO::Tests {

/// How often `new` was asked for memory so far. A program that asks links heaprequests.cpp, which
/// replaces the operator.
std::size_t heapRequests();

} // namespace ZUNO::Tests

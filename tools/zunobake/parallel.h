#pragma once

#include <cstddef>
#include <functional>

namespace ZUNO::Tools {

/// Calls `work(item, worker)` once for each item below `count`, from several workers at a time
/// where there are threads; worker 0 is the calling thread. Raises again what the work raised; then
/// not all items are done.
void forEachInParallel(std::size_t count,
                       const std::function<void(std::size_t item, std::size_t worker)>& work);

} // namespace ZUNO::Tools

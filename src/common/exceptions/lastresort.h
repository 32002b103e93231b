#pragma once

#include "common/memory/allocator.h"

namespace ZUNO::Common::Exceptions {

/// Where exceptions and their texts come from when the object allocator has nothing to give: the
/// process heap, and when that is exhausted too, a reserve of 64 cells of 256 bytes.
/// Returns the handle of an allocator that gives null when all cells are taken, and never throws.
/// Thread: any. Lifetime: the process.
const SharedPtr<Memory::Allocator>& lastResort();

} // namespace ZUNO::Common::Exceptions

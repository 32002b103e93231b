#pragma once

#include "common/memory/allocator.h"

namespace ZUNO::Common {

namespace Callback {
class MemoryCallback;
}

/// The host's callback; null when none was given and while the foundation is closed.
extern SharedPtr<Callback::MemoryCallback>& gMemCallback;
/// The library allocator: over the host's callback, or over the process heap.
extern SharedPtr<Memory::Allocator>& gAllocator;
/// For the trace channel, the log and the call stacks of exceptions.
extern SharedPtr<Memory::Allocator>& gDebugAllocator;
/// For exceptions and their messages.
extern SharedPtr<Memory::Allocator>& gObjectAllocator;
/// For strings and serialisation buffers.
extern SharedPtr<Memory::Allocator>& gStringAllocator;

namespace Memory {

/// A global allocator, for use. While the foundation is closed this is reported ("Try to
/// dereference a NULL pointer"), and the null handle that comes back means the process heap.
const SharedPtr<Allocator>& usable(const SharedPtr<Allocator>& global);

} // namespace Memory
} // namespace ZUNO::Common

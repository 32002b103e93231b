#include "common/memory/globalallocators.h"

#include "common/utility/immortal.h"

namespace ZUNO::Common {

namespace {

using AllocatorHandle = Utility::Immortal<SharedPtr<Memory::Allocator>>;

constinit AllocatorHandle theAllocator;
constinit AllocatorHandle theDebugAllocator;
constinit AllocatorHandle theObjectAllocator;
constinit AllocatorHandle theStringAllocator;

} // namespace

constinit SharedPtr<Memory::Allocator>& gAllocator = theAllocator.mValue;
constinit SharedPtr<Memory::Allocator>& gDebugAllocator = theDebugAllocator.mValue;
constinit SharedPtr<Memory::Allocator>& gObjectAllocator = theObjectAllocator.mValue;
constinit SharedPtr<Memory::Allocator>& gStringAllocator = theStringAllocator.mValue;

namespace Memory {

const SharedPtr<Allocator>& usable(const SharedPtr<Allocator>& global) {
    ZUNO_CHECK_AS(global != nullptr, "mPtr", "Try to dereference a NULL pointer");
    return global;
}

} // namespace Memory
} // namespace ZUNO::Common

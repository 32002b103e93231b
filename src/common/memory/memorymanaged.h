#pragma once

#include "common/memory/allocator.h"

#include <cstddef>
#include <new>

namespace ZUNO::Common::Memory {

/// Base of library objects whose storage comes from an allocator. Such an object remembers the
/// allocator, and deleting it through a pointer to any of its bases takes the storage back there.
class MemoryManaged {
public:
    /// Storage from `allocator`. When there is none the new-expression yields null, without an
    /// exception; `createManaged` raises one.
    static void* operator new(std::size_t size, const SharedPtr<Allocator>& allocator) noexcept;
    /// Takes the storage back when a constructor throws.
    static void operator delete(void* storage, const SharedPtr<Allocator>& allocator) noexcept;
    static void operator delete(MemoryManaged* object, std::destroying_delete_t);

    MemoryManaged(const MemoryManaged&) = delete;
    MemoryManaged& operator=(const MemoryManaged&) = delete;
    virtual ~MemoryManaged() = default;

protected:
    MemoryManaged();

    /// The allocator that this object came from; null (the process heap) for a member or a local.
    SharedPtr<Allocator> mAllocator;
};

} // namespace ZUNO::Common::Memory

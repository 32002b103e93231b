#pragma once

#include "common/sharedptr.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace ZUNO::Common {

namespace Memory {
class Allocator;
}

/// An allocator holds handles to allocators, so this must be known before the class is.
template <>
struct CountOf<Memory::Allocator> {
    using Type = LockedCount;
};

namespace Memory {

/// The source of all memory. Always held through a `SharedPtr`; it must outlive what was taken
/// from it. Wherever a handle of an allocator is stored, a null handle means the process heap.
class Allocator : public LockedReferenceCounted {
public:
    /// From the process heap. Null when it is exhausted.
    static void* operator new(std::size_t size) noexcept;
    /// From `parent`, which gets the storage back. Null when it yields nothing.
    static void* operator new(std::size_t size, const SharedPtr<Allocator>& parent) noexcept;
    static void operator delete(void* storage) noexcept;
    static void operator delete(void* storage, const SharedPtr<Allocator>& parent) noexcept;
    static void operator delete(Allocator* object, std::destroying_delete_t) noexcept;

    ~Allocator() override = default;

    /// A block of at least `size` bytes. What happens when there is none is the implementation's:
    /// null, or an OutOfMemoryException.
    virtual void* allocate(std::uint64_t size) = 0;
    /// Gives a block back; null is ignored.
    virtual void free(void* ptr) = 0;
    /// True when no block is outstanding, as far as this allocator tracks that.
    virtual bool isClean() = 0;
    /// True when several threads may call `allocate` and `free` at once.
    virtual bool isThreadSafe() { return false; }
    /// Gives memory that nothing uses back to the parent; returns how many bytes went back.
    virtual std::uint64_t compact() { return 0; }

    const char* getName() const { return mName; }

protected:
    /// Keeps the first 14 characters of `name`; null is the empty name.
    explicit Allocator(const char* name);

private:
    SharedPtr<Allocator> mOwner; ///< where this object's own storage came from
    char mName[16];
};

/// The null handle, which means the process heap.
const SharedPtr<Allocator>& processHeap();

/// Raises an OutOfMemoryException ("No Memory available"). Works without any memory of the host's.
[[noreturn]] void throwOutOfMemory();

/// Storage for `count` objects of `size` bytes from the allocator, or from the process heap for a
/// null handle. Raises an OutOfMemoryException when there is none, and when the product does not
/// fit 32 bits: no more of a size gets through to the host.
void* allocateBytes(const SharedPtr<Allocator>& allocator, std::size_t count, std::size_t size);

/// The same without exceptions: null instead, whatever the allocator throws.
void* tryAllocateBytes(const SharedPtr<Allocator>& allocator, std::size_t size) noexcept;

/// Gives storage back to where it came from; null is ignored.
void releaseBytes(const SharedPtr<Allocator>& allocator, void* storage) noexcept;

} // namespace Memory
} // namespace ZUNO::Common

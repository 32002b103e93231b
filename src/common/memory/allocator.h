#pragma once

#include "common/sharedptr.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace ZUNO::Common {

namespace Memory {
class Allocator;
}

/// The count of an allocator. What came from an allocator goes back to it, so one that is destroyed
/// while others hold it (the library's, at shut-down) lives on until the last of them goes.
class AllocatorCount : public LockedCount {
public:
    AllocatorCount() = default;
    AllocatorCount(const LockedCount&) {} ///< that of a derived class: there is nothing to copy
    template <typename Policy, typename T>
    void destroyHeld(T*) {}
};

/// An allocator holds handles to allocators, so this must be known before the class is.
template <>
struct CountOf<Memory::Allocator> {
    using Type = AllocatorCount;
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

    /// Returns a block of at least `size` bytes. What happens when there is none is the
    /// implementation's: null, or an OutOfMemoryException.
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

/// What a request may ask for at most: what the allocators on its way add still fits 32 bits.
inline constexpr std::uint32_t largestRequest = 0xFFFFFFFFU - 31;

/// The null handle, which means the process heap.
const SharedPtr<Allocator>& processHeap();

/// Throws an OutOfMemoryException ("No Memory available"), also when no memory of any kind is left.
[[noreturn]] void throwOutOfMemory();

/// Returns storage for `count` objects of `size` bytes from the allocator, or from the process heap
/// for a null handle. Throws an OutOfMemoryException when there is none, and when the product does
/// not fit 32 bits: no more of a size gets through to the host.
void* allocateBytes(const SharedPtr<Allocator>& allocator, std::size_t count, std::size_t size);

/// The same without exceptions. Returns null instead, whatever the allocator throws.
void* tryAllocateBytes(const SharedPtr<Allocator>& allocator, std::size_t size) noexcept;

/// Gives storage back to where it came from; null is ignored.
void releaseBytes(const SharedPtr<Allocator>& allocator, void* storage) noexcept;

} // namespace Memory
} // namespace ZUNO::Common

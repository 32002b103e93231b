#pragma once

#include <cstddef>
#include <functional>

namespace ZUNO::Common::Memory {

/// Carries a handle from a class's `operator new` to the constructor that keeps it.
///
/// What an operator new writes into the storage itself is lost: the object's life has not begun,
/// and compilers remove such stores. So the operator leaves the storage's range and its handle on
/// a small stack of the thread, and the constructor whose `this` lies in the topmost range takes
/// it. Nested new-expressions work; a member of such a type finds no range and gets a null handle.
/// Only the handle's address is kept: it is an argument of the new-expression and outlives it.
template <typename Handle>
class PendingHandles {
public:
    /// Leaves a handle for the object that is constructed in the storage next.
    /// False when the stack is full.
    static bool push(void* storage, std::size_t size, const Handle& handle) noexcept {
        if (sCount == maxNesting)
            return false;
        sRanges[sCount++] = {static_cast<std::byte*>(storage), size, &handle};
        return true;
    }

    /// The handle left for the object around `self`, or a null one.
    static Handle take(const void* self) {
        const auto* const address = static_cast<const std::byte*>(self);
        const std::less<const std::byte*> before;
        if (sCount == 0)
            return Handle();
        const Range& top = sRanges[sCount - 1];
        if (before(address, top.mBegin) || !before(address, top.mBegin + top.mSize))
            return Handle();
        --sCount;
        return *top.mHandle;
    }

    /// Whether the handle left last waits for the object in this storage.
    static bool isNext(const void* storage) noexcept {
        return sCount != 0 && sRanges[sCount - 1].mBegin == storage;
    }

    /// Forgets the handle of a storage whose construction failed before it was taken.
    static void drop(const void* storage) noexcept {
        if (isNext(storage))
            --sCount;
    }

private:
    struct Range {
        const std::byte* mBegin;
        std::size_t mSize;
        const Handle* mHandle;
    };

    static constexpr unsigned int maxNesting = 32;

    inline static thread_local Range sRanges[maxNesting];
    inline static thread_local unsigned int sCount = 0;
};

} // namespace ZUNO::Common::Memory

#pragma once

namespace ZUNO::Common::Callback {

/// The host's memory, from which the library takes all of its own. The host derives from this
/// class and hands an object over as `SharedPtr<MemoryCallback>`.
/// Thread: the library calls it on the thread that calls the library, never on one of its own, and
/// never on two threads at once.
/// The order of the virtual functions is part of the binary interface.
class MemoryCallback {
public:
    /// Runs when the last SharedPtr to the callback goes.
    virtual ~MemoryCallback() = default;

    /// A block of at least `size` bytes, aligned for any type (16 bytes where pointers have 64
    /// bits). Null, or an OutOfMemoryException, when there is none.
    virtual void* allocateMemory(unsigned int size) = 0;

    /// Takes back a block that `allocateMemory` gave.
    virtual void freeMemory(void* ptr) = 0;
};

} // namespace ZUNO::Common::Callback

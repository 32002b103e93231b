#pragma once

#include "common/basicstring.h"
#include "common/memory/stlallocator.h"

#include <cstdint>
#include <list>

namespace ZUNO::Common::Debug {

/// One call; what could not be resolved is empty or 0. All texts come from one allocator.
struct CallStackEntry {
    explicit CallStackEntry(const SharedPtr<Memory::Allocator>& allocator)
        : mFunction(allocator), mFile(allocator), mModule(allocator) {}
    CallStackEntry(const CallStackEntry& other, const SharedPtr<Memory::Allocator>& allocator)
        : mFunction(other.mFunction, allocator), mFile(other.mFile, allocator), mLine(other.mLine),
          mModule(other.mModule, allocator) {}
    CallStackEntry(const CallStackEntry&) = delete;
    CallStackEntry& operator=(const CallStackEntry&) = delete;

    String mFunction;
    String mFile;
    std::uint32_t mLine = 0;
    String mModule;
};

/// What `CallStack::format` shows of each entry.
enum CallStackFlags : unsigned int {
    CALLSTACK_FUNCTION = 1,
    CALLSTACK_FILE_AND_LINE = 2,
    CALLSTACK_MODULE = 8
};

/// The calls that led to a place, innermost first.
class CallStack {
public:
    using Entries = std::list<CallStackEntry, Memory::STLAllocator<CallStackEntry>>;

    /// An empty stack that draws from `allocator`.
    explicit CallStack(const SharedPtr<Memory::Allocator>& allocator) : mEntries(allocator) {}

    /// Fills the stack with the calling thread's calls, without this one and the stack walker.
    void capture();

    void append(const CallStackEntry& entry) {
        mEntries.emplace_back(entry, mEntries.get_allocator().handle());
    }
    void clear() { mEntries.clear(); }
    const Entries& entries() const { return mEntries; }

    /// Returns "module, file (line): function" for each entry, with the parts that `flags` names
    /// and that are known; each ends in a line break and three blanks. No flags give the empty
    /// text.
    String format(unsigned int flags) const;

private:
    Entries mEntries;
};

} // namespace ZUNO::Common::Debug

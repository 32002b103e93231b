#pragma once

#include "common/basicstring.h"
#include "common/memory/stlallocator.h"

#include <cstdint>
#include <vector>

namespace ZUNO::Common::Debug {

/// One call; what could not be resolved is empty or 0.
struct CallStackEntry {
    explicit CallStackEntry(const SharedPtr<Memory::Allocator>& allocator)
        : mFunction(allocator), mFile(allocator), mModule(allocator) {}

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
    /// An empty stack that draws from `allocator`.
    explicit CallStack(const SharedPtr<Memory::Allocator>& allocator) : mEntries(allocator) {}

    /// Fills the stack with the calling thread's calls, without this one and the stack walker.
    void capture();

    void append(const CallStackEntry& entry) { mEntries.push_back(entry); }
    void clear() { mEntries.clear(); }
    const std::vector<CallStackEntry, Memory::STLAllocator<CallStackEntry>>& entries() const {
        return mEntries;
    }

    /// "module, file (line): function", with the parts that `flags` names, for each entry; each
    /// ends in a line break and three blanks. No flags give the empty text.
    String format(unsigned int flags) const;

private:
    std::vector<CallStackEntry, Memory::STLAllocator<CallStackEntry>> mEntries;
};

} // namespace ZUNO::Common::Debug

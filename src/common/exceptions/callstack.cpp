#include "common/exceptions/callstack.h"

#include "common/platform/stackwalker.h"

namespace ZUNO::Common::Debug {

namespace {

/// Appends the frames of a walk to a call stack, but for those of the capture itself.
class Collector : public Platform::StackVisitor {
public:
    Collector(CallStack& stack, const SharedPtr<Memory::Allocator>& allocator)
        : mStack(stack), mAllocator(allocator) {}

    void visit(const Platform::StackFrame& frame) override {
        if (mSkipped < ownFrames) {
            ++mSkipped;
            return;
        }
        CallStackEntry entry(mAllocator);
        entry.mFunction = String(frame.mFunction, mAllocator);
        entry.mFile = String(frame.mFile, mAllocator);
        entry.mLine = frame.mLine;
        entry.mModule = String(frame.mModule, mAllocator);
        mStack.append(entry);
    }

private:
    static constexpr int ownFrames = 2;

    CallStack& mStack;
    SharedPtr<Memory::Allocator> mAllocator;
    int mSkipped = 0;
};

} // namespace

__attribute__((noinline)) void CallStack::capture() {
    mEntries.clear();
    Collector collector(*this, mEntries.get_allocator().handle());
    Platform::walkStack(collector);
}

String CallStack::format(unsigned int flags) const {
    String text;
    if (flags == 0)
        return text;
    for (const CallStackEntry& entry : mEntries) {
        bool started = false;
        if ((flags & CALLSTACK_MODULE) != 0) {
            text += entry.mModule;
            started = true;
        }
        if ((flags & CALLSTACK_FILE_AND_LINE) != 0) {
            if (started)
                text += ", ";
            text += entry.mFile + " (" + String(entry.mLine) + ")";
            started = true;
        }
        if ((flags & CALLSTACK_FUNCTION) != 0) {
            if (started)
                text += ": ";
            text += entry.mFunction;
        }
        text += "\n   ";
    }
    return text;
}

} // namespace ZUNO::Common::Debug

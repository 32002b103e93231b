#include "common/exceptions/callstack.h"

#include "common/platform/stackwalker.h"

namespace ZUNO::Common::Debug {

namespace {

/// Appends the frames of a walk to a call stack, but for those of the capture itself.
class Collector : public Platform::StackVisitor {
public:
    explicit Collector(CallStack::Entries& entries) : mEntries(entries) {}

    void visit(const Platform::StackFrame& frame) override {
        if (mSkipped < ownFrames) {
            ++mSkipped;
            return;
        }
        CallStackEntry& entry = mEntries.emplace_back(mEntries.get_allocator().handle());
        entry.mLine = frame.mLine;
        set(entry.mFunction, frame.mFunction);
        set(entry.mFile, frame.mFile);
        set(entry.mModule, frame.mModule);
    }

private:
    static constexpr int ownFrames = 2;

    void set(String& target, const char* text) {
        target = String(text, mEntries.get_allocator().handle());
    }

    CallStack::Entries& mEntries;
    int mSkipped = 0;
};

} // namespace

__attribute__((noinline)) void CallStack::capture() {
    mEntries.clear();
    Collector collector(mEntries);
    Platform::walkStack(collector);
}

String CallStack::format(unsigned int flags) const {
    String text;
    if (flags == 0)
        return text;
    for (const CallStackEntry& entry : mEntries) {
        String line;
        const auto add = [&](unsigned int flag, const char* separator, const String& known,
                             const String& part) {
            if ((flags & flag) != 0 && !known.isEmpty())
                line += line.isEmpty() ? part : separator + part;
        };
        add(CALLSTACK_MODULE, "", entry.mModule, entry.mModule);
        add(CALLSTACK_FILE_AND_LINE, ", ", entry.mFile,
            entry.mFile + " (" + String(entry.mLine) + ")");
        add(CALLSTACK_FUNCTION, ": ", entry.mFunction, entry.mFunction);
        text += line + "\n   ";
    }
    return text;
}

} // namespace ZUNO::Common::Debug

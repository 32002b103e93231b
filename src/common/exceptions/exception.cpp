#include "common/exceptions/exception.h"

#include "common/debug/xmessagebox.h"
#include "common/memory/globalallocators.h"
#include "common/memory/managedstorage.h"

namespace ZUNO::Common::Exceptions {

namespace {

/// True while this thread constructs an exception. What runs out of memory meanwhile raises an
/// exception of its own, which must get by without asking the same allocators again.
thread_local bool tConstructing = false;

/// Set for the length of the outermost construction.
class Construction {
public:
    Construction() : mOutermost(!tConstructing) { tConstructing = true; }
    ~Construction() {
        if (mOutermost)
            tConstructing = false;
    }
    Construction(const Construction&) = delete;
    Construction& operator=(const Construction&) = delete;

    bool isOutermost() const { return mOutermost; }

private:
    bool mOutermost;
};

Debug::CallStack captureCallStack() {
    const Construction construction;
    Debug::CallStack stack(construction.isOutermost() ? gDebugAllocator : Memory::processHeap());
    if (!construction.isOutermost())
        return stack;
    try {
        stack.capture();
    } catch (const Exception* shortage) {
        delete shortage;
        stack.clear();
    }
    return stack;
}

} // namespace

String Exception::keep(const String& text) {
    const Construction construction;
    if (construction.isOutermost()) {
        try {
            return String(text, gObjectAllocator);
        } catch (const Exception* shortage) {
            delete shortage;
        }
    }
    return String(text, Memory::processHeap());
}

void* Exception::operator new(std::size_t size) {
    void* storage =
        gObjectAllocator != nullptr ? Memory::acquireStorage(size, gObjectAllocator) : nullptr;
    if (storage == nullptr)
        storage = Memory::acquireStorage(size, Memory::processHeap());
    if (storage == nullptr)
        throw std::bad_alloc();
    return storage;
}

void Exception::operator delete(void* storage) noexcept {
    // Called when an argument or a constructor threw. Constructors get their texts from the
    // process heap when all else fails: only when that is exhausted too has the handle been taken
    // already, and then the storage has to be left where it is.
    if (!Memory::PendingAllocators::isNext(storage))
        return;
    const SharedPtr<Memory::Allocator> allocator = Memory::PendingAllocators::take(storage);
    Memory::releaseBytes(allocator, storage);
}

void Exception::operator delete(Exception* object, std::destroying_delete_t) {
    const SharedPtr<Memory::Allocator> allocator(object->mAllocator);
    void* const storage = dynamic_cast<void*>(object);
    object->~Exception();
    Memory::releaseBytes(allocator, storage);
}

Exception::Exception(const String& message)
    : mAllocator(Memory::PendingAllocators::take(this)), mCallStack(captureCallStack()),
      mMessage(keep(message)) {}

Exception::~Exception() {
    delete mInner;
}

String Exception::getName() const {
    return "Exception";
}

void Exception::getParameters(ParameterList&) const {}

void Exception::setInnerException(Exception* inner) {
    if (inner == mInner)
        return;
    delete mInner;
    mInner = inner;
}

String Exception::getReport(unsigned int callStackFlags) const {
    String report = "Error: " + mMessage;
    if (mInner != nullptr)
        report += "\nInner Exceptions:";
    for (const Exception* inner = mInner; inner != nullptr; inner = inner->mInner)
        report += "\n   " + inner->getName();
    ParameterList parameters(mAllocator);
    getParameters(parameters);
    if (!parameters.empty())
        report += "\nParameters:";
    for (const Parameter& parameter : parameters)
        report += "\n   " + parameter.mFirst + ": " + parameter.mSecond;
    if (callStackFlags != 0)
        report += "\nCallStack:\n   " + mCallStack.format(callStackFlags);
    return report;
}

void Exception::show(unsigned int callStackFlags) const {
    Debug::showMessageBox(getReport(callStackFlags), getName(), Debug::MessageBoxButtons::OK,
                          Debug::MessageBoxIcon::NONE);
}

} // namespace ZUNO::Common::Exceptions

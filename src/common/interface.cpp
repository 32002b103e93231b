#include "common/interface.h"

#include "common/callback/callbackallocator.h"
#include "common/debug/logmanager.h"
#include "common/debug/trace.h"
#include "common/exceptions/exception.h"
#include "common/memory/defaultallocator.h"
#include "common/memory/freelistallocator.h"
#include "common/memory/globalallocators.h"
#include "common/memory/threadsafeallocwrapper.h"
#include "common/utility/immortal.h"

namespace ZUNO::Common {

namespace {

constexpr const char* reporterName = "Common";

constinit Utility::Immortal<SharedPtr<Callback::MemoryCallback>> theMemCallback;
Debug::TraceLogDispatcher* theTraceDispatcher = nullptr;

/// Makes the library allocator. Throws an OutOfMemoryException when the host gives no memory for
/// it.
void startAllocator(const SharedPtr<Callback::MemoryCallback>& cbMemory) {
    if (cbMemory != nullptr)
        gAllocator = SharedPtr<Memory::Allocator>(new (cbMemory) Callback::CallbackAllocator());
    else
        gAllocator = SharedPtr<Memory::Allocator>(new Memory::DefaultAllocator());
    if (gAllocator == nullptr)
        Memory::throwOutOfMemory();
    gMemCallback = cbMemory;
}

/// The allocator behind the three global handles.
SharedPtr<Memory::Allocator> makeGlobalAllocator(const SharedPtr<Memory::Allocator>& library) {
    if (library->isThreadSafe())
        return library;
    using Locked = Memory::ThreadSafeAllocWrapper<Memory::FreeListAllocator>;
    return SharedPtr<Memory::Allocator>(Memory::createManaged<Locked>(library, library));
}

void initRuntime(const SharedPtr<Memory::Allocator>& library) {
    const SharedPtr<Memory::Allocator> global = makeGlobalAllocator(library);
    gDebugAllocator = global;
    gObjectAllocator = global;
    gStringAllocator = global;
    Debug::Trace::init();
    Debug::LogManager::createInstance(gDebugAllocator);
    Debug::LogManager* const log = Debug::LogManager::getInstance();
    if (log == nullptr)
        Memory::throwOutOfMemory();
    theTraceDispatcher = Memory::createObject<Debug::TraceLogDispatcher>(gDebugAllocator);
    log->addDispatcher(Debug::allLogTypes, theTraceDispatcher, false);
    log->createReporter(reporterName);
}

/// Starts everything, or returns false with some of it running.
bool start(const SharedPtr<Callback::MemoryCallback>& cbMemory) {
    try {
        startAllocator(cbMemory);
        initRuntime(gAllocator);
        return true;
    } catch (const Exceptions::Exception* shortage) {
        delete shortage; // it may live in the allocators that are about to go
    } catch (...) {      // the process heap has nothing either
    }
    return false;
}

} // namespace

constinit SharedPtr<Callback::MemoryCallback>& gMemCallback = theMemCallback.mValue;

void initLibrary(const SharedPtr<Callback::MemoryCallback>& cbMemory) {
    if (isLibraryRunning()) {
        // A start without a callback can be repeated; one that would go unused is reported.
        ZUNO_CHECK_AS(gMemCallback == nullptr && cbMemory == nullptr, "gMemCallback == NULL",
                      "Common is already initialized !");
        return;
    }
    if (!start(cbMemory)) {
        closeLibrary();
        Memory::throwOutOfMemory();
    }
}

void closeLibrary() {
    Debug::LogManager::destroyInstance(); // with all reporters
    Memory::destroyObject(gDebugAllocator, theTraceDispatcher);
    theTraceDispatcher = nullptr;
    Debug::Trace::close();
    gDebugAllocator = nullptr;
    gObjectAllocator = nullptr;
    gStringAllocator = nullptr;
    // The allocator gives its own storage back through the callback, which must outlive it. What
    // the host kept, an exception for example, keeps both until it goes.
    gAllocator.destroy();
    gMemCallback = nullptr;
    gAllocator = nullptr;
}

const SharedPtr<Memory::Allocator>& getAllocator() {
    return gAllocator;
}

bool isLibraryRunning() {
    return gAllocator != nullptr;
}

Debug::LogReporter* getLogReporter() {
    const Debug::LogManager* const log = Debug::LogManager::getInstance();
    return log != nullptr ? log->getReporter(reporterName) : nullptr;
}

} // namespace ZUNO::Common

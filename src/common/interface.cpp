#include "common/interface.h"

#include "common/callback/callbackallocator.h"
#include "common/debug/logmanager.h"
#include "common/debug/trace.h"
#include "common/exceptions/exception.h"
#include "common/memory/defaultallocator.h"
#include "common/memory/freelistallocator.h"
#include "common/memory/globalallocators.h"
#include "common/memory/threadsafeallocwrapper.h"

namespace ZUNO::Common {

namespace {

Debug::LogReporter* theReporter = nullptr;
Debug::TraceLogDispatcher* theTraceDispatcher = nullptr;

/// Makes the library allocator; null when the host gives no memory for it.
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
    theReporter = log->createReporter("Common");
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

void initLibrary(const SharedPtr<Callback::MemoryCallback>& cbMemory) {
    ZUNO_CHECK_AS(gMemCallback == nullptr, "gMemCallback == NULL",
                  "Common is already initialized !");
    if (isLibraryRunning())
        return;
    if (!start(cbMemory)) {
        closeLibrary();
        Memory::throwOutOfMemory();
    }
}

void closeLibrary() {
    if (Debug::LogManager* const log = Debug::LogManager::getInstance(); log != nullptr)
        log->removeReporter(theReporter);
    theReporter = nullptr;
    Debug::LogManager::destroyInstance();
    Memory::destroyObject(gDebugAllocator, theTraceDispatcher);
    theTraceDispatcher = nullptr;
    Debug::Trace::close();
    gDebugAllocator = nullptr;
    gObjectAllocator = nullptr;
    gStringAllocator = nullptr;
    // The allocator gives its own storage back through the callback, which must outlive it.
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
    return theReporter;
}

} // namespace ZUNO::Common

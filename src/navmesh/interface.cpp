#include "navmesh/interface.h"

#include "common/interface.h"
#include "common/memory/freelistallocator.h"
#include "common/memory/objectcreation.h"
#include "common/memory/threadsafeallocator.h"
#include "common/utility/immortal.h"
#include "navmesh/resourceinterface.h"

namespace ZUNO::NavMesh {

using namespace Common;

namespace {

struct Globals {
    SharedPtr<Callback::MemoryCallback> gNavMemCallback;
    SharedPtr<Callback::FileIOCallback> gNavFileIOCallback;
    SharedPtr<Memory::Allocator> gNavAllocator;
    SharedPtr<NavMeshBuilder> gNavBuilder;
    SharedPtr<NavMeshOptimizer> gNavOptimizer;
};

constinit Utility::Immortal<Globals> theGlobals;
constinit Globals& g = theGlobals.mValue;

SharedPtr<Memory::Allocator> makeAllocator(const SharedPtr<Memory::Allocator>& parent) {
    const SharedPtr<Memory::Allocator> freeList(
        Memory::createManaged<Memory::FreeListAllocator>(parent, parent));
    return SharedPtr<Memory::Allocator>(
        Memory::createManaged<Memory::ThreadSafeAllocator>(parent, freeList));
}

void makeResources() {
    auto* const resources =
        Memory::createManaged<ResourceInterface>(g.gNavAllocator, g.gNavFileIOCallback);
    ResourceInterface::createInstance(resources);
    if (ResourceInterface::getInstance() != resources)
        delete resources;
}

void releaseAll() {
    g.gNavBuilder = nullptr;
    g.gNavOptimizer = nullptr;
    ResourceInterface::destroyInstance();
    g.gNavMemCallback = nullptr;
    g.gNavFileIOCallback = nullptr;
    g.gNavAllocator = nullptr;
}

} // namespace

void initLibrary(const SharedPtr<Callback::MemoryCallback>& cbMemory,
                 const SharedPtr<Callback::FileIOCallback>& cbFileIO,
                 const SharedPtr<Memory::Allocator>& parent) {
    ZUNO_CHECK_AS(cbMemory != nullptr, "cbMemory != NULL",
                  "Callback pointer for memory must not be a NULL pointer");
    ZUNO_CHECK_AS(cbFileIO != nullptr, "cbFileIO != NULL",
                  "Callback pointer for file io must not be a NULL pointer");
    if (!ZUNO_CHECK_AS(g.gNavBuilder == nullptr, "gNavBuilder == NULL",
                       "NavMesh library is already initialised"))
        return;
    try {
        g.gNavMemCallback = cbMemory;
        g.gNavFileIOCallback = cbFileIO;
        g.gNavAllocator = makeAllocator(parent != nullptr ? parent : Common::getAllocator());
        makeResources();
        g.gNavBuilder = Memory::createManaged<NavMeshBuilder>(g.gNavAllocator);
        g.gNavOptimizer = Memory::createManaged<NavMeshOptimizer>(g.gNavAllocator);
    } catch (...) {
        releaseAll();
        throw;
    }
}

void closeLibrary() {
    if (!ZUNO_CHECK_AS(g.gNavBuilder != nullptr, "gNavBuilder != NULL",
                       "NavMesh library is not initialised"))
        return;
    ZUNO_CHECK_AS(g.gNavBuilder.isLastReference(), "gNavBuilder.isLastReference()",
                  "NavMeshBuilder instance is referenced from outside the library, cannot delete "
                  "the object !");
    ZUNO_CHECK_AS(g.gNavOptimizer.isLastReference(), "gNavOptimizer.isLastReference()",
                  "NavMeshOptimizer instance is referenced from outside the library, cannot delete "
                  "the object !");
    releaseAll();
}

SharedPtr<NavMeshBuilder> getNavMeshBuilder() {
    ZUNO_CHECK_AS(g.gNavBuilder != nullptr, "gNavBuilder != NULL",
                  "NavMesh library is not initialised, navmesh builder will be a NULL pointer");
    return g.gNavBuilder;
}

SharedPtr<NavMeshOptimizer> getNavMeshOptimizer() {
    ZUNO_CHECK_AS(g.gNavOptimizer != nullptr, "gNavOptimizer != NULL",
                  "NavMesh library is not initialised, navmesh optimizer will be a NULL pointer");
    return g.gNavOptimizer;
}

const SharedPtr<Memory::Allocator>& getAllocator() {
    return g.gNavAllocator;
}

} // namespace ZUNO::NavMesh

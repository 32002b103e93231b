#include "viewer/engine/world.h"

#include "common/memory/defaultallocator.h"
#include "hostkit/memoryfilecallback.h"

#include <stdexcept>

namespace ZUNO::Viewer {

using Common::SharedPtr;

namespace {

std::string& lastReport() {
    static std::string report;
    return report;
}

void keepReport(const char* text, const char*, unsigned int) {
    lastReport() = text;
}

} // namespace

World& theWorld() {
    static World world;
    return world;
}

const HostKit::MeshView& theView() {
    if (theWorld().mView == nullptr)
        throw std::runtime_error("no world");
    return *theWorld().mView;
}

void startWorld(const std::string& xml) {
    World& world = theWorld();
    auto* const heap = new HostKit::HeapMemoryCallback;
    world.mHeap = heap;
    world.mMemory = HostKit::Exports::Memory(heap);
    const HostKit::Exports::Files files(new HostKit::MemoryFileCallback("mesh", xml));
    // before the library runs, texts need an allocator of their own
    const SharedPtr<Common::Memory::Allocator> allocator(new Common::Memory::DefaultAllocator);
    const Common::String name("mesh", allocator);
    const Common::String noFile("", allocator);
    Common::Debug::setReportHandler(keepReport);
    if (!world.mExports.initWorldRepresentation(name, world.mMemory, files, noFile))
        throw std::runtime_error(lastReport());
}

} // namespace ZUNO::Viewer

#pragma once

#include "hostkit/exports.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/meshview.h"

#include <memory>
#include <string>

namespace ZUNO::Viewer {

/// The one world of an engine's life, and the host's own view of its mesh.
struct World {
    HostKit::Exports mExports;
    const HostKit::HeapMemoryCallback* mHeap = nullptr;
    HostKit::Exports::Memory mMemory;
    std::unique_ptr<const HostKit::MeshView> mView;
};
World& theWorld();

/// The view of the mesh that the world runs over. Throws a std::runtime_error without a world.
const HostKit::MeshView& theView();

/// Starts the world over a mesh in its XML form. Throws a std::runtime_error with what was
/// reported.
void startWorld(const std::string& xml);

/// Ends the crowd that walks, if there is one: before its world does.
void endCrowd();

} // namespace ZUNO::Viewer

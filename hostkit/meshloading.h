#pragma once

#include "common/callback/fileiocallback.h"
#include "hostkit/meshview.h"

#include <string>

namespace ZUNO::HostKit {

/// Reads a mesh of either form through the host's files and returns the host's view of it; the
/// mesh itself is gone then. Needs no running world, and starts and closes the host's copy of the
/// foundation where that doesn't run.
/// Throws a std::runtime_error with the file's name: for what the stream, the parser or the storage
/// raised, for what is missing in the file (reported before), or for the first defect of a mesh
/// that no world could run with. Throws a std::bad_alloc when memory ends.
MeshView loadMeshView(const std::string& fileName,
                      const Common::SharedPtr<Common::Callback::FileIOCallback>& fileIO);
/// The same with the C library's files.
MeshView loadMeshView(const std::string& fileName);

} // namespace ZUNO::HostKit

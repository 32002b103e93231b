#include "hostkit/meshloading.h"

#include "hostkit/foundation.h"
#include "hostkit/meshfile.h"
#include "hostkit/systemfiles.h"

#include <stdexcept>

namespace ZUNO::HostKit {

MeshView loadMeshView(const std::string& fileName, const MeshFiles& fileIO) {
    const Foundation foundation;
    return MeshView(*readMesh(fileName, fileIO));
}

MeshView loadMeshView(const std::string& fileName) {
    const Foundation foundation;
    return loadMeshView(fileName, systemFiles());
}

} // namespace ZUNO::HostKit

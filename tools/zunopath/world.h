#pragma once

#include "hostkit/session.h"
#include "tools/picture/loadedmesh.h"

#include <string>

namespace ZUNO::Tools {

/// The mesh, looked over for errors that deserve one clear line, and then the world over it.
class World {
public:
    explicit World(const std::string& file) : mMesh(file), mSession(file) {}
    const NavMesh::NavMeshContainer& mesh() const { return *mMesh; }
    const HostKit::Session& session() const { return mSession; }

private:
    LoadedMesh mMesh;
    HostKit::Session mSession;
};

} // namespace ZUNO::Tools

#pragma once

#include "capi/mesh.h"
#include "hostkit/straightpath.h"

namespace ZUNO::CInterface {

/// A path from corner to corner, and what straightens it. Thread: each its own.
class Path : public Object {
public:
    explicit Path(std::shared_ptr<Mesh> mesh)
        : mMesh(std::move(mesh)), mStraightener(mMesh->view()) {}

    const std::shared_ptr<Mesh> mMesh;
    HostKit::PathStraightener mStraightener;
    HostKit::StraightPath mPath; ///< without corners: none
    std::vector<HostKit::Position> mWaypoints;
};

inline std::shared_ptr<Path> get(zuno_path* handle) {
    return get<Path>(handle, "the path");
}

} // namespace ZUNO::CInterface

#include "capi/path.h"
#include "hostkit/corridor.h"

namespace ZUNO::CInterface {

namespace {

/// A character that walks. Thread: each its own.
class Walker : public Object {
public:
    Walker(std::shared_ptr<Mesh> mesh, const HostKit::Place& at)
        : mMesh(std::move(mesh)), mCorridor(mMesh->view()) {
        mCorridor.place(at);
    }

    const std::shared_ptr<Mesh> mMesh;
    HostKit::Corridor mCorridor;
};

std::shared_ptr<Walker> get(zuno_corridor* handle) {
    return CInterface::get<Walker>(handle, "the corridor");
}

} // namespace

} // namespace ZUNO::CInterface

using namespace ZUNO;
using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_corridor_create(zuno_mesh* mesh, const zuno_place* at,
                                            zuno_corridor** corridor) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        return make<Walker>(corridor, loaded, loaded->placeOf(at, "at"));
    });
}

extern "C" zuno_status zuno_corridor_place(zuno_corridor* corridor, const zuno_place* at) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Walker> walker = get(corridor);
        walker->mCorridor.place(walker->mMesh->placeOf(at, "at"));
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_corridor_follow(zuno_corridor* corridor, zuno_path* path) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Walker> walker = get(corridor);
        const std::shared_ptr<Path> made = get(path);
        if (made->mMesh != walker->mMesh)
            refuse("path and corridor are on different meshes");
        const HostKit::StraightPath& way = made->mPath;
        return !way.mCorners.empty() &&
                       walker->mCorridor.follow(way.mChain, way.mCorners.back().mPosition)
                   ? ZUNO_OK
                   : ZUNO_NONE;
    });
}

extern "C" zuno_status zuno_corridor_next(zuno_corridor* corridor, float reached,
                                          zuno_point* corner) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Walker> walker = get(corridor);
        need(corner, "the corner") = toC(walker->mCorridor.nextCorner(reached));
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_corridor_move(zuno_corridor* corridor, const zuno_point* target) {
    return guarded(__func__, [&] {
        get(corridor)->mCorridor.move(pointOf(target, "the target"));
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_corridor_move_goal(zuno_corridor* corridor, const zuno_point* target) {
    return guarded(__func__, [&] {
        get(corridor)->mCorridor.moveGoal(pointOf(target, "the target"));
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_corridor_look(zuno_corridor* corridor, zuno_corridor_state* state) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Walker> walker = get(corridor);
        checkStruct(state, "the state");
        state->position = toC(walker->mCorridor.position());
        state->goal = toC(walker->mCorridor.goal());
        state->has_path = walker->mCorridor.hasPath() ? 1 : 0;
        state->needs_search = walker->mCorridor.needsSearch() ? 1 : 0;
        return ZUNO_OK;
    });
}

#pragma once

#include "capi/handles.h"
#include "hostkit/surface.h"

namespace ZUNO::CInterface {

/// The host's view of a mesh. Thread: any number may ask at once.
class Mesh : public Object {
public:
    explicit Mesh(HostKit::MeshView view) : mView(std::move(view)), mPlaces(mView) {}

    const HostKit::MeshView& view() const { return mView; }
    const HostKit::RandomPlaces& places() const { return mPlaces; }

    /// Refuses what is no node.
    void checkNode(std::uint32_t node) const;
    /// Refuses a place on no node.
    HostKit::Place placeOf(const zuno_place* place, const char* name) const;

private:
    const HostKit::MeshView mView;
    const HostKit::RandomPlaces mPlaces;
};

inline std::shared_ptr<Mesh> get(zuno_mesh* handle) {
    return get<Mesh>(handle, "the mesh");
}

inline zuno_place toC(const HostKit::Place& place) {
    return {place.mNode, toC(place.mPosition)};
}

/// Gives a place, if there is one.
inline zuno_status give(const HostKit::Place& place, zuno_place* given) {
    *given = toC(place);
    return place ? ZUNO_OK : ZUNO_NONE;
}

} // namespace ZUNO::CInterface

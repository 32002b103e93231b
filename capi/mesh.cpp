// Meshes as such: to load, and what they consist of.
#include "capi/mesh.h"

#include "capi/messages.h"
#include "capi/session.h"
#include "hostkit/foundation.h"
#include "hostkit/meshloading.h"
#include "hostkit/systemfiles.h"

namespace ZUNO::CInterface {

void Mesh::checkNode(std::uint32_t node) const {
    if (node >= mView.nodeCount())
        refuse("there is no node " + std::to_string(node) + " of " +
               std::to_string(mView.nodeCount()));
}

HostKit::Place Mesh::placeOf(const zuno_place* place, const char* name) const {
    checkNode(need(place, name).node);
    return {place->node, pointOf(&place->position, name)};
}

namespace {

HostKit::MeshView load(const std::string& name, const HostKit::MeshFiles& files) {
    try {
        HostKit::isBinaryMesh(name, files); // tells what can't be read from what is no mesh
    } catch (const std::runtime_error& error) {
        throw Failure{ZUNO_BAD_FILE, error.what()};
    }
    try {
        return HostKit::loadMeshView(name, files);
    } catch (const std::runtime_error& error) {
        throw Failure{ZUNO_BAD_MESH, error.what()};
    }
}

} // namespace

} // namespace ZUNO::CInterface

using namespace ZUNO;
using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_mesh_load(zuno_session* session, const char* name, zuno_mesh** mesh) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = session != nullptr ? get(session) : nullptr;
        need(name, "the mesh's name");
        need(mesh, "the place for the handle");
        const HostKit::Foundation foundation;
        Messages::takeLog();
        const HostKit::MeshFiles files = running != nullptr
                                             ? running->files()
                                             : HostKit::systemFiles(HostKit::NameEncoding::UTF8);
        return make<Mesh>(mesh, load(name, files));
    });
}

extern "C" zuno_status zuno_mesh_look(zuno_mesh* mesh, zuno_mesh_figures* figures) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        checkStruct(figures, "the figures");
        const HostKit::MeshView& view = loaded->view();
        const HostKit::MeshView::MemoryUsage usage = view.memoryUsage();
        figures->nodes = view.nodeCount();
        figures->vertices = view.vertexCount();
        figures->islands = static_cast<std::uint32_t>(view.islandSizes().size());
        figures->bytes = usage.mMesh + usage.mBeyond;
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_mesh_outline(zuno_mesh* mesh, std::uint32_t node, zuno_point* points,
                                         std::uint32_t* count) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        loaded->checkNode(node);
        const auto corners = loaded->view().cornersOf(node);
        return fill(corners.size(), points, count,
                    [&](std::size_t i) { return toC(loaded->view().positionOf(corners[i])); });
    });
}

extern "C" zuno_status zuno_mesh_island(zuno_mesh* mesh, std::uint32_t node,
                                        std::uint32_t* island) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        loaded->checkNode(node);
        need(island, "the island") = loaded->view().islandOf(node);
        return ZUNO_OK;
    });
}

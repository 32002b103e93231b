// What the debugger shows: a value of each kind, and a place to stop at.
#include "common/container/array.h"
#include "common/container/idvector.h"
#include "hostkit/foundation.h"
#include "navmesh/navmeshcontainer.h"

using namespace ZUNO;

namespace {

void stopHere() {}

} // namespace

int main() {
    const HostKit::Foundation foundation;
    const Common::String text("harbour");
    const Common::Math::Vec3<float> place(1, 2.5F, -3);
    Common::Container::Array<int, 3> three;
    three[0] = three[1] = three[2] = 7;
    Common::Container::IDVector<int> ids{Common::SharedPtr<Common::Memory::Allocator>()};
    ids.insert(10);
    ids.insert(11);
    ids.insert(12);
    ids.remove(1);
    const Common::SharedPtr<Common::Memory::Allocator> heap;
    const Common::SharedPtr<NavMesh::NavMeshContainer> mesh(new (heap) NavMesh::NavMeshContainer);
    mesh->mVertices.push_back(place);
    mesh->mCubeSize = 0.5F;
    const Common::SharedPtr<NavMesh::NavMeshContainer> second(mesh);
    stopHere();
    return three[0] - 7;
}

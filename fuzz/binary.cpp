// The binary storage, and the mesh in it, over any bytes.
#include "common/memory/objectcreation.h"
#include "common/serialize/binaryserializestorage.h"
#include "fuzz/ground.h"
#include "navmesh/navmeshcontainer.h"

#include <memory>

using namespace ZUNO;
using Common::Serialize::BinarySerializeStorage;

namespace {

void skipThrough(const Fuzz::Ground& ground) {
    const std::unique_ptr<BinarySerializeStorage> storage(
        Common::Memory::createManaged<BinarySerializeStorage>(Common::gObjectAllocator,
                                                              Common::Serialize::SMODE_INPUT, 2));
    Fuzz::succeeds([&] {
        storage->open(ground.open("d", 1));
        Common::String name;
        for (int type = 0;;) { // ends with an exception: no item is empty
            const auto position = storage->getPosition();
            storage->peekItemType();
            storage->setPosition(position);
            storage->skipItem(name, type);
        }
    });
}

void loadMesh(const Fuzz::Ground& ground) {
    const auto load = [&](const char* name) {
        const Common::SharedPtr<NavMesh::NavMeshContainer> mesh(
            Common::Memory::createManaged<NavMesh::NavMeshContainer>(Common::gObjectAllocator));
        mesh->readBinary(ground.open(name, 1));
        return mesh;
    };
    Fuzz::succeeds([&] {
        load("d")->writeBinary(ground.open("once", 3), 1);
        load("once")->writeBinary(ground.open("twice", 3), 1);
        Fuzz::require(ground.file("once") == ground.file("twice"), "writing changes nothing");
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    ground.put("d", data, size);
    skipThrough(ground);
    loadMesh(ground);
    return 0;
}

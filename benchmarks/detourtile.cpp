// Writes a mesh as Detour keeps it, for the comparison of packages for JavaScript, whose builds of
// Detour can only make meshes of scenes.
#include "benchmarks/detourpeer.h"
#include "tools/output/outputfile.h"
#include "tools/picture/loadedmesh.h"

#include <cstdio>
#include <exception>

// usage: zunodetourtile MESH OUT
int main(int argc, char** argv) {
    using namespace ZUNO;
    if (argc != 3) {
        std::fprintf(stderr, "usage: zunodetourtile MESH OUT\n");
        return 2;
    }
    try {
        const Tools::LoadedMesh mesh(argv[1]);
        const Benchmarks::DetourPeer peer(*mesh);
        const std::span<const unsigned char> tile = peer.tile();
        Tools::saveFile(argv[2], {reinterpret_cast<const char*>(tile.data()), tile.size()});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zunodetourtile: %s\n", error.what());
        return 2;
    }
    return 0;
}

// Writes the sample meshes.
#include "worlds/meshmodel.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>

int main(int argc, char** argv) {
    CLI::App app{"Writes a sample navigation mesh in its XML form."};
    app.allow_windows_style_options(false); // a path may begin with a slash
    std::string kind;
    std::string file;
    unsigned int nodes = 1000;
    unsigned int seed = 1;
    app.add_option("kind", kind, "harbour, or floor: squares with scattered holes")
        ->required()
        ->check(CLI::IsMember({"harbour", "floor"}));
    app.add_option("file", file, "the file to write")->required();
    app.add_option("--nodes", nodes, "nodes of a floor")->check(CLI::Range(1U, 1000000U));
    app.add_option("--seed", seed, "where a floor's holes are");
    CLI11_PARSE(app, argc, argv);
    const bool isHarbour = kind == "harbour";
    const ZUNO::Worlds::MeshModel mesh =
        isHarbour ? ZUNO::Worlds::makeHarbour() : ZUNO::Worlds::makeFloor(nodes, seed);
    std::ofstream out(file, std::ios::binary);
    out << mesh.toXML(isHarbour ? "a harbour of two storeys; written by makeworld"
                                : "a floor with holes; written by makeworld");
    out.close();
    if (!out) {
        std::cerr << "makeworld: " << file << ": cannot be written\n";
        return 2;
    }
    std::cout << file << ": " << mesh.mNodes.size() << " nodes, " << mesh.mVertices.size()
              << " vertices\n";
}

// Writes the sample meshes.
#include "tools/output/outputfile.h"
#include "tools/output/toolmain.h"
#include "tools/output/wordchecks.h"
#include "worlds/meshmodel.h"

#include <iostream>
#include <stdexcept>

int main(int argc, char** argv) {
    CLI::App app{"Writes a sample navigation mesh in its XML form."};
    std::string kind;
    std::string file;
    unsigned int nodes = 1000;
    unsigned int seed = 1;
    app.add_option("kind", kind, "harbour, or floor: squares with scattered holes")
        ->required()
        ->check(ZUNO::Tools::oneOf({"harbour", "floor"}));
    app.add_option("file", file, "the file to write")->required();
    const CLI::Option* const nodesOption = app.add_option("--nodes", nodes, "nodes of a floor")
                                               ->check(ZUNO::Tools::wholeNumber(1, 1000000))
                                               ->capture_default_str();
    const CLI::Option* const seedOption =
        app.add_option("--seed", seed, "where a floor's holes are")
            ->check(ZUNO::Tools::wholeNumberOf<unsigned int>(0))
            ->capture_default_str();
    return ZUNO::Tools::runTool("makeworld", [&] {
        if (const auto end = ZUNO::Tools::parseWords(app, argc, argv); end.has_value())
            return *end;
        const bool isHarbour = kind == "harbour";
        if (isHarbour && nodesOption->count() + seedOption->count() != 0)
            throw std::runtime_error("--nodes and --seed are for floors; a harbour has neither");
        const ZUNO::Worlds::MeshModel mesh =
            isHarbour ? ZUNO::Worlds::makeHarbour() : ZUNO::Worlds::makeFloor(nodes, seed);
        ZUNO::Tools::saveFile(
            file, mesh.toXML(isHarbour ? "a harbour of two storeys; written by makeworld"
                                       : "a floor with holes; written by makeworld"));
        std::cout << file << ": " << mesh.mNodes.size() << " nodes, " << mesh.mVertices.size()
                  << " vertices\n";
        return 0;
    });
}

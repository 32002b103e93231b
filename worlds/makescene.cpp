// Writes the sample scenes.
#include "tools/output/outputfile.h"
#include "tools/output/toolmain.h"
#include "tools/output/wordchecks.h"
#include "worlds/scenes.h"

#include <iostream>
#include <stdexcept>

namespace {

ZUNO::Worlds::SceneModel makeScene(const std::string& kind, int size, unsigned int seed) {
    using namespace ZUNO::Worlds;
    if (kind == "courtyard")
        return makeCourtyard();
    if (kind == "bridge")
        return makeBridge();
    if (kind == "spiral")
        return makeSpiral();
    return kind == "town" ? makeTown(size, seed) : makeMaze(size, seed);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Writes a sample scene as Wavefront OBJ."};
    std::string kind;
    std::string file;
    int size = 200;
    unsigned int seed = 1;
    app.add_option("kind", kind, "which scene")
        ->required()
        ->check(ZUNO::Tools::oneOf({"courtyard", "bridge", "spiral", "maze", "town"}));
    app.add_option("file", file, "the file to write")->required();
    const CLI::Option* const sizeOption =
        app.add_option("--size", size, "cells along a side of the maze, or plots of the town")
            ->check(ZUNO::Tools::wholeNumber(2, 1000))
            ->capture_default_str();
    const CLI::Option* const seedOption = app.add_option("--seed", seed, "which maze or town")
                                              ->check(ZUNO::Tools::wholeNumberOf<unsigned int>(0))
                                              ->capture_default_str();
    return ZUNO::Tools::runTool("makescene", [&] {
        if (const auto end = ZUNO::Tools::parseWords(app, argc, argv); end.has_value())
            return *end;
        const bool hasChoice = kind == "maze" || kind == "town";
        if (!hasChoice && sizeOption->count() + seedOption->count() != 0)
            throw std::runtime_error("--size and --seed are for mazes and towns; a " + kind +
                                     " has neither");
        const ZUNO::Worlds::SceneModel scene = makeScene(kind, size, seed);
        ZUNO::Tools::saveFile(file, scene.toObj("a " + kind + "; written by makescene"));
        std::cout << file << ": " << scene.mFaces.size() << " faces\n";
        return 0;
    });
}

// Writes the sample scenes.
#include "worlds/scenes.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>

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
    app.allow_windows_style_options(false); // a path may begin with a slash
    std::string kind;
    std::string file;
    int size = 200;
    unsigned int seed = 1;
    app.add_option("kind", kind, "courtyard, bridge, spiral, maze or town")
        ->required()
        ->check(CLI::IsMember({"courtyard", "bridge", "spiral", "maze", "town"}));
    app.add_option("file", file, "the file to write")->required();
    app.add_option("--size", size, "cells along a side of the maze, or plots of the town")
        ->check(CLI::Range(2, 1000))
        ->capture_default_str();
    app.add_option("--seed", seed, "which maze or town");
    CLI11_PARSE(app, argc, argv);
    const ZUNO::Worlds::SceneModel scene = makeScene(kind, size, seed);
    std::ofstream out(file, std::ios::binary);
    out << scene.toObj("a " + kind + "; written by makescene");
    out.close();
    if (!out) {
        std::cerr << "makescene: " << file << ": cannot be written\n";
        return 2;
    }
    std::cout << file << ": " << scene.mFaces.size() << " faces\n";
}

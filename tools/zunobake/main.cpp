// Makes a navigation mesh of a scene.
#include "hostkit/session.h"
#include "navmesh/meshdefects.h"
#include "tools/output/outputfile.h"
#include "tools/output/toolmain.h"
#include "tools/output/wording.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshfigures.h"
#include "tools/picture/meshpicture.h"
#include "tools/zunobake/baker.h"
#include "tools/zunobake/progress.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iostream>

namespace ZUNO::Tools {
namespace {

struct Options {
    std::vector<std::string> mScenes;
    std::string mOutput;
    std::string mPicture;
    bool mIsQuiet = false;
    SceneOptions mScene;
    BakeSettings mBake;
};

/// "NAME:HEIGHT[:JUMP[:FALL]]"
Agent parseAgent(const std::string& text) {
    Agent agent;
    float* const numbers[] = {&agent.mHeight, &agent.mJump, &agent.mFall};
    std::size_t colon = text.find(':');
    agent.mName = text.substr(0, colon);
    std::size_t count = 0;
    bool isRight = !agent.mName.empty() && colon != std::string::npos;
    while (isRight && colon != std::string::npos) {
        const std::size_t end = std::min(text.find(':', colon + 1), text.size());
        isRight = count < std::size(numbers) &&
                  std::from_chars(&text[colon] + 1, text.data() + end, *numbers[count]).ptr ==
                      text.data() + end &&
                  *numbers[count] >= 0 && *numbers[count] < 1e6F;
        ++count;
        colon = end == text.size() ? std::string::npos : end;
    }
    if (!isRight || agent.mHeight <= 0)
        throw std::runtime_error("--agent: expected NAME:HEIGHT, NAME:HEIGHT:JUMP or "
                                 "NAME:HEIGHT:JUMP:FALL instead of '" +
                                 shown(text) + "'");
    return agent;
}

void addOptions(CLI::App& app, Options& options) {
    BakeSettings& bake = options.mBake;
    app.add_option("scene", options.mScenes, "the scene: Wavefront OBJ files")->required();
    app.add_option("-o,--output", options.mOutput, "the mesh file to write: .xml or .bin")
        ->required();
    app.add_option("--picture", options.mPicture, "draw the mesh as well, as SVG");
    app.add_flag("--quiet", options.mIsQuiet, "print nothing but errors");

    app.add_option("--up", options.mScene.mUp, "the axis that points up")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, UpAxis>{{"y", UpAxis::Y}, {"z", UpAxis::Z}}))
        ->type_name("y|z")
        ->default_str("y")
        ->group("Scene");
    const auto choice = [&](const char* name, bool& value, const char* description) {
        app.add_flag(name, value, description)->group("Scene");
    };
    choice("--both-sides", options.mScene.mTakesBothSides,
           "take faces from both sides, however they are wound");
    choice("--no-materials", options.mScene.mIgnoresMaterials,
           "make no surface types of the materials");
    choice("--skip-degenerate", options.mScene.mSkipsDegenerate,
           "leave out faces without area instead of ending with an error");
    app.add_option("--without", options.mScene.mWithout,
                   "a group or object to leave out; again for others")
        ->allow_extra_args(false)
        ->group("Scene");

    app.add_option_function<std::vector<std::string>>(
           "--agent",
           [&bake](const std::vector<std::string>& texts) {
               for (const std::string& text : texts)
                   bake.mAgents.push_back(parseAgent(text));
           },
           "who walks, as NAME:HEIGHT[:JUMP[:FALL]]; again for others (default: agent:2)")
        ->allow_extra_args(false)
        ->group("Agents");
    const auto numbers = [&app](const char* group) {
        return [&app, group](const char* name, auto& value, const char* description) {
            return app.add_option(name, value, description)->capture_default_str()->group(group);
        };
    };
    const auto length = numbers("Agents");
    length("--radius", bake.mRadius, "of every agent")->check(CLI::Range(0.0, 1e6));
    length("--climb", bake.mClimb, "the highest step")->check(CLI::Range(0.0, 1e6));
    length("--slope", bake.mSlope, "the steepest ground, in degrees")->check(CLI::Range(0.0, 89.0));

    const auto detail = numbers("Mesh");
    detail("--cell-size", bake.mCellSize, "side of a cell, which becomes the cube size")
        ->check(CLI::Range(1e-6, 1e6));
    detail("--cell-height", bake.mCellHeight, "height of a cell")->check(CLI::Range(1e-6, 1e6));
    detail("--min-region", bake.mMinRegion, "leave out islands of fewer cells")
        ->check(CLI::Range(0, 100'000'000));
    detail("--merge-region", bake.mMergeRegion, "join regions of fewer cells with others")
        ->check(CLI::Range(0, 100'000'000));
    detail("--corners", bake.mCorners, "corners of a polygon; where tiles meet it may get more")
        ->check(CLI::Range(3, 6));
    detail("--tile", bake.mTileSize, "cells along a tile; smaller ones give straighter paths")
        ->check(CLI::Range(8, 512));
    detail("--max-error", bake.mMaxError, "how far borders may leave their cells, in cells")
        ->check(CLI::Range(0.0, 10.0));
    detail("--max-cells", bake.mMaxCells, "refuse scenes of more cells")
        ->check(CLI::Range(1ULL, 1'000'000'000ULL));
}

/// What the written file holds, and whether something about it is odd.
class Summary {
public:
    explicit Summary(const LoadedMesh& mesh) : mMesh(*mesh), mCounts(countMesh(*mesh)) {
        findOddities(mMesh, [this](const char*) {
            ++mOddities;
            return true;
        });
    }

    void print(const std::string& file, const Scene& scene, std::size_t islandsLeftOut) const {
        std::cout << file << ": " << mMesh.mNodes.size() << " nodes, " << mMesh.mVertices.size()
                  << " vertices\n"
                  << "scene          " << scene.triangleCount() << " triangles, " << scene.mLeftOut
                  << " faces left out\n"
                  << "borders        " << mCounts.mBorders << ", " << mCounts.mLinks
                  << " of them with neighbour\n"
                  << "islands        " << mCounts.mIslandSizes.size() << " (nodes:";
        constexpr std::size_t shown = 8;
        for (std::size_t i = 0; i < std::min(shown, mCounts.mIslandSizes.size()); ++i)
            std::cout << ' ' << mCounts.mIslandSizes[i];
        std::cout << (mCounts.mIslandSizes.size() > shown ? " ..." : "") << "), " << islandsLeftOut
                  << " smaller ones left out\n"
                  << "height classes";
        for (std::size_t i = 0; i < mMesh.mHeights.size(); ++i)
            std::cout << (i == 0 ? " " : ", ") << i << ": " << mMesh.mHeights[i];
        std::cout << "\ncharacters    ";
        for (const auto& record : mMesh.mCharacters)
            std::cout << ' ' << record.mName.getConstCharPtr() << " (classes from "
                      << record.mMaxHeightClassID << ')';
        std::cout << "\nsurface types ";
        for (const auto& type : mMesh.mSurfaceTypes)
            std::cout << ' ' << type.mName.getConstCharPtr();
        std::cout << (mMesh.mSurfaceTypes.empty() ? " none" : "") << "\noddities       "
                  << mOddities << (mOddities == 0 ? "" : " (zunopath check lists them)") << '\n';
    }

private:
    const NavMesh::NavMeshContainer& mMesh;
    MeshCounts mCounts;
    std::size_t mOddities = 0;
};

/// The XML form writes names as they are: an opening bracket would make a file that can't be read.
void requireWritableNames(const Options& options, const Scene& scene) {
    if (formOf(options.mOutput) != MeshForm::XML)
        return;
    std::vector<std::string> names = scene.mSurfaceNames;
    for (const Agent& agent : options.mBake.mAgents)
        names.push_back(agent.mName);
    for (const std::string& name : names)
        if (name.find('<') != std::string::npos)
            throw std::runtime_error("the name '" + name + "' can't stand in an XML file: " +
                                     "choose an output that ends in .bin");
}

/// What `--without` names must be there, or it was misspelt.
void requireGroups(const Options& options, const Scene& scene) {
    for (const std::string& name : options.mScene.mWithout)
        if (!scene.mGroupsLeftOut.contains(name))
            throw std::runtime_error("--without " + shown(name) +
                                     ": no group or object has this name");
}

void bake(const Options& options) {
    formOf(options.mOutput); // before anything takes its time
    requireApart(options.mScenes, {options.mOutput, options.mPicture});
    Progress progress(!options.mIsQuiet);
    const auto showProgress = [&](std::size_t done, std::size_t all) { progress.show(done, all); };
    Scene scene;
    progress.begin("reading");
    for (const std::string& file : options.mScenes)
        readObj(file, options.mScene, scene, showProgress);
    requireGroups(options, scene);
    requireWritableNames(options, scene);
    progress.begin("baking");
    const TileBaker baker(scene, options.mBake);
    const std::vector<TilePolygon> polygons = bakeTiles(baker, showProgress);
    progress.begin("joining");
    const BakedMesh baked(polygons, options.mBake, baker.cells());
    if (baked.nodes().empty())
        throw std::runtime_error("no island is as large as --min-region asks for");
    progress.begin("writing");
    {
        LoadedMesh mesh;
        baked.fill(*mesh.shared(), baker.grid(), scene, options.mScene.mUp);
        mesh.save(options.mOutput);
    }
    progress.begin("checking");
    const LoadedMesh written(options.mOutput);
    const Summary summary(written);
    if (!options.mPicture.empty()) {
        progress.begin("drawing");
        saveFile(options.mPicture, MeshPicture(*written, options.mOutput).text());
    }
    progress.end();
    if (options.mIsQuiet)
        return;
    summary.print(options.mOutput, scene, baked.islandsLeftOut());
    std::cout << "seconds       ";
    for (const auto& [stage, seconds] : progress.stages()) {
        char text[32];
        std::snprintf(text, sizeof(text), " %s %.2f", stage.c_str(), seconds);
        std::cout << text;
    }
    std::cout << '\n';
}

int run(int argc, char** argv) {
    Options options;
    CLI::App app{"Makes a navigation mesh of a scene."};
    app.footer("Lengths are in units of the scene, regions in cells.\n"
               "Exit status: 0 success, 2 error.");
    addOptions(app, options);
    if (const std::optional<int> end = parseWords(app, argc, argv); end.has_value())
        return *end;
    if (options.mBake.mAgents.empty())
        options.mBake.mAgents.push_back({"agent"});
    std::ranges::stable_sort(options.mBake.mAgents, {}, &Agent::mHeight);
    bake(options);
    return 0;
}

} // namespace
} // namespace ZUNO::Tools

int main(int argc, char** argv) {
    return ZUNO::Tools::runTool("zunobake", [&] { return ZUNO::Tools::run(argc, argv); });
}

// Makes a navigation mesh of a scene.
#include "tools/output/jsonline.h"
#include "tools/output/outputfile.h"
#include "tools/output/toolmain.h"
#include "tools/output/wording.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshpicture.h"
#include "tools/picture/meshsummary.h"
#include "tools/picture/picturefile.h"
#include "tools/zunobake/baker.h"
#include "tools/zunobake/options.h"
#include "tools/zunobake/progress.h"
#include "tools/zunobake/summary.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace ZUNO::Tools {
namespace {

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

/// What can't be reached, and unless nobody reads it what closes the way there.
std::vector<UnreachablePart> explore(const Options& options, const Scene& scene,
                                     const TileBaker& baker, const BakedMesh& baked,
                                     const NavMesh::NavMeshContainer& mesh) {
    LoadedMesh upright; // as the scene lies
    baked.fill(*upright.shared(), baker.grid(), scene, UpAxis::Y);
    const HostKit::MeshView view(*upright);
    PassageFinder passages(scene, options.mBake, view);
    return listUnreachable(mesh, options.mFrom, options.mIsQuiet ? nullptr : &passages);
}

void bake(const Options& options) {
    formOf(options.mOutput); // before anything takes its time
    requireApart(options.mScenes, {options.mOutput, options.mPicture});
    requirePictureName(options.mPicture);
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
    LoadedMesh mesh;
    baked.fill(*mesh.shared(), baker.grid(), scene, options.mScene.mUp);
    progress.begin("exploring");
    const std::vector<UnreachablePart> unreachable = explore(options, scene, baker, baked, *mesh);
    progress.begin("writing");
    mesh.save(options.mOutput);
    progress.begin("checking");
    const LoadedMesh written(options.mOutput);
    const Summary summary(*written, scene, options.mBake, options.mScene.mUp);
    if (!options.mPicture.empty()) {
        progress.begin("drawing");
        savePicture(options.mPicture, MeshPicture(*written, options.mOutput).text());
    }
    progress.end();
    if (options.mIsQuiet)
        return;
    if (options.mIsJson) {
        nlohmann::ordered_json json = summaryOf(*written, options.mOutput);
        json["triangles"] = scene.triangleCount();
        json["unreachable"] = unreachable.size();
        for (const auto& [stage, seconds] : progress.stages())
            json["seconds"][stage] = seconds;
        std::cout << lineOf(json);
        return;
    }
    summary.print(std::cout, options.mOutput, baked.islandsLeftOut(), unreachable);
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

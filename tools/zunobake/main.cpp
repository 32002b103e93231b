// Makes a navigation mesh of a scene.
#include "common/platform/terminal.h"
#include "tools/output/jsonline.h"
#include "tools/output/outputfile.h"
#include "tools/output/toolmain.h"
#include "tools/output/wording.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshpicture.h"
#include "tools/picture/meshsummary.h"
#include "tools/picture/picturefile.h"
#include "tools/zunobake/options.h"
#include "tools/zunobake/progress.h"
#include "tools/zunobake/scenemesh.h"
#include "tools/zunobake/summary.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>
#include <set>
#include <thread>

namespace ZUNO::Tools {
namespace {

/// What `--without` and `--mark` name must be there, or it was misspelt.
void requireNames(const Options& options, const Scene& scene) {
    const auto require = [&](const char* option, const std::vector<std::string>& names,
                             const char* what) {
        for (const std::string& name : names)
            if (!scene.mNames.contains(name))
                throw std::runtime_error(std::string(option) + ' ' + shown(name) + ": no " + what +
                                         " has this name");
    };
    require("--without", options.mScene.mWithout, "group, object or material");
    require("--mark", options.mScene.mMarked, "group or object");
}

/// Reads the scene's files into an empty scene and makes the mesh.
void bake(const Options& options, Scene& scene) {
    formOf(options.mOutput); // before anything takes its time
    requireApart(options.mScenes, {options.mOutput, options.mPicture});
    requirePictureName(options.mPicture);
    Progress progress(!options.mIsQuiet &&
                      (options.mShowsProgress || Common::Platform::isTerminal(stderr)));
    const auto showProgress = [&](std::size_t done, std::size_t all) { progress.show(done, all); };
    progress.begin("reading");
    for (const std::string& file : options.mScenes)
        readScene(file, options.mScene, scene, showProgress);
    requireNames(options, scene);
    if (formOf(options.mOutput) == MeshForm::XML)
        requireWritableNames(scene, options.mBake);
    const SceneMesh baked(scene, options.mBake, options.mScene.mUp,
                          {options.mFrom, !options.mIsQuiet},
                          {[&](const char* stage) { progress.begin(stage); }, showProgress});
    progress.begin("writing");
    baked.mesh().save(options.mOutput);
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
        json["unreachable"] = baked.unreachable().size();
        for (const auto& [stage, seconds] : progress.stages())
            json["seconds"][stage] = seconds;
        std::cout << lineOf(json);
        return;
    }
    summary.print(std::cout, options.mOutput, baked.islandsLeftOut(), baked.unreachable());
    std::cout << "seconds       ";
    for (const auto& [stage, seconds] : progress.stages()) {
        char text[32];
        std::snprintf(text, sizeof(text), " %s %.2f", stage.c_str(), seconds);
        std::cout << text;
    }
    std::cout << '\n';
}

using FileClock = std::filesystem::file_time_type::clock;
/// Files, and when each was written last.
using Times = std::map<std::string, FileClock::time_point>;

/// What was written after `latest` counts as written then.
Times timesOf(const std::set<std::string>& files,
              FileClock::time_point latest = FileClock::time_point::max()) {
    Times times;
    std::error_code missing; // while an editor replaces it
    for (const std::string& file : files)
        times[file] = std::min(std::filesystem::last_write_time(file, missing), latest);
    return times;
}

/// Bakes each time that a file has changed and then rested for a moment; what glTF refers to is
/// watched, too, whether or not it is there. What is wrong with a scene is said, and the mesh stays
/// as it was. Throws when nobody hears it any more.
[[noreturn]] void watch(const Options& options) {
    constexpr std::chrono::milliseconds pause(300);
    constexpr std::chrono::milliseconds tick(20); // files' times may be as much too early
    std::set<std::string> files(options.mScenes.begin(), options.mScenes.end());
    for (Times known = timesOf(files, FileClock::now() - tick);;) {
        const auto begin = FileClock::now() - tick;
        Scene scene;
        try {
            bake(options, scene);
        } catch (const std::runtime_error& error) {
            std::cerr << "zunobake: " << error.what() << '\n';
        }
        requireOutput();
        files.insert(scene.mFurtherFiles.begin(), scene.mFurtherFiles.end());
        known.merge(timesOf(scene.mFurtherFiles, begin)); // what was written since has changed
        Times former;
        do {
            former = timesOf(files);
            std::this_thread::sleep_for(pause);
        } while (former == known || former != timesOf(files));
        known = former;
    }
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
    if (options.mWatches)
        watch(options);
    Scene scene;
    bake(options, scene);
    return 0;
}

} // namespace
} // namespace ZUNO::Tools

int main(int argc, char** argv) {
    return ZUNO::Tools::runTool("zunobake", [&] { return ZUNO::Tools::run(argc, argv); });
}

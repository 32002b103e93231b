// The runtime at work: a host whose characters walk, and share a budget of expansions for each
// frame.
#include "common/platform/terminal.h"
#include "hostkit/meshloading.h"
#include "hostkit/session.h"
#include "tools/demo/crowd.h"
#include "tools/output/outputfile.h"
#include "tools/output/toolmain.h"
#include "tools/output/wordchecks.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshpicture.h"
#include "tools/picture/picturefile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

using namespace ZUNO;
using std::chrono::nanoseconds;

struct Options {
    std::string mMesh;
    std::string mPicture;
    std::string mAnimation;
    std::string mRecording;
    unsigned int mSeconds = 60;
    std::uint64_t mBudget = 200; ///< expansions per frame, for all characters together
    Tools::CrowdSettings mCrowd;
};

constexpr std::size_t shownPaths = 24; // more than that is a tangle
constexpr std::size_t shownWalks = 100;
constexpr unsigned int picturesPerSecond = 2;
constexpr float quickening = 3; // of the animation

/// What a run shows of itself afterwards.
struct Run {
    std::vector<double> mSearchTimes; ///< of each frame, in microseconds
    std::vector<double> mWalkTimes;
    std::vector<Tools::DrawnWalk> mWalks;
};

double microsecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin)
        .count();
}

void showProgress(unsigned int frame, unsigned int frames, std::size_t open) {
    const bool isTerminal = Common::Platform::isTerminal(stdout);
    if (isTerminal && (frame % 10 == 0 || frame == frames))
        std::printf("\rframe %u of %u: %zu searches open  %s", frame, frames, open,
                    frame == frames ? "\n" : "");
    else if (!isTerminal && frame % 300 == 0)
        std::printf("frame %u of %u: %zu searches open\n", frame, frames, open);
    std::fflush(stdout);
}

Run runFrames(Tools::Crowd& crowd, HostKit::Scheduler& scheduler, const Options& options) {
    Run run;
    run.mWalks.resize(std::min(crowd.size(), shownWalks));
    const unsigned int frames = options.mSeconds * options.mCrowd.mFramesPerSecond;
    const unsigned int picture = options.mCrowd.mFramesPerSecond / picturesPerSecond;
    for (unsigned int frame = 1; frame <= frames; ++frame) {
        auto begin = std::chrono::steady_clock::now();
        scheduler.advance(HostKit::FrameBudget::expansions(options.mBudget));
        run.mSearchTimes.push_back(microsecondsSince(begin));
        begin = std::chrono::steady_clock::now();
        crowd.walk();
        run.mWalkTimes.push_back(microsecondsSince(begin));
        for (std::size_t i = 0; frame % picture == 1 && i < run.mWalks.size(); ++i)
            run.mWalks[i].mPositions.push_back(crowd.placeOf(i).mPosition);
        showProgress(frame, frames, scheduler.queueLength());
    }
    return run;
}

void printRow(const char* name, std::vector<double> values) {
    if (values.empty())
        return;
    std::ranges::sort(values);
    std::printf("%-26s %10.1f %10.1f %10.1f %10.1f\n", name, values.front(),
                values[values.size() / 2], values[values.size() * 99 / 100], values.back());
}

template <typename Value>
void printRow(const char* name, const std::vector<Tools::Journey>& journeys, Value valueOf) {
    std::vector<double> values;
    values.reserve(journeys.size());
    for (const Tools::Journey& journey : journeys)
        values.push_back(static_cast<double>(valueOf(journey)));
    printRow(name, std::move(values));
}

void printTable(const Tools::Crowd& crowd, const HostKit::SchedulerFigures& figures,
                const Run& run) {
    using Tools::Journey;
    const std::vector<Journey>& journeys = crowd.journeys();
    double centres = 0;
    double straight = 0;
    for (const Journey& journey : journeys) {
        centres += journey.mCentresLength;
        straight += journey.mStraightLength;
    }
    std::printf(
        "\npaths asked for      %6llu\n  found              %6llu\n  no path            "
        "%6llu\n  off the mesh       %6llu\ngoals reached        %6zu\nwalked               "
        "%6.0f, in all\nstraight / centres   %6.3f, of all lengths\n\n",
        static_cast<unsigned long long>(figures.mAdded),
        static_cast<unsigned long long>(figures.mFound),
        static_cast<unsigned long long>(figures.mNoPath),
        static_cast<unsigned long long>(figures.mOffMesh), crowd.goalsReached(),
        crowd.distanceWalked(), centres > 0 ? straight / centres : 0);
    std::printf("%-26s %10s %10s %10s %10s\n", "", "minimum", "median", "99 %", "maximum");
    printRow("waypoints", journeys, [](const Journey& j) { return j.mCentres.size(); });
    printRow("corners", journeys, [](const Journey& j) { return j.mCorners.size(); });
    printRow("length by the centres", journeys, [](const Journey& j) { return j.mCentresLength; });
    printRow("length, straightened", journeys, [](const Journey& j) { return j.mStraightLength; });
    printRow("expansions", journeys, [](const Journey& j) { return j.mExpansions; });
    printRow("frames waited", journeys, [](const Journey& j) { return j.mFramesWaited; });
    printRow("frame: searching, us", run.mSearchTimes);
    printRow("frame: walking, us", run.mWalkTimes);
}

void save(const Tools::MeshPicture& picture, const std::string& file, const char* name) {
    Tools::savePicture(file, picture.text());
    std::printf("%-21s  %s\n", name, file.c_str());
}

void draw(const Tools::LoadedMesh& mesh, const Tools::Crowd& crowd, const Run& run,
          const Options& options) {
    const auto isBlocked = [](const Common::Math::Vec2<float>& p) {
        return Pathfinder::Interface::isBlocked(p);
    };
    const std::string title =
        options.mMesh + ": " + std::to_string(mesh->mNodes.size()) + " nodes, ";
    if (!options.mPicture.empty()) {
        Tools::MeshPicture picture(*mesh, title + "some of the characters' paths");
        picture.addBlockedCells(isBlocked);
        for (std::size_t i = 0; i < crowd.journeys().size() && i < shownPaths; ++i) {
            const Tools::Journey& journey = crowd.journeys()[i];
            picture.addPath({.mStart = journey.mStart,
                             .mGoal = journey.mGoal,
                             .mWaypoints = journey.mCentres,
                             .mCorners = journey.mCorners,
                             .mIsFound = true});
        }
        save(picture, options.mPicture, "picture");
    }
    if (!options.mAnimation.empty()) {
        Tools::MeshPicture picture(*mesh, title + std::to_string(run.mWalks.size()) +
                                              " of the characters on their ways");
        picture.addBlockedCells(isBlocked);
        picture.addWalks(run.mWalks, static_cast<float>(options.mSeconds) / quickening);
        save(picture, options.mAnimation, "animation");
    }
}

int run(const Options& options) {
    Tools::requireApart({options.mMesh},
                        {options.mPicture, options.mAnimation, options.mRecording});
    const Tools::LoadedMesh mesh(options.mMesh); // says in one line what is wrong with it
    for (const std::string& name : {options.mPicture, options.mAnimation})
        Tools::requirePictureName(name);
    HostKit::Session session(options.mMesh,
                             HostKit::SessionSettings{.mRecording = options.mRecording});
    {
        const HostKit::MeshView view = HostKit::loadMeshView(options.mMesh);
        std::printf("%s: %u nodes; %u characters, %llu expansions a frame, %u s of %u frames\n",
                    options.mMesh.c_str(), view.nodeCount(), options.mCrowd.mCharacters,
                    static_cast<unsigned long long>(options.mBudget), options.mSeconds,
                    options.mCrowd.mFramesPerSecond);
        HostKit::Scheduler scheduler(session.exports());
        Tools::Crowd crowd(view, scheduler, options.mCrowd);
        const Run run = runFrames(crowd, scheduler, options);
        printTable(crowd, scheduler.figures(), run);
        std::printf("\n");
        draw(mesh, crowd, run, options);
    }
    const HostKit::MemoryFigures left = session.close();
    std::printf("memory, peak           %.1f KiB in %llu allocations\n",
                static_cast<double>(left.mPeakBytes) / 1024,
                static_cast<unsigned long long>(left.mAllocations));
    std::printf("memory left behind     %llu blocks, %llu bytes\n",
                static_cast<unsigned long long>(left.mBlocks),
                static_cast<unsigned long long>(left.mBytes));
    return left.mBlocks == 0 ? 0 : 2;
}

} // namespace

int main(int argc, char** argv) {
    namespace Tools = ZUNO::Tools;
    Options options;
    CLI::App app{"Lets many characters of a host walk, and search their paths frame by frame."};
    app.add_option("mesh", options.mMesh, "the mesh file")->required();
    app.add_option("--picture", options.mPicture, "an SVG file for some of the paths");
    app.add_option("--animation", options.mAnimation, "an SVG file that shows them walking");
    app.add_option("--record", options.mRecording, "a file for 'zunopath replay'");
    app.add_option("--characters", options.mCrowd.mCharacters, "how many")
        ->capture_default_str()
        ->check(Tools::wholeNumberOf<unsigned int>(1));
    app.add_option("--seconds", options.mSeconds, "of simulated time")
        ->capture_default_str()
        ->check(Tools::wholeNumberOf<unsigned int>(1));
    app.add_option("--budget", options.mBudget, "expansions per frame, all together")
        ->capture_default_str()
        ->check(Tools::wholeNumberOf<std::uint64_t>(1));
    app.add_option("--seed", options.mCrowd.mSeed, "chooses the starts and goals")
        ->capture_default_str()
        ->check(Tools::wholeNumberOf<unsigned int>(0));
    return Tools::runTool("zunodemo", [&] {
        const std::optional<int> end = Tools::parseWords(app, argc, argv);
        return end.has_value() ? *end : run(options);
    });
}

// The runtime at work: a host whose characters share a budget of expansions frame by frame.
#include "common/platform/terminal.h"
#include "hostkit/session.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshfigures.h"
#include "tools/picture/meshpicture.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>

using ZUNO::Common::Math::Vec2;
using ZUNO::Common::Math::Vec3;
using ZUNO::Pathfinder::Interface;

namespace {

struct Options {
    std::string mMesh;
    std::string mPicture;
    unsigned int mCharacters = 200;
    unsigned int mBudget = 200; ///< expansions per frame, for all characters together
    unsigned int mSlice = 10;   ///< expansions per call
    unsigned int mSeed = 7;
};

struct Character {
    ZUNO::Tools::DrawnPath mPath;
    int mSearch = -1;
    int mResult = 1;
    unsigned int mFrames = 0;
    float mCost = 0;
};

/// Points on random nodes; now and then one on an island apart, or on no node at all.
class PointPicker {
public:
    PointPicker(const ZUNO::NavMesh::NavMeshContainer& mesh, unsigned int seed)
        : mMesh(mesh), mRandom(seed) {
        const std::vector<unsigned int> islands = ZUNO::Tools::findIslands(mesh);
        for (std::size_t id = 0; id < islands.size(); ++id)
            if (islands[id] != 0)
                mRemote.push_back(static_cast<std::int32_t>(id));
    }

    Vec3<float> pick() {
        auto id = static_cast<std::int32_t>(mRandom() % mMesh.mNodes.size());
        if (!mRemote.empty() && mRandom() % 40 == 0)
            id = mRemote[mRandom() % mRemote.size()];
        Vec3<float> point = mMesh.getNodeCenter(id);
        if (mRandom() % 60 == 0)
            point = point + Vec3<float>(0, 1000, 0);
        return point;
    }

private:
    const ZUNO::NavMesh::NavMeshContainer& mMesh;
    std::mt19937 mRandom;
    std::vector<std::int32_t> mRemote; ///< nodes apart from the largest island
};

std::vector<Character> openSearches(PointPicker& points, unsigned int count) {
    std::vector<Character> characters(count);
    for (Character& character : characters) {
        character.mPath.mStart = points.pick();
        character.mPath.mGoal = points.pick();
        character.mSearch =
            Interface::initPathSearch(character.mPath.mStart, character.mPath.mGoal);
    }
    return characters;
}

void showProgress(unsigned int frame, std::size_t open, bool isLast) {
    // a terminal sees each frame, a log only some
    if (ZUNO::Common::Platform::isTerminal(stdout))
        std::printf("\rframe %u: %zu searches running ", frame, open);
    else if (isLast || frame % 25 == 1)
        std::printf("frame %u: %zu searches running\n", frame, open);
    if (isLast && ZUNO::Common::Platform::isTerminal(stdout))
        std::putchar('\n');
    std::fflush(stdout);
}

/// Advances the searches round robin, a slice each, until the frame's budget is used up.
unsigned int runFrames(std::vector<Character>& characters, const Options& options) {
    std::vector<Character*> running;
    for (Character& character : characters)
        if (character.mSearch >= 0)
            running.push_back(&character);
    unsigned int frame = 0;
    std::size_t next = 0;
    while (!running.empty()) {
        ++frame;
        for (unsigned int left = options.mBudget; left != 0 && !running.empty();) {
            next %= running.size();
            Character& character = *running[next];
            const unsigned int slice = std::min(left, options.mSlice);
            left -= slice;
            character.mResult = Interface::runPathSearch(character.mSearch, slice);
            character.mFrames = frame;
            if (character.mResult == 1)
                ++next;
            else
                running.erase(running.begin() + static_cast<std::ptrdiff_t>(next));
        }
        showProgress(frame, running.size(), running.empty());
    }
    return frame;
}

void readPaths(std::vector<Character>& characters) {
    for (Character& character : characters) {
        if (character.mSearch < 0)
            continue;
        Vec3<float> waypoint;
        while (Interface::getNextWaypoint(character.mSearch, waypoint))
            character.mPath.mWaypoints.push_back(waypoint);
        character.mCost = Interface::getPathCost(character.mSearch);
        character.mPath.mIsFound = character.mResult == 0;
        Interface::closePathSearch(character.mSearch);
    }
}

template <typename Value>
void printRow(const char* name, const std::vector<Character>& characters, Value valueOf) {
    std::vector<float> values;
    for (const Character& character : characters)
        if (character.mPath.mIsFound)
            values.push_back(static_cast<float>(valueOf(character)));
    if (values.empty())
        return;
    std::ranges::sort(values);
    std::printf("%-22s %10.1f %10.1f %10.1f\n", name, static_cast<double>(values.front()),
                static_cast<double>(values[values.size() / 2]), static_cast<double>(values.back()));
}

void printTable(const std::vector<Character>& characters) {
    const auto count = [&](auto matches) {
        return static_cast<int>(std::ranges::count_if(characters, matches));
    };
    std::printf("\ncharacters  %4zu\n  found     %4d\n  no path   %4d\n  off mesh  %4d\n\n",
                characters.size(), count([](const Character& c) { return c.mPath.mIsFound; }),
                count([](const Character& c) { return c.mResult == 2; }),
                count([](const Character& c) { return c.mSearch < 0; }));
    std::printf("%-22s %10s %10s %10s\n", "of the found", "minimum", "median", "maximum");
    printRow("waypoints", characters,
             [](const Character& c) { return static_cast<float>(c.mPath.mWaypoints.size()); });
    printRow("cost", characters, [](const Character& c) { return c.mCost; });
    printRow("frames until found", characters,
             [](const Character& c) { return static_cast<float>(c.mFrames); });
}

void draw(const ZUNO::NavMesh::NavMeshContainer& mesh, const std::vector<Character>& characters,
          const Options& options) {
    ZUNO::Tools::MeshPicture picture(mesh, options.mMesh + ": " +
                                               std::to_string(mesh.mNodes.size()) +
                                               " nodes, some of the characters' paths");
    picture.addBlockedCells([](const Vec2<float>& p) { return Interface::isBlocked(p); });
    constexpr std::size_t shown = 24; // more than that is a tangle
    for (std::size_t i = 0; i < characters.size() && i < shown; ++i)
        if (characters[i].mSearch >= 0)
            picture.addPath(characters[i].mPath);
    std::ofstream out(options.mPicture, std::ios::binary);
    picture.write(out);
    if (!out.flush())
        throw std::runtime_error(options.mPicture + ": cannot be written");
    std::printf("picture                %s\n", options.mPicture.c_str());
}

int run(const Options& options) {
    const ZUNO::Tools::LoadedMesh mesh(options.mMesh);
    ZUNO::HostKit::Session session(options.mMesh);
    std::printf("%s: %zu nodes; %u characters, %u expansions a frame\n", options.mMesh.c_str(),
                mesh->mNodes.size(), options.mCharacters, options.mBudget);
    PointPicker points(*mesh, options.mSeed);
    std::vector<Character> characters = openSearches(points, options.mCharacters);
    const unsigned int frames = runFrames(characters, options);
    readPaths(characters);
    printTable(characters);
    std::printf("\nframes                 %u\n", frames);
    if (!options.mPicture.empty())
        draw(*mesh, characters, options);
    const ZUNO::HostKit::MemoryFigures left = session.close();
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
    Options options;
    CLI::App app{"Lets many characters of a host search their paths, frame by frame."};
    app.allow_windows_style_options(false); // a path may begin with a slash
    app.add_option("mesh", options.mMesh, "the mesh file")->required();
    app.add_option("--picture", options.mPicture, "an SVG file to draw");
    app.add_option("--characters", options.mCharacters, "how many")->capture_default_str();
    app.add_option("--budget", options.mBudget, "expansions per frame, all together")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--slice", options.mSlice, "expansions per call")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--seed", options.mSeed, "chooses the starts and goals")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        return run(options);
    } catch (const std::exception& error) {
        std::cerr << "zunodemo: " << error.what() << '\n';
        return 2;
    }
}

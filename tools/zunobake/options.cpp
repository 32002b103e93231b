#include "tools/zunobake/options.h"

#include "tools/output/wordchecks.h"
#include "tools/output/wording.h"

#include <charconv>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

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

} // namespace

void addOptions(CLI::App& app, Options& options) {
    BakeSettings& bake = options.mBake;
    app.add_option("scene", options.mScenes,
                   "the scene: Wavefront OBJ or glTF 2.0 files (.obj, .glb, .gltf)")
        ->required();
    app.add_option("-o,--output", options.mOutput, "the mesh file to write: .xml or .bin")
        ->required();
    app.add_option("--picture", options.mPicture, "draw the mesh as well: .svg or .png");
    app.add_option("--from", options.mFrom,
                   "where walkers begin, as x,y,z: lists what can't be reached from there instead "
                   "of from the largest part")
        ->delimiter(',')
        ->expected(3);
    CLI::Option* const quiet =
        app.add_flag("--quiet", options.mIsQuiet, "print nothing but errors");
    app.add_flag("--json", options.mIsJson, "print what was made in JSON, on one line")
        ->excludes(quiet);
    app.add_flag("--progress", options.mShowsProgress,
                 "tell how far it is on standard error, even when that is no terminal")
        ->excludes(quiet);
    app.add_flag("--watch", options.mWatches,
                 "bake again when a file of the scene changes, until interrupted");

    app.add_option_function<std::string>(
           "--up",
           [&options](const std::string& axis) {
               options.mScene.mUp = axis == "z" ? UpAxis::Z : UpAxis::Y;
           },
           "the axis that points up in OBJ files, and in the mesh")
        ->check(oneOf({"y", "z"}))
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
                   "a group, object or material to leave out; again for others")
        ->allow_extra_args(false)
        ->group("Scene");
    app.add_option("--mark", options.mScene.mMarked,
                   "a group or object to make a surface type of, by its name; again for others")
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
    length("--radius", bake.mRadius, "of every agent")->check(numberBetween(0.0, 1e6));
    length("--climb", bake.mClimb, "the highest step")->check(numberBetween(0.0, 1e6));
    length("--slope", bake.mSlope, "the steepest ground, in degrees")
        ->check(numberBetween(0.0, 89.0));

    const auto detail = numbers("Mesh");
    detail("--cell-size", bake.mCellSize, "side of a cell, which becomes the cube size")
        ->check(numberBetween(1e-6, 1e6));
    detail("--cell-height", bake.mCellHeight, "height of a cell")->check(numberBetween(1e-6, 1e6));
    detail("--min-region", bake.mMinRegion, "leave out islands of fewer cells")
        ->check(wholeNumber(0, 100'000'000));
    detail("--merge-region", bake.mMergeRegion, "join regions of fewer cells with others")
        ->check(wholeNumber(0, 100'000'000));
    detail("--corners", bake.mCorners, "corners of a polygon; where tiles meet it may get more")
        ->check(wholeNumber(3, 6));
    detail("--tile", bake.mTileSize, "cells along a tile, which is made in one go")
        ->check(wholeNumber(8, 512));
    detail("--height-error", bake.mHeightError, "how far nodes may be off the ground in height")
        ->check(numberBetween(0.0, 1e6));
    detail("--max-error", bake.mMaxError, "how far borders may leave their cells, in cells")
        ->check(numberBetween(0.0, 10.0));
    detail("--max-cells", bake.mMaxCells, "refuse scenes of more cells")
        ->check(wholeNumber(1, 1'000'000'000));
}

} // namespace ZUNO::Tools

#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/scene.h"

#include <CLI/CLI.hpp>

namespace ZUNO::Tools {

/// What the command line asks for.
struct Options {
    std::vector<std::string> mScenes;
    std::string mOutput;
    std::string mPicture;
    std::vector<float> mFrom; ///< where walkers begin; empty: on the largest part
    bool mIsQuiet = false;
    bool mIsJson = false;
    bool mShowsProgress = false;
    bool mWatches = false;
    SceneOptions mScene;
    BakeSettings mBake;
};

/// Makes the command line fill the options, which must outlive its parsing.
void addOptions(CLI::App& app, Options& options);

} // namespace ZUNO::Tools

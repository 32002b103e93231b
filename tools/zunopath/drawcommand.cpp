// The command that draws a mesh.
#include "tools/output/outputfile.h"
#include "tools/output/wording.h"
#include "tools/picture/meshfigures.h"
#include "tools/picture/picturefile.h"
#include "tools/zunopath/commandline.h"
#include "tools/zunopath/surfacequery.h"
#include "tools/zunopath/world.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace ZUNO::Tools {
namespace {

struct Options {
    std::string mPicture;
    std::string mFloor;
    std::vector<std::string> mPaths;
    bool mShowsBlocked = false;
};

/// "LOW..HIGH", of which one may be left out.
HeightRange parseFloor(const std::string& text) {
    HeightRange range;
    const std::size_t dots = text.find("..");
    const auto isRight = [](std::string_view word, double& height) {
        return word.empty() ||
               (std::from_chars(word.data(), word.data() + word.size(), height).ptr ==
                    word.data() + word.size() &&
                std::isfinite(height));
    };
    const bool isPair = dots != std::string::npos && text.size() > 2;
    if (!text.empty() && (!isPair || !isRight(std::string_view(text).substr(0, dots), range.mLow) ||
                          !isRight(std::string_view(text).substr(dots + 2), range.mHigh) ||
                          range.mLow > range.mHigh))
        throw std::runtime_error("--floor: expected LOW..HIGH, LOW.. or ..HIGH instead of '" +
                                 shown(text) + "'");
    return range;
}

ExitStatus draw(const std::string& mesh, const Options& options) {
    requireApart({mesh}, {options.mPicture});
    requirePictureName(options.mPicture);
    const HeightRange heights = parseFloor(options.mFloor);
    if (options.mPaths.size() % 2 != 0)
        throw std::runtime_error("--path: expected a start and a goal, x,y,z x,y,z");
    std::vector<Query> queries;
    for (std::size_t i = 0; i + 1 < options.mPaths.size(); i += 2)
        queries.push_back(parseQuery({"path", options.mPaths[i], options.mPaths[i + 1]}));
    const World world(mesh);
    const std::string title = heights.isAll() ? mesh : mesh + ", heights " + options.mFloor;
    MeshPicture picture(world.mesh(), title, heights);
    // the picture lies in the mesh's plane; a host's position is what maps there
    if (options.mShowsBlocked) {
        picture.addBlockedCells([&](const Common::Math::Vec2<float>& point) {
            return Pathfinder::Interface::isBlocked(positionAt(world.mesh(), point));
        });
    }
    ExitStatus status = STATUS_OK;
    Questioner questioner(world.mesh(), picture.step());
    questioner.ask(StraightChoice{HostKit::StraightForm::IMPROVED});
    for (const Query& query : queries) {
        const Answer answer = *questioner.ask(query);
        status = std::max(status, answer.mStatus);
        if (!answer.mPath.mIsFound)
            std::cerr << "zunopath: path " << &query - queries.data() + 1 << " of "
                      << queries.size() << ": " << answer.mText << '\n';
        picture.addPath(answer.mPath);
    }
    savePicture(options.mPicture, picture.text());
    return status;
}

} // namespace

void addDrawCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = line.add("draw", "Draw a mesh as a picture, SVG or PNG",
                                       [&line, options] { return draw(line.mesh(), *options); });
    command
        ->add_option("picture", options->mPicture,
                     "the file to write: .svg, or .png where rsvg-convert is there")
        ->required();
    command->add_option("--path", options->mPaths,
                        "a path to draw, with its start and goal: x,y,z x,y,z; again for others");
    command->add_option("--floor", options->mFloor,
                        "show nodes of these heights alone: LOW..HIGH, LOW.. or ..HIGH");
    command->add_flag("--blocked", options->mShowsBlocked, "mark what is blocked");
}

} // namespace ZUNO::Tools

// The command for people: asks a mesh what a host would ask, through the same exports.
#include "hostkit/session.h"
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshfigures.h"
#include "tools/zunopath/replay.h"
#include "tools/zunopath/surfacequery.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

namespace ZUNO::Tools {
namespace {

struct Options {
    std::string mMesh;
    bool mIsJson = false;
    std::string mFrom;
    std::string mTo;
    std::string mAt;
    unsigned int mBudget = 0;
    std::string mStraight = "off";
    std::vector<std::string> mReach;
    std::string mScript = "-";
    std::string mPicture;
    std::vector<std::string> mPaths;
    bool mShowsBlocked = false;
    std::string mRecording;
    std::vector<std::string> mMeshes;
    bool mIsScript = false;
    std::string mOutput;
};

/// The mesh, looked over for errors that deserve one clear line, and then the world over it.
class World {
public:
    explicit World(const std::string& file) : mMesh(file), mSession(file) {}
    const NavMesh::NavMeshContainer& mesh() const { return *mMesh; }
    const HostKit::Session& session() const { return mSession; }

private:
    LoadedMesh mMesh;
    HostKit::Session mSession;
};

ExitStatus show(const Answer& answer, bool isJson) {
    std::cout << (isJson ? answer.mJson.dump() : answer.mText) << '\n';
    return answer.mStatus;
}

ExitStatus runQuery(const Options& options, const std::vector<std::string>& words) {
    const AnyQuery query = parseAnyQuery(words);
    const World world(options.mMesh);
    Questioner questioner(world.mesh());
    questioner.ask(parseAnyQuery({"straight", options.mStraight}));
    return show(*questioner.ask(query), options.mIsJson);
}

ExitStatus runScript(const Options& options) {
    const bool isStandardInput = options.mScript == "-";
    std::ifstream file;
    if (!isStandardInput) {
        file.open(options.mScript);
        if (!file)
            throw std::runtime_error(options.mScript + ": cannot be opened; expected a script");
    }
    const World world(options.mMesh);
    Questioner questioner(world.mesh());
    std::istream& in = isStandardInput ? std::cin : file;
    ExitStatus status = STATUS_OK;
    std::string line;
    for (unsigned int number = 1; std::getline(in, line); ++number) {
        const std::vector<std::string> words = splitLine(line);
        if (words.empty())
            continue;
        try {
            const std::optional<Answer> answer = questioner.ask(parseAnyQuery(words));
            if (answer.has_value() && show(*answer, options.mIsJson) == STATUS_NOTHING)
                status = STATUS_NOTHING;
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error((isStandardInput ? "standard input" : options.mScript) + ":" +
                                     std::to_string(number) + ": " + error.what());
        }
    }
    return status;
}

ExitStatus draw(const Options& options) {
    std::vector<Query> queries;
    for (std::size_t i = 0; i + 1 < options.mPaths.size(); i += 2)
        queries.push_back(parseQuery({"path", options.mPaths[i], options.mPaths[i + 1]}));
    const World world(options.mMesh);
    MeshPicture picture(world.mesh(), options.mMesh);
    // the picture lies in the mesh's plane; a host's position is what maps there
    if (options.mShowsBlocked) {
        picture.addBlockedCells([&](const Common::Math::Vec2<float>& point) {
            return Pathfinder::Interface::isBlocked(positionAt(world.mesh(), point));
        });
    }
    ExitStatus status = STATUS_OK;
    Questioner questioner(world.mesh());
    questioner.ask(StraightChoice{HostKit::StraightForm::IMPROVED});
    for (const Query& query : queries) {
        const Answer answer = *questioner.ask(query);
        status = std::max(status, answer.mStatus);
        picture.addPath(answer.mPath);
    }
    std::ofstream out(options.mPicture, std::ios::binary);
    picture.write(out);
    if (!out.flush())
        throw std::runtime_error(options.mPicture + ": cannot be written");
    return status;
}

ExitStatus check(const Options& options) {
    const LoadedMesh mesh(options.mMesh, LoadedMesh::Defects::ACCEPTED);
    const auto printAs = [&](const char* kind, std::size_t& count) {
        return [&, kind](const char* text) {
            std::cout << options.mMesh << ": " << kind << ": " << text << '\n';
            ++count;
            return true;
        };
    };
    std::size_t defects = 0;
    std::size_t oddities = 0;
    if (findDefects(*mesh, printAs("defect", defects)))
        findOddities(*mesh, printAs("odd", oddities));
    std::cout << options.mMesh << ": " << mesh->mNodes.size() << " nodes, " << defects
              << " defects, " << oddities << " oddities\n";
    return defects + oddities == 0 ? STATUS_OK : STATUS_NOTHING;
}

/// Says what the binary form can't hold of a mesh.
void warnOfLoss(const NavMesh::NavMeshContainer& mesh, const std::string& output) {
    if (const std::int32_t node = NavMesh::findNodeUnfitForBinary(mesh); node >= 0)
        std::cerr << "zunopath: " << output << ": node " << node
                  << " has more neighbours than corners, and the binary form holds one for each "
                     "corner: paths over the others are lost\n";
}

/// Tells what goes on with files that take their time.
void showStage(const std::string& stage, const std::string& file) {
    constexpr std::uintmax_t large = 1 << 20;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (!error && size >= large)
        std::cerr << stage << ' ' << file << " (" << size / large << " MB)\n";
}

ExitStatus convert(const Options& options) {
    const MeshForm form = formOf(options.mOutput); // before anything takes its time
    showStage("reading", options.mMesh);
    const LoadedMesh mesh(options.mMesh, LoadedMesh::Defects::ACCEPTED);
    mesh.save(options.mOutput);
    if (form == MeshForm::BINARY)
        warnOfLoss(*mesh, options.mOutput);
    showStage("written", options.mOutput);
    std::cout << options.mOutput << ": " << mesh->mNodes.size() << " nodes, "
              << mesh->mVertices.size() << " vertices\n";
    return STATUS_OK;
}

ExitStatus showInfo(const Options& options) {
    const World world(options.mMesh);
    const NavMesh::NavMeshContainer& mesh = world.mesh();
    const MeshCounts counts = countMesh(mesh);
    std::map<std::int32_t, unsigned int> classes;
    for (const auto& node : mesh.mNodes)
        ++classes[node.mHeightClass];
    const Answer bounds = ask({});
    nlohmann::ordered_json json = {{"mesh", options.mMesh},
                                   {"nodes", mesh.mNodes.size()},
                                   {"vertices", mesh.mVertices.size()},
                                   {"borders", counts.mBorders},
                                   {"links", counts.mLinks},
                                   {"cubesize", mesh.mCubeSize},
                                   {"bounds", {bounds.mJson["min"], bounds.mJson["max"]}}};
    for (const auto& [number, count] : classes)
        json["heightclasses"].push_back(
            {{"class", number},
             {"height", mesh.mHeights[static_cast<std::size_t>(number)]},
             {"nodes", count}});
    for (const std::size_t size : counts.mIslandSizes)
        json["islands"].push_back(size);
    for (const auto& info : mesh.mCharacters)
        json["characters"].push_back(info.mName.getConstCharPtr());
    for (const auto& type : mesh.mSurfaceTypes)
        json["surfacetypes"].push_back(type.mName.getConstCharPtr());
    json["memory"] = {{"mesh", mesh.getMemoryUsage()},
                      {"world", world.session().memory().mBytes},
                      {"peak", world.session().memory().mPeakBytes}};
    if (options.mIsJson) {
        std::cout << json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                  << '\n';
        return STATUS_OK;
    }
    for (const auto& [key, value] : json.items())
        std::cout << key << std::string(15 - key.size(), ' ')
                  << (value.is_string()
                          ? value.get<std::string>()
                          : value.dump(-1, ' ', false,
                                       nlohmann::ordered_json::error_handler_t::replace))
                  << '\n';
    return STATUS_OK;
}

int run(int argc, char** argv) {
    Options options;
    ExitStatus status = STATUS_OK;
    CLI::App app{"Asks a navigation mesh for paths, rays, heights and pictures."};
    app.allow_windows_style_options(false); // a path may begin with a slash
    app.require_subcommand(1);
    app.footer("Exit status: 0 success, 1 no path or no node there, 2 error.");
    const auto command = [&](const char* name, const char* description, auto action) {
        CLI::App* const sub = app.add_subcommand(name, description);
        sub->add_option("mesh", options.mMesh, "the mesh file")->required();
        sub->callback([&status, action] { status = action(); });
        return sub;
    };
    const auto withJson = [&](CLI::App* sub) {
        sub->add_flag("--json", options.mIsJson, "answer in JSON, one line an answer");
        return sub;
    };

    withJson(command("info", "Tell what is in a mesh", [&] { return showInfo(options); }));

    CLI::App* const path = withJson(command("path", "Search a path", [&] {
        std::vector<std::string> words{"path", options.mFrom, options.mTo};
        if (options.mBudget != 0)
            words.push_back(std::to_string(options.mBudget));
        return runQuery(options, words);
    }));
    path->add_option("--from", options.mFrom, "the start: x,y,z")->required();
    path->add_option("--to", options.mTo, "the goal: x,y,z")->required();
    path->add_option("--budget", options.mBudget, "expansions per call (default: no limit)")
        ->check(CLI::PositiveNumber);
    path->add_flag("--straight{improved}", options.mStraight,
                   "straighten it too: improved, or --straight=plain through its own nodes")
        ->check(CLI::IsMember({"improved", "plain", "off"}));

    CLI::App* const nearest =
        withJson(command("nearest", "Tell the place on the mesh nearest to a point", [&] {
            std::vector<std::string> words{"nearest", options.mAt};
            words.insert(words.end(), options.mReach.begin(), options.mReach.end());
            return runQuery(options, words);
        }));
    nearest->add_option("--at", options.mAt, "the point: x,y,z")->required();
    nearest
        ->add_option("--within", options.mReach,
                     "how far in the plane, and then how far up or down (default: no limit)")
        ->expected(1, 2);

    CLI::App* const explanation =
        withJson(command("explain", "Tell why there is a path between two points, or none", [&] {
            return runQuery(options, {"explain", options.mFrom, options.mTo});
        }));
    explanation->add_option("--from", options.mFrom, "the start: x,y,z")->required();
    explanation->add_option("--to", options.mTo, "the goal: x,y,z")->required();

    CLI::App* const ray = withJson(command("ray", "Trace a ray against the blocking map", [&] {
        return runQuery(options, {"ray", options.mFrom, options.mTo});
    }));
    ray->add_option("--from", options.mFrom, "where it begins: x,y (without up) or x,y,z")
        ->required();
    ray->add_option("--to", options.mTo, "where it ends, likewise")->required();

    CLI::App* const blocked =
        withJson(command("blocked", "Tell whether a position is blocked", [&] {
            return runQuery(options, {"blocked", options.mAt});
        }));
    blocked->add_option("--at", options.mAt, "the position without up: x,y")->required();

    CLI::App* const height = withJson(command("height", "Tell the height of the ground", [&] {
        return runQuery(options, {"height", options.mAt});
    }));
    height
        ->add_option("--at", options.mAt,
                     "the position without up: x,y (the blocking map), or x,y,z (the surface)")
        ->required();

    withJson(command("bounds", "Tell the world's bounding rectangle",
                     [&] { return runQuery(options, {"bounds"}); }));

    CLI::App* const script = withJson(command("run", "Answer the queries of a script, one a line",
                                              [&] { return runScript(options); }));
    script->add_option("script", options.mScript, "the script; - is standard input")
        ->capture_default_str();
    script->footer("Queries: path X,Y,Z X,Y,Z [BUDGET]; ray X,Y X,Y; ray X,Y,Z X,Y,Z;\n"
                   "blocked X,Y; height X,Y; height X,Y,Z; nearest X,Y,Z [RADIUS [HEIGHT]];\n"
                   "explain X,Y,Z X,Y,Z; bounds. 'straight improved', 'straight plain' and\n"
                   "'straight off' hold for the paths that follow. What follows a # is a comment.");

    CLI::App* const drawing =
        command("draw", "Draw a mesh as an SVG picture", [&] { return draw(options); });
    drawing->add_option("picture", options.mPicture, "the file to write")->required();
    drawing
        ->add_option("--path", options.mPaths,
                     "a path to draw, with its start and goal: x,y,z x,y,z")
        ->type_size(2)
        ->allow_extra_args();
    drawing->add_flag("--blocked", options.mShowsBlocked, "mark what is blocked");

    CLI::App* const conversion =
        command("convert", "Save a mesh in the other form, or in the same anew",
                [&] { return convert(options); });
    conversion->add_option("output", options.mOutput, "the file to write: .xml or .bin")
        ->required();

    command("check", "List everything that is wrong or odd about a mesh", [&] {
        return check(options);
    })->footer("Exit status: 0 nothing found, 1 something found, 2 no mesh at all.");

    CLI::App* const replaying = app.add_subcommand(
        "replay", "Make the calls of a recording again, and compare the answers");
    replaying->add_option("recording", options.mRecording, "the file that a host recorded")
        ->required();
    replaying->add_option("--mesh", options.mMeshes,
                          "where the recorded mesh is to be found (default: where it was)");
    replaying->add_flag("--script", options.mIsScript, "print its queries for 'run' instead");
    replaying->footer("Exit status: 0 every answer as recorded, 1 a difference, 2 error.");
    replaying->callback([&] {
        status = options.mIsScript ? printScript(options.mRecording)
                                   : replayRecording(options.mRecording, options.mMeshes);
    });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? STATUS_OK : STATUS_ERROR;
    }
    return status;
}

} // namespace
} // namespace ZUNO::Tools

int main(int argc, char** argv) {
    try {
        return ZUNO::Tools::run(argc, argv);
    } catch (ZUNO::Common::Exceptions::Exception* exception) {
        std::cerr << "zunopath: " << ZUNO::HostKit::takeMessage(exception) << '\n';
    } catch (const std::exception& error) {
        std::cerr << "zunopath: " << error.what() << '\n';
    }
    return ZUNO::Tools::STATUS_ERROR;
}

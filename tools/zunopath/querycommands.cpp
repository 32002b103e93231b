// The commands that ask the world: one question, or those of a script.
#include "tools/output/jsonline.h"
#include "tools/output/wordchecks.h"
#include "tools/zunopath/commandline.h"
#include "tools/zunopath/surfacequery.h"
#include "tools/zunopath/world.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

namespace ZUNO::Tools {
namespace {

ExitStatus show(const Answer& answer, bool isJson) {
    std::cout << (isJson ? lineOf(answer.mJson) : answer.mText + '\n');
    return answer.mStatus;
}

ExitStatus runQuery(const CommandLine& line, const std::vector<std::string>& words,
                    const std::string& straight = "off") {
    const AnyQuery query = parseAnyQuery(words);
    const World world(line.mesh());
    Questioner questioner(world.mesh());
    questioner.ask(parseAnyQuery({"straight", straight}));
    return show(*questioner.ask(query), line.isJson());
}

ExitStatus runScript(const CommandLine& command, const std::string& name) {
    const bool isStandardInput = name == "-";
    std::ifstream file;
    if (!isStandardInput) {
        file.open(name);
        if (!file || std::filesystem::is_directory(name))
            throw std::runtime_error(name + ": cannot be opened; expected a script");
    }
    const World world(command.mesh());
    Questioner questioner(world.mesh());
    std::istream& in = isStandardInput ? std::cin : file;
    ExitStatus status = STATUS_OK;
    std::string line;
    for (unsigned int number = 1; std::getline(in, line); ++number) {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        if (number == 1 && line.starts_with(byteOrderMark))
            line.erase(0, byteOrderMark.size());
        const std::vector<std::string> words = splitLine(line);
        if (words.empty())
            continue;
        try {
            const std::optional<Answer> answer = questioner.ask(parseAnyQuery(words));
            if (answer.has_value() && show(*answer, command.isJson()) == STATUS_NOTHING)
                status = STATUS_NOTHING;
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error((isStandardInput ? "standard input" : name) + ":" +
                                     std::to_string(number) + ": " + error.what());
        }
    }
    if (in.bad())
        throw std::runtime_error(name + ": cannot be read");
    return status;
}

/// What the commands are given; it lives as long as they do.
struct Words {
    std::string mFrom;
    std::string mTo;
    std::string mAt;
    unsigned int mBudget = 0;
    std::string mStraight = "off";
    std::vector<std::string> mReach;
    std::string mScript = "-";
};

void addPath(CommandLine& line, const std::shared_ptr<Words>& given) {
    CLI::App* const path = line.addWithJson("path", "Search a path", [&line, given] {
        std::vector<std::string> words{"path", given->mFrom, given->mTo};
        if (given->mBudget != 0)
            words.push_back(std::to_string(given->mBudget));
        return runQuery(line, words, given->mStraight);
    });
    path->add_option("--from", given->mFrom, "the start: x,y,z")->required();
    path->add_option("--to", given->mTo, "the goal: x,y,z")->required();
    path->add_option("--budget", given->mBudget, "expansions per call (default: no limit)")
        ->check(wholeNumberOf<unsigned int>(1));
    path->add_flag("--straight{improved}", given->mStraight,
                   "straighten it too: improved, or --straight=plain through its own nodes")
        ->check(oneOf({"improved", "plain", "off"}));
}

void addNearest(CommandLine& line, const std::shared_ptr<Words>& given) {
    CLI::App* const nearest = line.addWithJson(
        "nearest", "Tell the place on the mesh nearest to a point", [&line, given] {
            std::vector<std::string> words{"nearest", given->mAt};
            words.insert(words.end(), given->mReach.begin(), given->mReach.end());
            return runQuery(line, words);
        });
    nearest->add_option("--at", given->mAt, "the point: x,y,z")->required();
    nearest
        ->add_option("--within", given->mReach,
                     "how far in the plane, and then how far up or down (default: no limit)")
        ->expected(1, 2);
}

void addExplain(CommandLine& line, const std::shared_ptr<Words>& given) {
    CLI::App* const explanation = line.addWithJson(
        "explain", "Tell why there is a path between two points, or none", [&line, given] {
            return runQuery(line, {"explain", given->mFrom, given->mTo});
        });
    explanation->add_option("--from", given->mFrom, "the start: x,y,z")->required();
    explanation->add_option("--to", given->mTo, "the goal: x,y,z")->required();
}

void addRay(CommandLine& line, const std::shared_ptr<Words>& given) {
    CLI::App* const ray =
        line.addWithJson("ray", "Trace a ray against the blocking map", [&line, given] {
            return runQuery(line, {"ray", given->mFrom, given->mTo});
        });
    ray->add_option("--from", given->mFrom, "where it begins: x,y (without up) or x,y,z")
        ->required();
    ray->add_option("--to", given->mTo, "where it ends, likewise")->required();
}

void addAt(CommandLine& line, const std::shared_ptr<Words>& given, const char* name,
           const char* description, const char* position) {
    line.addWithJson(name, description,
                     [&line, given, name] {
                         return runQuery(line, {name, given->mAt});
                     })
        ->add_option("--at", given->mAt, position)
        ->required();
}

void addScript(CommandLine& line, const std::shared_ptr<Words>& given) {
    CLI::App* const script =
        line.addWithJson("run", "Answer the queries of a script, one a line",
                         [&line, given] { return runScript(line, given->mScript); });
    script->add_option("script", given->mScript, "the script; - is standard input")
        ->capture_default_str();
    script->footer("Queries: path X,Y,Z X,Y,Z [BUDGET]; ray X,Y X,Y; ray X,Y,Z X,Y,Z;\n"
                   "blocked X,Y; height X,Y; height X,Y,Z; nearest X,Y,Z [RADIUS [HEIGHT]];\n"
                   "explain X,Y,Z X,Y,Z; bounds. 'straight improved', 'straight plain' and\n"
                   "'straight off' hold for the paths that follow. What follows a # is a comment.");
}

} // namespace

void addQueryCommands(CommandLine& line) {
    const auto given = std::make_shared<Words>();
    addPath(line, given);
    addNearest(line, given);
    addExplain(line, given);
    addRay(line, given);
    addAt(line, given, "blocked", "Tell whether a position is blocked",
          "the position without up: x,y");
    addAt(line, given, "height", "Tell the height of the ground",
          "the position without up: x,y (the blocking map), or x,y,z (the surface)");
    line.addWithJson("bounds", "Tell the world's bounding rectangle",
                     [&line] { return runQuery(line, {"bounds"}); });
    addScript(line, given);
}

} // namespace ZUNO::Tools

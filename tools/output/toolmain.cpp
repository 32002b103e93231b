#include "tools/output/toolmain.h"

#include "pathfinder/version.h"
#include "tools/output/toolwords.h"
#include "tools/output/wording.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

/// The commands that were given, the innermost last, and the tool itself before them.
std::vector<const CLI::App*> levelsOf(const CLI::App& app) {
    std::vector<const CLI::App*> levels{&app};
    for (const CLI::App* const command : app.get_subcommands())
        levels.push_back(command);
    return levels;
}

/// An option that there is not, among the words that nobody took; empty: none.
std::string unknownOption(const CLI::App& app) {
    const std::vector<std::string> words = app.remaining(true);
    const auto unknown = std::ranges::find_if(words, [](const std::string& word) {
        return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
    });
    return unknown != words.end() ? unknown->substr(0, unknown->find('=')) : "";
}

/// What is wrong with the words, in one line.
std::string describe(const CLI::App& app, const CLI::ParseError& error) {
    const std::string unknown = unknownOption(app);
    const bool isUnknown =
        !unknown.empty() && (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr ||
                             dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr);
    if (isUnknown) {
        std::vector<std::string> names;
        for (const CLI::Option* const option : levelsOf(app).back()->get_options())
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        const std::string nearest = suggestion(unknown, names);
        return "there is no option '" + shown(unknown) + "'" +
               (nearest.empty() ? "; --help lists them" : nearest);
    }
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        return "'" + shown(app.remaining(true).front()) + "' is one word too many";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        return levelsOf(app).size() == 1 && app.get_require_subcommand_min() > 0
                   ? "a command is required; --help lists them"
                   : std::string(error.what()) + "; --help tells more";
    const std::string text = error.what();
    return text.ends_with(" missing") ? text.substr(0, text.find(':')) + ": a value is missing"
                                      : text;
}

} // namespace

void requireOutput() {
    std::cout.flush();
    if (!std::cout || std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw std::runtime_error("standard output cannot be written");
}

int runTool(const char* name, const std::function<int()>& action) {
    try {
        const int status = action();
        requireOutput();
        return status;
    } catch (const std::bad_alloc&) {
        std::cerr << name << ": out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << name << ": " << error.what() << '\n';
    }
    return STATUS_ERROR;
}

std::optional<int> parseWords(CLI::App& app, int argc, char** argv) {
    app.allow_windows_style_options(false); // a path may begin with a slash
    const std::string name = std::filesystem::path(argv[0]).stem().string();
    const std::string first = argc > 1 ? argv[1] : "";
    app.set_version_flag("--version", name + " " ZUNO_VERSION_TEXT, "print the version and end");
    // for shells and for the manual, not for people: the help doesn't name these
    if (first == "--complete" || first == "--manual-page") {
        std::cout << (first == "--complete" ? completionsOf(app, {argv + 2, argv + argc})
                                            : manualPageOf(app, name));
        return STATUS_OK;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) // help or the version was asked for
            return app.exit(error);
        throw std::runtime_error(describe(app, error));
    }
    return std::nullopt;
}

} // namespace ZUNO::Tools

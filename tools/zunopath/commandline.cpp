#include "tools/zunopath/commandline.h"

#include "tools/output/wording.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace ZUNO::Tools {

CommandLine::CommandLine() : mApp("Asks a navigation mesh for paths, rays, heights and pictures.") {
    mApp.allow_windows_style_options(false); // which commands take over when they are added
    mApp.require_subcommand(1);
    mApp.footer("Exit status: 0 success, 1 no path or no node there, 2 error.");
}

CLI::App* CommandLine::addWithoutMesh(const char* name, const char* description,
                                      std::function<ExitStatus()> action) {
    CLI::App* const command = mApp.add_subcommand(name, description);
    command->callback([this, action = std::move(action)] { mStatus = action(); });
    return command;
}

CLI::App* CommandLine::add(const char* name, const char* description,
                           std::function<ExitStatus()> action) {
    CLI::App* const command = addWithoutMesh(name, description, std::move(action));
    command->add_option("mesh", mMesh, "the mesh file")->required();
    return command;
}

CLI::App* CommandLine::addWithJson(const char* name, const char* description,
                                   std::function<ExitStatus()> action) {
    CLI::App* const command = add(name, description, std::move(action));
    command->add_flag("--json", mIsJson, "answer in JSON, one line an answer");
    return command;
}

void CommandLine::requireCommand(const std::string& word) const {
    std::vector<std::string> names;
    for (const CLI::App* const command : mApp.get_subcommands({}))
        names.push_back(command->get_name());
    if (!word.starts_with('-') && std::ranges::find(names, word) == names.end())
        throw std::runtime_error("there is no command '" + shown(word) + "'" +
                                 suggestion(word, names));
}

int CommandLine::run(int argc, char** argv) {
    if (argc > 1)
        requireCommand(argv[1]);
    return parseWords(mApp, argc, argv).value_or(mStatus);
}

} // namespace ZUNO::Tools

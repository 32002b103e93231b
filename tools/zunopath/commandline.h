#pragma once

#include "tools/zunopath/query.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace ZUNO::Tools {

/// The command line: a command and what it takes. Each group of commands adds its own.
class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Adds a command. The action runs when the command is given, after all of its options were
    /// read.
    CLI::App* addWithoutMesh(const char* name, const char* description,
                             std::function<ExitStatus()> action);
    /// Adds a command on a mesh.
    CLI::App* add(const char* name, const char* description, std::function<ExitStatus()> action);
    /// The same with the choice to answer in JSON.
    CLI::App* addWithJson(const char* name, const char* description,
                          std::function<ExitStatus()> action);

    const std::string& mesh() const { return mMesh; }
    bool isJson() const { return mIsJson; }

    /// Reads the words and runs the command. Returns the status to exit with. Throws a
    /// std::runtime_error for a command that there is not.
    int run(int argc, char** argv);

private:
    void requireCommand(const std::string& word) const;

    CLI::App mApp;
    std::string mMesh;
    bool mIsJson = false;
    ExitStatus mStatus = STATUS_OK;
};

/// path, nearest, explain, ray, blocked, height, bounds, and run for scripts of them.
void addQueryCommands(CommandLine& line);
/// info, check and convert.
void addMeshCommands(CommandLine& line);
/// draw.
void addDrawCommand(CommandLine& line);
/// replay.
void addReplayCommand(CommandLine& line);

} // namespace ZUNO::Tools

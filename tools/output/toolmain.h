#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>

namespace ZUNO::Tools {

/// How a tool ends.
enum ExitStatus : int { STATUS_OK = 0, STATUS_NOTHING = 1, STATUS_ERROR = 2 };

/// Runs what a tool does. Returns the status to exit with: the action's, or STATUS_ERROR after a
/// line on standard error, "NAME: reason", when it threw a std::exception or when not all of
/// standard output has arrived.
int runTool(const char* name, const std::function<int()>& action);

/// Sees to it that what was printed has arrived. Throws a std::runtime_error when it has not.
void requireOutput();

/// Reads the command line. Returns nothing when the tool is to go on, else the status to exit with:
/// help or the version was asked for. Throws a std::runtime_error that says which word is wrong.
std::optional<int> parseWords(CLI::App& app, int argc, char** argv);

} // namespace ZUNO::Tools

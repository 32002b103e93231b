/// What a tool tells of itself to shells and to `man`, from the same descriptions as its help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace ZUNO::Tools {

/// The words that may stand where the last of `words` is being typed, a line each, with a tab and
/// a description behind. `words` are those of the command line without the tool's name. Nothing:
/// a file's name may stand there, or anything.
std::string completionsOf(const CLI::App& app, const std::vector<std::string>& words);

/// The manual page, in the form that `man` reads.
std::string manualPageOf(const CLI::App& app, const std::string& name);

} // namespace ZUNO::Tools

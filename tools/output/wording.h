#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ZUNO::Tools {

/// A user's word as a message shows it: at most 60 bytes of it, and no control characters, which
/// could do anything to a terminal.
std::string shown(std::string_view word);

/// "; did you mean 'path'?" with the candidate that is nearest to a misspelt word, or nothing when
/// none is near.
std::string suggestion(std::string_view word, const std::vector<std::string>& candidates);

} // namespace ZUNO::Tools

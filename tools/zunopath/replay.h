#pragma once

#include "tools/zunopath/query.h"

#include <string>
#include <vector>

namespace ZUNO::Tools {

/// Makes the calls of a recording again and prints how that went, or the first call that answers
/// otherwise: STATUS_NOTHING then. The meshes are told by their digests; none: the recorded names.
/// Raises a std::runtime_error.
ExitStatus replayRecording(const std::string& file, const std::vector<std::string>& meshes);

/// Prints the queries of a recording, for `zunopath run`. Raises a std::runtime_error.
ExitStatus printScript(const std::string& file);

} // namespace ZUNO::Tools

#pragma once

#include "capi/zuno.h"

#include <string>
#include <utility>
#include <vector>

namespace ZUNO::CInterface {

/// Why a function fails: what its host gets as status and last error.
struct Failure {
    zuno_status mStatus = ZUNO_FAILED;
    std::string mText;
    std::string mType = {}; ///< of what was raised; empty for a host's mistakes
    std::vector<std::pair<std::string, std::string>> mParameters = {};
};

/// Returns what the exception that is being handled means to a host, and deletes it when it is one
/// of the library's. Throws a std::bad_alloc when there is no memory to say so.
Failure currentFailure();

/// Makes a failure this thread's last error; its text names the function. Returns its status.
zuno_status keep(const char* function, const Failure& failure) noexcept;

/// The same for the exception that is being handled.
zuno_status keepCurrentFailure(const char* function) noexcept;

} // namespace ZUNO::CInterface

#pragma once

#include "hostkit/exports.h"
#include "hostkit/recording.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace ZUNO::HostKit {

/// What replaying knows of a search.
struct ReplayedSearch {
    std::array<std::uint32_t, 6> mPoints{}; ///< start and goal, as bits
    std::uint64_t mRuns = 0;
    std::uint64_t mBudget = 0; ///< of all runs together
    std::int32_t mResult = 1;  ///< of the last run
    std::uint64_t mWaypoints = 0;
};

/// The first call that answered otherwise than it was recorded.
struct ReplayDifference {
    std::uint64_t mNumber = 0;             ///< of the call, from 1
    RecordedCall mCall;                    ///< with the answer that was recorded
    RecordedAnswer mAnswer;                ///< the answer now
    std::optional<ReplayedSearch> mSearch; ///< the one that the call is about, before the call
};

/// How a replay went.
struct ReplayOutcome {
    std::uint64_t mCalls = 0; ///< made, the one that differs included
    std::uint64_t mSearches = 0;
    bool mIsWhole = false; ///< whether the recording was closed, rather than cut off
    std::optional<ReplayDifference> mDifference = {};
};

struct ReplaySettings {
    /// Files to look for the recorded meshes in, by their digests; none: the names as recorded.
    std::vector<std::string> mMeshes = {};
    /// Null: the C library's.
    Exports::Files mFiles = {};
    /// Told of a call that never came back, before it is made again.
    std::function<void(std::uint64_t number, const RecordedCall& call)> mOnUnanswered = nullptr;
};

/// Makes the calls of a recording again, up to the first answer that differs by a bit, and closes
/// the world. No world may run before.
/// Throws a RecordingError for what is no recording, and a std::runtime_error when none of the
/// meshes has the digest that was recorded; for a mesh that couldn't be read then, one that can't
/// be read now.
/// Throws a std::bad_alloc when an answer differs because memory ended here.
/// Thread: that of the exports.
ReplayOutcome replay(std::string_view recording, Exports& exports, const ReplaySettings& settings);

/// Texts for people: a call with its arguments, an answer to it, and a difference in some lines.
std::string describe(const RecordedCall& call);
std::string describe(const RecordedCall& call, const RecordedAnswer& answer);
std::string describe(const ReplayDifference& difference);

} // namespace ZUNO::HostKit

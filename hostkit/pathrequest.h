#pragma once

#include "common/math/vec3.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace ZUNO::HostKit {

/// How long a request may wait for others that came after it.
enum class Priority : std::uint8_t { URGENT, NORMAL, BACKGROUND };

/// A path that a character wants.
struct PathRequest {
    Common::Math::Vec3<float> mStart{0, 0, 0};
    Common::Math::Vec3<float> mGoal{0, 0, 0};
    Priority mPriority = Priority::NORMAL;
    /// Units: frames from now, the next one being 1. 0: none. An answer that comes later is counted
    /// as late; it comes all the same.
    std::uint32_t mDeadline = 0;
};

enum class PathResult : std::uint8_t {
    FOUND,
    NO_PATH,
    OFF_MESH ///< start or goal stands on no node
};

/// What became of a request.
struct PathAnswer {
    PathResult mResult = PathResult::NO_PATH;
    Common::Math::Vec3<float> mStart{0, 0, 0};
    Common::Math::Vec3<float> mGoal{0, 0, 0};
    std::vector<Common::Math::Vec3<float>> mWaypoints; ///< of a found path: its nodes' centres
    float mCost = 0;                                   ///< of a found path
    std::uint64_t mExpansions = 0;                     ///< as they were charged to the budget
    std::uint32_t mFramesWaited = 0;                   ///< 1: the next frame answered
    bool mIsLate = false;                              ///< later than its deadline
};

/// Names a request; 0 names none. A number that was used is not used again.
using RequestId = std::uint64_t;

/// Receives an answer, whose waypoints it may swap out.
using AnswerCallback = std::function<void(RequestId, PathAnswer&)>;

} // namespace ZUNO::HostKit

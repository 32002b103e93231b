#pragma once

#include "hostkit/exports.h"

#include <array>
#include <cstdint>
#include <random>
#include <unordered_map>
#include <vector>

namespace ZUNO::Benchmarks {

/// The library's exports, of whose answers a sample is kept: the question, and the answer's bits.
class Witness : public HostKit::Exports {
public:
    struct Question {
        enum Kind { PATH, RAY, GROUND };
        Kind mKind;
        Vec3 mFrom; ///< of the ground: where
        Vec3 mTo;
    };
    struct Answer {
        Question mQuestion;
        std::uint64_t mBits; ///< a digest of all that was answered
    };

    /// Asks the running world at once, without witness.
    static std::uint64_t ask(const Question& question);

    /// How many answers there were since the last sample was taken.
    std::uint64_t answers() const;
    /// Returns a sample of each kind, in which each answer is as likely as any other, and begins
    /// new ones.
    std::vector<Answer> takeSample();

    void close() override;
    int initPathSearch(const Vec3& start, const Vec3& goal) override;
    int runPathSearch(int searchID, unsigned int budget) override;
    bool getNextWaypoint(int searchID, Vec3& waypoint) override;
    bool closePathSearch(int searchID) override;
    void traceRay(Ray2D& ray) override;
    float getGroundHeight(const Vec2& position) override;
    using Exports::traceRay;

private:
    /// What was seen of a search so far.
    struct Search {
        Question mQuestion;
        std::vector<Vec3> mWaypoints;
        int mState = Pathfinder::PATH_RUNNING;
        bool mIsRead = false; ///< to the last waypoint
    };
    static std::uint64_t bitsOf(int state, const std::vector<Vec3>& waypoints, float cost);
    void note(const Question& question, std::uint64_t bits);

    std::unordered_map<int, Search> mSearches;
    struct Kept {
        std::vector<Answer> mSample;
        std::uint64_t mAnswers = 0;
    };
    std::array<Kept, 3> mKept; ///< by kind
    std::mt19937_64 mRandom{5};
};

} // namespace ZUNO::Benchmarks

#pragma once

#include "hostkit/corridor.h"
#include "hostkit/scheduler.h"
#include "hostkit/straightpath.h"
#include "hostkit/surface.h"

#include <deque>
#include <random>
#include <vector>

namespace ZUNO::Tools {

struct CrowdSettings {
    unsigned int mCharacters = 200;
    unsigned int mSeed = 7;
    float mSpeed = 1.6F; ///< units of the mesh a second
    unsigned int mFramesPerSecond = 30;
};

/// A path that was found and straightened.
struct Journey {
    HostKit::Position mStart;
    HostKit::Position mGoal;
    std::vector<HostKit::Position> mCentres; ///< the waypoints
    std::vector<HostKit::Position> mCorners; ///< start and goal included
    double mCentresLength = 0;               ///< from the start by the waypoints to the goal
    double mStraightLength = 0;
    std::uint64_t mExpansions = 0;
    std::uint32_t mFramesWaited = 0;
};

/// Characters that walk from place to place on a mesh: each asks the scheduler for a path,
/// straightens what it is given, follows it, rests for a moment at its goal, and goes on. Now and
/// then one wants to get where no path leads.
/// Lifetime: view and scheduler must outlive it.
class Crowd {
public:
    Crowd(const HostKit::MeshView& view, HostKit::Scheduler& scheduler,
          const CrowdSettings& settings);

    /// Moves everybody by a frame. The scheduler is advanced by the caller.
    void walk();
    /// Pushes a character aside; pushed off its path, it asks for another one.
    void push(std::size_t character, const HostKit::Position& by);

    std::size_t size() const { return mCharacters.size(); }
    const HostKit::Place& placeOf(std::size_t character) const {
        return mCharacters[character].mCorridor.position();
    }
    /// Whether the character waits for a path.
    bool isWaiting(std::size_t character) const { return mCharacters[character].mIsWaiting; }
    const std::vector<Journey>& journeys() const { return mJourneys; }
    /// For a crowd that walks for long.
    void forgetJourneys() { mJourneys.clear(); }
    std::size_t goalsReached() const { return mGoalsReached; }
    double distanceWalked() const { return mDistanceWalked; }

private:
    struct Character {
        explicit Character(const HostKit::MeshView& view) : mCorridor(view) {}
        HostKit::Corridor mCorridor;
        HostKit::Position mGoal;
        bool mIsWaiting = false; ///< for an answer
        unsigned int mRest = 0;  ///< frames until it wants to go on
    };

    std::uint64_t number() { return std::uint64_t{mRandom()} << 32U | mRandom(); }
    HostKit::Position pickGoal();
    void ask(Character& character);
    void answer(Character& character, const HostKit::PathAnswer& answer);
    void step(Character& character);
    void askWhenLost(Character& character);

    HostKit::Scheduler& mScheduler;
    CrowdSettings mSettings;
    HostKit::RandomPlaces mMainland;
    HostKit::RandomPlaces mAnywhere;
    HostKit::PathStraightener mStraightener;
    HostKit::StraightPath mPath;
    std::mt19937 mRandom;
    std::deque<Character> mCharacters;
    std::vector<Journey> mJourneys;
    std::size_t mGoalsReached = 0;
    double mDistanceWalked = 0;
};

} // namespace ZUNO::Tools

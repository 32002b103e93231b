#include "tools/demo/crowd.h"

#include <algorithm>

namespace ZUNO::Tools {

using namespace HostKit;

namespace {

constexpr float nearGoal = 0.3F;
constexpr float nearCorner = 0.2F;

double lengthOf(const Position& from, const std::vector<Position>& points, const Position& to) {
    double sum = 0;
    Position last = from;
    for (const Position& point : points) {
        sum += double{length(point - last)};
        last = point;
    }
    return sum + double{length(to - last)};
}

} // namespace

Crowd::Crowd(const MeshView& view, Scheduler& scheduler, const CrowdSettings& settings)
    : mScheduler(scheduler), mSettings(settings), mMainland(view, 0), mAnywhere(view),
      mStraightener(view), mRandom(settings.mSeed) {
    for (unsigned int i = 0; i < settings.mCharacters; ++i) {
        Character& character = mCharacters.emplace_back(view);
        character.mCorridor.place(mMainland.pick(number()));
        character.mGoal = pickGoal();
        ask(character);
    }
}

/// A place to go to; now and then on an island apart, or far above the ground.
Position Crowd::pickGoal() {
    if (mRandom() % 60 == 0)
        return mMainland.pick(number()).mPosition + Position(0, 1000, 0);
    return (mRandom() % 10 == 0 ? mAnywhere : mMainland).pick(number()).mPosition;
}

void Crowd::ask(Character& character) {
    character.mIsWaiting = true;
    mScheduler.add({character.mCorridor.position().mPosition, character.mGoal},
                   [this, &character](RequestId, PathAnswer& found) { answer(character, found); });
}

void Crowd::answer(Character& character, const PathAnswer& answer) {
    character.mIsWaiting = false;
    const bool isPath = answer.mResult == PathResult::FOUND &&
                        mStraightener.straighten(answer.mStart, answer.mGoal, answer.mWaypoints,
                                                 StraightForm::IMPROVED, mPath) &&
                        character.mCorridor.follow(mPath.mChain, answer.mGoal);
    if (!isPath) { // somewhere else, then
        character.mRest = mSettings.mFramesPerSecond;
        return;
    }
    Journey& journey = mJourneys.emplace_back();
    journey.mStart = answer.mStart;
    journey.mGoal = answer.mGoal;
    journey.mCentres = answer.mWaypoints;
    for (const StraightPath::Corner& corner : mPath.mCorners)
        journey.mCorners.push_back(corner.mPosition);
    journey.mCentresLength = lengthOf(answer.mStart, answer.mWaypoints, answer.mGoal);
    journey.mStraightLength = mPath.mLength;
    journey.mExpansions = answer.mExpansions;
    journey.mFramesWaited = answer.mFramesWaited;
}

void Crowd::walk() {
    for (Character& character : mCharacters) {
        if (character.mRest != 0 && --character.mRest == 0) {
            character.mGoal = pickGoal();
            ask(character);
        } else if (character.mRest == 0 && character.mCorridor.hasPath()) {
            step(character);
        }
    }
}

void Crowd::step(Character& character) {
    Corridor& corridor = character.mCorridor;
    const Position from = corridor.position().mPosition;
    const Position way = corridor.nextCorner(nearCorner) - from;
    const float distance = length(way);
    const float stride = mSettings.mSpeed / static_cast<float>(mSettings.mFramesPerSecond);
    const float share = distance > stride ? stride / distance : 1.0F;
    corridor.move({from.mX + way.mX * share, from.mY + way.mY * share, from.mZ + way.mZ * share});
    mDistanceWalked += double{length(corridor.position().mPosition - from)};
    if (corridor.isAtGoal(nearGoal)) {
        ++mGoalsReached;
        character.mRest =
            mSettings.mFramesPerSecond / 2 +
            static_cast<unsigned int>(mRandom() % (std::size_t{2} * mSettings.mFramesPerSecond));
    } else {
        askWhenLost(character);
    }
}

void Crowd::push(std::size_t character, const Position& by) {
    Character& pushed = mCharacters[character];
    pushed.mCorridor.move(pushed.mCorridor.position().mPosition + by);
    askWhenLost(pushed);
}

void Crowd::askWhenLost(Character& character) {
    if (character.mCorridor.needsSearch() && !character.mIsWaiting)
        ask(character);
}

} // namespace ZUNO::Tools

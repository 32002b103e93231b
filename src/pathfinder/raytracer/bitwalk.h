#pragma once

#include "pathfinder/raytracer/blockedbits.h"

namespace ZUNO::Pathfinder::Raytracer {

/// A walk over a grid from one cell towards another, along the longer axis one cell a step, along
/// the shorter one whenever its share has added up to more than a cell, until a cell stops it.
///
/// The share is kept as an error, 0 < error <= stepCount. It grows by the shorter distance at each
/// step; where it would exceed the step count, that is taken off and the walk goes along the
/// shorter axis, too. The comparison stands before the addition, so that 32 bits always do.
class BitWalk {
public:
    /// `from` must be a cell of the grid; `to` may lie anywhere. Lifetime: as long as the bits.
    BitWalk(const BlockedBits& bits, const BlockingMap::Cell& from, const BlockingMap::Cell& to)
        : mBits(bits), mPlace(bits.placeOf(from)), mPrevious(mPlace) {
        const std::uint32_t distanceX = distance(from.mX, to.mX);
        const std::uint32_t distanceY = distance(from.mY, to.mY);
        const BlockedBits::Place stepX = to.mX < from.mX ? 0U - 1U : 1U;
        const BlockedBits::Place stepY = to.mY < from.mY ? 0U - bits.stride() : bits.stride();
        const bool isWide = distanceX > distanceY;
        mStepCount = isWide ? distanceX : distanceY;
        mShare = isWide ? distanceY : distanceX;
        mStraight = isWide ? stepX : stepY;
        mDiagonal = stepX + stepY;
        mError = mShare;
    }

    std::uint32_t stepCount() const { return mStepCount; }
    /// Returns where the walk stands, and where it stood a step before.
    BlockedBits::Place place() const { return mPlace; }
    BlockedBits::Place previous() const { return mPrevious; }
    bool isStopped() const { return mBits.stopsAt(mPlace); }

    /// Takes so many steps, or fewer: none from a cell that stops. Returns whether one did.
    bool advance(std::uint32_t steps) {
        const std::uint32_t room = mStepCount - mShare;
        BlockedBits::Place place = mPlace;
        BlockedBits::Place previous = mPrevious;
        std::uint32_t error = mError;
        bool isStopped = mBits.stopsAt(place);
        for (; !isStopped && steps != 0; --steps) {
            const bool isOver = error > room;
            error += isOver ? 0U - room : mShare;
            previous = place;
            place += isOver ? mDiagonal : mStraight;
            isStopped = mBits.stopsAt(place);
        }
        mPlace = place;
        mPrevious = previous;
        mError = error;
        return isStopped;
    }

    /// So many steps at once: what they add to the place and to the error.
    struct Leap {
        std::uint32_t mSteps;
        BlockedBits::Place mPlaces;
        std::uint32_t mShare; ///< less than the step count
    };

    /// Returns a leap of one step. There must be more than that.
    Leap oneStep() const {
        return mShare < mStepCount ? Leap{1, mStraight, mShare} : Leap{1, mDiagonal, 0};
    }
    /// Returns a leap that is twice as long.
    Leap doubled(const Leap& leap) const {
        const bool isOver = leap.mShare >= mStepCount - leap.mShare;
        return {2 * leap.mSteps, 2 * leap.mPlaces + (isOver ? mDiagonal - mStraight : 0),
                isOver ? leap.mShare - (mStepCount - leap.mShare) : 2 * leap.mShare};
    }
    /// Takes a leap, without a look at the cells between or at the one that it leads to.
    void take(const Leap& leap) {
        const std::uint32_t room = mStepCount - leap.mShare;
        const bool isOver = mError > room;
        mError += isOver ? 0U - room : leap.mShare;
        mPlace += leap.mPlaces + (isOver ? mDiagonal - mStraight : 0);
    }

private:
    static std::uint32_t distance(int from, int to) {
        const std::int64_t difference = std::int64_t{to} - from;
        return static_cast<std::uint32_t>(difference < 0 ? -difference : difference);
    }

    const BlockedBits& mBits;
    BlockedBits::Place mPlace;
    BlockedBits::Place mPrevious;
    BlockedBits::Place mStraight; ///< what a step along the longer axis adds to the place
    BlockedBits::Place mDiagonal; ///< what one along both adds
    std::uint32_t mStepCount;
    std::uint32_t mShare; ///< of the shorter axis, at each step
    std::uint32_t mError;
};

} // namespace ZUNO::Pathfinder::Raytracer

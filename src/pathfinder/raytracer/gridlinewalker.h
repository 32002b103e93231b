#pragma once

#include "common/math/vec2.h"

#include <cstdint>

namespace ZUNO::Pathfinder::Raytracer {

/// Steps through grid cells from one to another: along the longer axis one cell a step, along the
/// shorter one whenever its share has added up to more than a cell. Any two cells will do: they may
/// lie as far apart as ints can.
class GridLineWalker {
public:
    using Cell = Common::Math::Vec2<int>;

    void init(const Cell& from, const Cell& to) {
        const std::int64_t dx = std::int64_t{to.mX} - from.mX;
        const std::int64_t dy = std::int64_t{to.mY} - from.mY;
        mCell = from;
        mDeltaX = dx < 0 ? -dx : dx;
        mDeltaY = dy < 0 ? -dy : dy;
        mSignX = sign(dx);
        mSignY = sign(dy);
        mStepCount = mDeltaX > mDeltaY ? mDeltaX : mDeltaY;
        mStepsTaken = 0;
        mErrorX = mDeltaX;
        mErrorY = mDeltaY;
    }

    /// Moves on and gives the cell reached. Returns false when the last one was reached before.
    bool next(Cell& cell) {
        if (mStepsTaken == mStepCount)
            return false;
        step(mErrorX, mDeltaX, mCell.mX, mSignX);
        step(mErrorY, mDeltaY, mCell.mY, mSignY);
        cell = mCell;
        ++mStepsTaken;
        return true;
    }

    std::int64_t stepCount() const { return mStepCount; }
    std::int64_t stepsTaken() const { return mStepsTaken; }

    /// Moves on as so many calls of `next` do, and gives the cell reached. At least so many steps
    /// must be left, and at most 2^30 taken at once.
    void skip(std::int64_t steps, Cell& cell) {
        leap(steps, mErrorX, mDeltaX, mCell.mX, mSignX);
        leap(steps, mErrorY, mDeltaY, mCell.mY, mSignY);
        cell = mCell;
        mStepsTaken += steps;
    }

private:
    static int sign(std::int64_t value) { return value > 0 ? 1 : (value < 0 ? -1 : 0); }

    void step(std::int64_t& error, std::int64_t delta, int& coordinate, int direction) const {
        error += delta;
        if (error > mStepCount) {
            error -= mStepCount;
            coordinate += direction;
        }
    }

    /// 0 < error <= mStepCount before and after, so the overflow is a whole multiple of mStepCount.
    void leap(std::int64_t steps, std::int64_t& error, std::int64_t delta, int& coordinate,
              int direction) const {
        if (delta == 0)
            return;
        error += steps * delta;
        const std::int64_t cells = delta == mStepCount ? steps : (error - 1) / mStepCount;
        error -= cells * mStepCount;
        coordinate += static_cast<int>(cells) * direction;
    }

    Cell mCell{0, 0};
    std::int64_t mDeltaX = 0;
    std::int64_t mDeltaY = 0;
    int mSignX = 0;
    int mSignY = 0;
    std::int64_t mStepCount = 0;
    std::int64_t mStepsTaken = 0;
    std::int64_t mErrorX = 0;
    std::int64_t mErrorY = 0;
};

} // namespace ZUNO::Pathfinder::Raytracer

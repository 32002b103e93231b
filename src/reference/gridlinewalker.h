#pragma once

#include "common/math/vec2.h"

#include <cstdint>

namespace ZUNO::Reference {

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

private:
    static int sign(std::int64_t value) { return value > 0 ? 1 : (value < 0 ? -1 : 0); }

    void step(std::int64_t& error, std::int64_t delta, int& coordinate, int direction) const {
        error += delta;
        if (error > mStepCount) {
            error -= mStepCount;
            coordinate += direction;
        }
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

} // namespace ZUNO::Reference

#include "tools/zunobake/progress.h"

#include <cmath>
#include <iostream>

namespace ZUNO::Tools {

Progress::~Progress() {
    if (mHasSpoken) // a failure's message begins a line of its own
        std::cerr << '\n';
}

void Progress::begin(const std::string& stage) {
    end();
    mStage = stage;
    mBegin = mLastWord = Clock::now();
}

void Progress::end() {
    if (mStage.empty())
        return;
    if (mHasSpoken)
        std::cerr << '\r' << mStage << " done              \n";
    mHasSpoken = false;
    mStages.emplace_back(mStage, std::chrono::duration<double>(Clock::now() - mBegin).count());
    mStage.clear();
}

void Progress::show(std::size_t done, std::size_t all) {
    using std::chrono_literals::operator""ms;
    const Clock::time_point now = Clock::now();
    if (!mIsShown || now - mStart < 1000ms || now - mLastWord < 500ms || done == 0 || all == 0)
        return;
    mLastWord = now;
    mHasSpoken = true;
    const std::chrono::duration<double> passed = now - mBegin;
    const double left =
        passed.count() * static_cast<double>(all - done) / static_cast<double>(done);
    std::cerr << '\r' << mStage << ' ' << done * 100 / all << " %, " << std::lround(left)
              << " s left   " << std::flush;
}

} // namespace ZUNO::Tools

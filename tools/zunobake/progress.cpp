#include "tools/zunobake/progress.h"

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
        std::cerr << '\r' << mStage << " done \n";
    mHasSpoken = false;
    mStages.emplace_back(mStage, std::chrono::duration<double>(Clock::now() - mBegin).count());
    mStage.clear();
}

void Progress::show(std::size_t done, std::size_t all) {
    using std::chrono_literals::operator""ms;
    const Clock::time_point now = Clock::now();
    if (!mIsShown || now - mBegin < 1000ms || now - mLastWord < 500ms || all == 0)
        return;
    mLastWord = now;
    mHasSpoken = true;
    std::cerr << '\r' << mStage << ' ' << done * 100 / all << " %" << std::flush;
}

} // namespace ZUNO::Tools

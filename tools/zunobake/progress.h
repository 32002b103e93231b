#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace ZUNO::Tools {

/// Tells on standard error how far long work is, and keeps how long each stage took.
class Progress {
public:
    /// Without `isShown` it keeps the times alone.
    explicit Progress(bool isShown) : mIsShown(isShown) {}
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Ends the stage before.
    void begin(const std::string& stage);
    void end();

    /// Says "<stage> 40 %, 3 s left" when the work has taken a second and the last word is half a
    /// second old. The time is that of the stage, as far as one can tell from what is done of it.
    void show(std::size_t done, std::size_t all);

    /// Stages and their seconds.
    const std::vector<std::pair<std::string, double>>& stages() const { return mStages; }

private:
    using Clock = std::chrono::steady_clock;

    bool mIsShown;
    std::string mStage;
    Clock::time_point mStart = Clock::now(); ///< of the work
    Clock::time_point mBegin;                ///< of the stage
    Clock::time_point mLastWord;
    bool mHasSpoken = false;
    std::vector<std::pair<std::string, double>> mStages;
};

} // namespace ZUNO::Tools

#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace ZUNO::Tools {

/// Tells on standard error how far long work is, and keeps how long each stage took.
class Progress {
public:
    /// Ends the stage before.
    void begin(const std::string& stage);
    void end();

    /// Says "<stage> 40 %" when the stage has taken a second and the last word is half a second
    /// old.
    void show(std::size_t done, std::size_t all);

    /// Stages and their seconds.
    const std::vector<std::pair<std::string, double>>& stages() const { return mStages; }

private:
    using Clock = std::chrono::steady_clock;

    std::string mStage;
    Clock::time_point mBegin;
    Clock::time_point mLastWord;
    bool mHasSpoken = false;
    std::vector<std::pair<std::string, double>> mStages;
};

} // namespace ZUNO::Tools

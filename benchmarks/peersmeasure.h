/// How two things are measured side by side on a machine that is shared: turn by turn, with the
/// medians of many turns.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace ZUNO::Benchmarks {

/// Returns how many seconds an action takes.
template <typename Action>
double secondsOf(Action&& action) {
    const auto begin = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

inline double medianOf(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Seconds of both sides.
struct Pair {
    double ratio() const { return mOurs / mTheirs; }

    double mOurs = 0;
    double mTheirs = 0;
};

/// Returns the medians of 25 turns of two actions.
inline Pair compare(const std::function<void()>& ours, const std::function<void()>& theirs) {
    std::vector<double> our;
    std::vector<double> their;
    for (int i = 0; i < 25; ++i) {
        our.push_back(secondsOf(ours));
        their.push_back(secondsOf(theirs));
    }
    return {medianOf(our), medianOf(their)};
}

/// Returns the times of a list of questions, for one of them: the sum of each chunk's median over
/// the rounds, so that what interrupts a chunk now and then does not count. The sides take turns
/// after `chunk` questions: with long chunks each keeps its data in the caches, with one they evict
/// each other's.
template <typename Questions, typename Ours, typename Theirs>
Pair compareEach(const Questions& questions, std::size_t chunk, Ours&& ours, Theirs&& theirs) {
    constexpr std::size_t most = 25;
    constexpr std::size_t fewest = 5;
    const std::size_t chunks = (questions.size() + chunk - 1) / chunk;
    std::vector<std::vector<double>> times(2 * chunks);
    const auto begin = std::chrono::steady_clock::now();
    const auto goesOn = [&](std::size_t round) {
        return round < fewest ||
               (round < most && std::chrono::steady_clock::now() - begin < std::chrono::seconds(8));
    };
    for (std::size_t round = 0; goesOn(round); ++round)
        for (std::size_t i = 0; i < chunks; ++i) {
            const auto ask = [&](auto& side) {
                const std::size_t end = std::min((i + 1) * chunk, questions.size());
                for (std::size_t k = i * chunk; k < end; ++k)
                    side(questions[k]);
            };
            times[2 * i].push_back(secondsOf([&] { ask(ours); }));
            times[2 * i + 1].push_back(secondsOf([&] { ask(theirs); }));
        }
    Pair sum;
    for (std::size_t i = 0; i < chunks; ++i) {
        sum.mOurs += medianOf(times[2 * i]);
        sum.mTheirs += medianOf(times[2 * i + 1]);
    }
    const auto count = static_cast<double>(questions.size());
    return {sum.mOurs / count, sum.mTheirs / count};
}

inline void printHead() {
    std::printf("%-58s %8s %8s %10s %10s  %s\n", "what", "ratio", "goal", "ours/us", "theirs/us",
                "holds");
}

/// Prints a ratio, its goal, and the times of both sides in microseconds. Returns whether the goal
/// is met; where it is not, the caller prints what it measured of the reason.
inline bool print(const std::string& what, const Pair& times, double goal) {
    const bool holds = times.ratio() <= goal;
    std::printf("%-58s %8.2f %8.2f %10.3f %10.3f  %s\n", what.c_str(), times.ratio(), goal,
                times.mOurs * 1e6, times.mTheirs * 1e6, holds ? "yes" : "NO");
    std::fflush(stdout);
    return holds;
}

/// The same of a figure that is no ratio.
inline bool printFigure(const std::string& what, double figure, double goal) {
    const bool holds = figure <= goal;
    std::printf("%-58s %8.2f %8.2f %21s  %s\n", what.c_str(), figure, goal, "",
                holds ? "yes" : "NO");
    std::fflush(stdout);
    return holds;
}

} // namespace ZUNO::Benchmarks

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

/// Returns the medians of rounds. `round` measures both sides once; there are 25 rounds, or as many
/// as begin within 8 seconds, and 5 at least.
template <typename Round>
Pair mediansOf(Round&& round) {
    constexpr std::size_t most = 25;
    constexpr std::size_t fewest = 5;
    std::vector<double> ours;
    std::vector<double> theirs;
    double seconds = 0;
    while (ours.size() < fewest || (ours.size() < most && seconds < 8)) {
        const Pair once = round();
        ours.push_back(once.mOurs);
        theirs.push_back(once.mTheirs);
        seconds += once.mOurs + once.mTheirs;
    }
    return {medianOf(ours), medianOf(theirs)};
}

/// Returns the medians of two actions that take turns.
inline Pair compare(const std::function<void()>& ours, const std::function<void()>& theirs) {
    return mediansOf([&] { return Pair{secondsOf(ours), secondsOf(theirs)}; });
}

/// Returns the medians over a list of questions, for one question. The sides take turns after
/// `chunk` of them: with long chunks each keeps its data in the caches, with one they evict each
/// other's.
template <typename Questions, typename Ours, typename Theirs>
Pair compareEach(const Questions& questions, std::size_t chunk, Ours&& ours, Theirs&& theirs) {
    const Pair whole = mediansOf([&] {
        Pair round;
        for (std::size_t first = 0; first < questions.size(); first += chunk) {
            const std::size_t end = std::min(first + chunk, questions.size());
            const auto ask = [&](auto& side) {
                for (std::size_t i = first; i < end; ++i)
                    side(questions[i]);
            };
            round.mOurs += secondsOf([&] { ask(ours); });
            round.mTheirs += secondsOf([&] { ask(theirs); });
        }
        return round;
    });
    const auto count = static_cast<double>(questions.size());
    return {whole.mOurs / count, whole.mTheirs / count};
}

inline void printHead() {
    std::printf("%-58s %8s %8s %10s %10s  %s\n", "what", "ratio", "goal", "ours/us", "theirs/us",
                "holds");
}

/// Prints a ratio, its goal, and the times of both sides in microseconds.
inline void print(const std::string& what, double ratio, double goal, const Pair& times) {
    std::printf("%-58s %8.2f %8.2f %10.3f %10.3f  %s\n", what.c_str(), ratio, goal,
                times.mOurs * 1e6, times.mTheirs * 1e6, ratio <= goal ? "yes" : "NO");
    std::fflush(stdout);
}

/// Prints a figure that is no ratio, and its goal.
inline void printFigure(const std::string& what, double figure, double goal) {
    std::printf("%-58s %8.2f %8.2f %21s  %s\n", what.c_str(), figure, goal, "",
                figure <= goal ? "yes" : "NO");
    std::fflush(stdout);
}

inline void print(const std::string& what, const Pair& times, double goal) {
    print(what, times.ratio(), goal, times);
}

} // namespace ZUNO::Benchmarks

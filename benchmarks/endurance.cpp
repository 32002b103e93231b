// A game of an hour; a million searches, a thousand open at a time; ten thousand starts.
#include "benchmarks/endurance.h"
#include "benchmarks/game.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <random>
#include <span>
#include <system_error>

namespace {

using namespace ZUNO;
using Benchmarks::Endurance;
using Benchmarks::GamePart;

unsigned long long wide(std::uint64_t number) {
    return number;
}

void print(const char* what, const std::vector<Endurance::Row>& table) {
    std::printf("%12s %12s %14s\n", what, "blocks", "bytes");
    for (const auto& row : table)
        std::printf("%12llu %12llu %14llu\n", wide(row.mDone), wide(row.mBlocks), wide(row.mBytes));
}

/// What the process holds of the machine's memory; 0 where the system does not say.
unsigned long long residentKilobytes() {
    unsigned long long pages = 0;
    std::ifstream("/proc/self/statm").ignore(100, ' ') >> pages;
    return pages * 4;
}

double percentile(const std::vector<double>& sorted, double part) {
    return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

/// What a minute is judged by.
struct Minute {
    double mMedian;
    double mLong; ///< the 99th percentile
    std::uint64_t mBytes;
    std::uint64_t mResident;
};

Minute printMinute(unsigned int minute, GamePart& part) {
    std::ranges::sort(part.mFrames);
    const Minute judged{percentile(part.mFrames, 0.5), percentile(part.mFrames, 0.99),
                        part.mMostBytes, residentKilobytes()};
    std::printf("%6u %7.0f %7.0f %7.0f %7.0f %8.0f %9llu %6llu %4llu %7llu %7llu %6llu %9llu "
                "%8llu\n",
                minute, judged.mMedian, judged.mLong, percentile(part.mFrames, 0.999),
                part.mFrames.back(), part.mLongestReload / 1000, wide(part.mAnswers),
                wide(part.mCompared), wide(part.mDifferent), wide(part.mRefusals),
                wide(part.mFailures), wide(part.mMostBlocks), wide(judged.mBytes),
                wide(judged.mResident));
    std::fflush(stdout);
    return judged;
}

/// The largest of the last third of the minutes against that of the first.
template <typename Number>
double growthOf(const std::vector<Minute>& minutes, Number Minute::*figure) {
    const std::size_t third = minutes.size() / 3;
    const auto most = [&](std::span<const Minute> some) {
        return static_cast<double>(std::ranges::max(some, {}, figure).*figure);
    };
    return most(std::span(minutes).last(third)) / most(std::span(minutes).first(third));
}

/// Returns how many things were wrong.
std::uint64_t play(const std::string& folder, unsigned int minutes) {
    Benchmarks::GameSettings settings;
    for (const unsigned int seed : {1U, 2U}) {
        settings.mMeshes.push_back(folder + "/game" + std::to_string(seed) + ".xml");
        std::ofstream(settings.mMeshes.back(), std::ios::binary)
            << Worlds::makeFloor(10000, seed).toXML("endurance");
    }
    std::printf("a game of %u minutes, %u characters; frames in us of processor time, reloads in "
                "ms\n%6s %7s %7s %7s %7s %8s %9s %6s %4s %7s %7s %6s %9s %8s\n",
                minutes, settings.mCharacters, "minute", "median", "99 %", "99.9 %", "longest",
                "reload", "answers", "asked", "diff", "refused", "failed", "blocks", "bytes",
                "KB held");
    Benchmarks::Game game(settings);
    std::vector<Minute> all;
    std::uint64_t wrong = 0;
    for (unsigned int minute = 1; minute <= minutes; ++minute) {
        GamePart part = game.play(60);
        all.push_back(printMinute(minute, part));
        wrong += part.mDifferent + part.mLeftBehind;
    }
    if (minutes < 6) // each third has both meshes
        return wrong;
    const double bytes = growthOf(all, &Minute::mBytes);
    const double resident = growthOf(all, &Minute::mResident);
    std::printf("the last third against the first: bytes %.3f, held by the process %.3f, median "
                "%.2f, 99 %% %.2f\n",
                bytes, resident, growthOf(all, &Minute::mMedian), growthOf(all, &Minute::mLong));
    std::fflush(stdout);
    return wrong + (bytes > 1.1 ? 1 : 0) + (resident > 1.1 ? 1 : 0);
}

/// Returns the mistakes.
std::uint64_t repeat(const std::string& folder) {
    Endurance searches(folder + "/searches.xml", Worlds::makeFloor(10000, 1));
    print("searches", searches.churn(1000000, 1000, 20));
    Endurance starts(folder + "/starts.xml", Worlds::makeFloor(1000, 1));
    print("starts", starts.restart(10000, 10));
    return searches.mistakes() + starts.mistakes();
}

} // namespace

// zunoendurance [--minutes N]
int main(int argc, char** argv) {
    const bool isTold = argc == 3 && std::string(argv[1]) == "--minutes";
    const unsigned long minutes = isTold ? std::strtoul(argv[2], nullptr, 10) : 60;
    if ((argc != 1 && !isTold) || minutes == 0 || minutes > 1'000'000) {
        std::fprintf(stderr, "usage: zunoendurance [--minutes N]\n");
        return 2;
    }
    // another one may run at the same time
    const auto folder = std::filesystem::temp_directory_path() /
                        ("zunoendurance-" + std::to_string(std::random_device()()));
    int status = 2;
    try {
        std::filesystem::create_directories(folder);
        const std::uint64_t wrong =
            play(folder.string(), static_cast<unsigned int>(minutes)) + repeat(folder.string());
        std::printf("mistakes: %llu\n", wide(wrong));
        status = wrong == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zunoendurance: %s\n", error.what());
    }
    std::error_code failure; // what is left of the folder does no harm
    std::filesystem::remove_all(folder, failure);
    return status;
}

/// A game that goes on for long. What the library holds must stay the same, and so must its answers
/// and the times of its frames.
#pragma once

#include "benchmarks/witness.h"
#include "common/callback/reportcallback.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "tools/demo/crowd.h"

#include <memory>
#include <optional>
#include <string>

namespace ZUNO::Benchmarks {

/// A heap that refuses one request now and then, and counts reports instead of showing them.
class RefusingHeap : public HostKit::HeapMemoryCallback, public Common::Callback::ReportCallback {
public:
    void* allocateMemory(unsigned int size) override;
    void report(const char*, const char*, unsigned int) noexcept override { ++mReports; }

    std::uint64_t mUntilRefused = 0; ///< requests, the refused one included; 0: none is
    std::uint64_t mRefusals = 0;
    std::uint64_t mReports = 0;
};

struct GameSettings {
    std::vector<std::string> mMeshes; ///< files, which are played in turn
    unsigned int mCharacters = 1000;
    std::uint64_t mBudget = 4000;     ///< expansions a frame
    unsigned int mReloadSeconds = 10; ///< of the game, after which the mesh is loaded again
    unsigned int mReloadsPerMesh = 6; ///< after so many the next mesh is played
    unsigned int mFramesPerSecond = 30;
};

/// What happened in some time of the game; times are the processor's, in microseconds.
struct GamePart {
    std::vector<double> mFrames; ///< what each took
    double mLongestReload = 0;
    std::uint64_t mAnswers = 0;
    std::uint64_t mCompared = 0;   ///< answers that a fresh world was asked for
    std::uint64_t mDifferent = 0;  ///< those that it gave otherwise
    std::uint64_t mRefusals = 0;   ///< requests of the library's for memory
    std::uint64_t mFailures = 0;   ///< frames and starts that ended early for it
    std::uint64_t mLeftBehind = 0; ///< blocks, after the closes
    std::uint64_t mMostBlocks = 0; ///< before the closes
    std::uint64_t mMostBytes = 0;
};

/// Characters ask a scheduler for paths, follow them, are pushed, look at each other and at the
/// ground. In every second a request for memory is refused, and at most starts another. When the
/// mesh is loaded again, the fresh world is asked once more for some of what the old one answered.
class Game {
public:
    /// Throws a std::runtime_error when the first mesh can't be loaded.
    explicit Game(const GameSettings& settings);
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    GamePart play(unsigned int seconds);

private:
    void playFrame();
    void lookAround();
    void reload();
    void close();
    bool start(); ///< whether a world runs
    void startAnyway();
    const std::string& meshFile() const;
    void people();
    std::uint64_t below(std::uint64_t count) { return mRandom() % count; }

    GameSettings mSettings;
    HostKit::Foundation mFoundation;
    Common::SharedPtr<Common::Callback::MemoryCallback> mMemory;
    RefusingHeap* mHeap;
    std::uint64_t mStartRequests = 0; ///< what a start asks of the heap
    HostKit::Exports::Files mFiles;
    Witness mExports;
    std::optional<HostKit::MeshView> mView;
    std::unique_ptr<HostKit::Scheduler> mScheduler;
    std::unique_ptr<Tools::Crowd> mCrowd;
    std::mt19937 mRandom{17};
    std::uint64_t mFramesPlayed = 0;
    std::size_t mReloads = 0;
    GamePart mPart;
};

} // namespace ZUNO::Benchmarks

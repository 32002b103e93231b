#include "benchmarks/game.h"

#include "hostkit/exceptiontext.h"
#include "hostkit/meshloading.h"
#include "hostkit/stdiofilecallback.h"

#include <algorithm>
#include <ctime>
#include <stdexcept>

namespace ZUNO::Benchmarks {

using namespace HostKit;

namespace {

/// Of the processor, whatever else the machine does.
template <typename Action>
double microsecondsOf(Action action) {
    const std::clock_t begin = std::clock();
    action();
    return static_cast<double>(std::clock() - begin) * 1e6 / CLOCKS_PER_SEC;
}

/// Whether the library ended the action early, by an exception.
template <typename Action>
bool isEnded(Action action) {
    try {
        action();
        return false;
    } catch (Common::Exceptions::Exception* exception) {
        takeMessage(exception);
        return true;
    }
}

} // namespace

void* RefusingHeap::allocateMemory(unsigned int size) {
    if (mUntilRefused == 0 || --mUntilRefused != 0)
        return HeapMemoryCallback::allocateMemory(size);
    ++mRefusals;
    return nullptr;
}

Game::Game(const GameSettings& settings)
    : mSettings(settings), mHeap(new RefusingHeap), mFiles(new StdioFileCallback) {
    mMemory = mHeap;
    startAnyway();
    mStartRequests = mHeap->figures().mAllocations;
    people();
}

Game::~Game() {
    mCrowd.reset();
    mScheduler.reset();
    close();
}

GamePart Game::play(unsigned int seconds) {
    mPart = {};
    const std::uint64_t perReload =
        std::uint64_t{mSettings.mReloadSeconds} * mSettings.mFramesPerSecond;
    for (unsigned int frame = 0; frame < seconds * mSettings.mFramesPerSecond; ++frame) {
        if (mFramesPlayed % mSettings.mFramesPerSecond == 0)
            mHeap->mUntilRefused = 1 + below(10);
        mPart.mFrames.push_back(microsecondsOf([&] { playFrame(); }));
        if (++mFramesPlayed % perReload == 0)
            reload();
    }
    mPart.mRefusals = std::exchange(mHeap->mRefusals, 0);
    return std::move(mPart);
}

void Game::playFrame() {
    // a frame that memory ended early goes on with the next one
    mPart.mFailures +=
        isEnded([&] { mScheduler->advance(FrameBudget::expansions(mSettings.mBudget)); });
    mCrowd->walk();
    for (std::size_t pushed = 0; pushed < mCrowd->size() / 50; ++pushed)
        mCrowd->push(below(mCrowd->size()),
                     {static_cast<float>(below(5)) - 2, 0, static_cast<float>(below(5)) - 2});
    lookAround();
}

void Game::lookAround() {
    for (std::size_t look = 0; look < mCrowd->size() / 20; ++look) {
        const Position a = mCrowd->placeOf(below(mCrowd->size())).mPosition;
        const Position b = mCrowd->placeOf(below(mCrowd->size())).mPosition;
        Exports::Ray2D ray({a.mX, a.mZ}, {b.mX, b.mZ});
        mExports.traceRay(ray);
        mExports.getGroundHeight({a.mX, a.mZ});
    }
}

/// The same mesh in a fresh world, which is compared with the old one; now and then the next mesh
/// after that, with a crowd of its own.
void Game::reload() {
    const auto again = [&] {
        mPart.mMostBlocks = std::max(mPart.mMostBlocks, mHeap->figures().mBlocks);
        mPart.mMostBytes = std::max(mPart.mMostBytes, mHeap->figures().mBytes);
        close();
        mScheduler->restart();
        mHeap->mUntilRefused = 1 + below(mStartRequests + mStartRequests / 4);
        if (!start()) {
            ++mPart.mFailures; // for the refused request, and only for that
            startAnyway();
        }
        mHeap->mUntilRefused = 0;
    };
    mPart.mLongestReload = std::max(mPart.mLongestReload, microsecondsOf(again));
    mPart.mAnswers += mExports.answers();
    for (const Witness::Answer& answer : mExports.takeSample()) {
        ++mPart.mCompared;
        mPart.mDifferent += Witness::ask(answer.mQuestion) != answer.mBits ? 1 : 0;
    }
    if (++mReloads % mSettings.mReloadsPerMesh != 0)
        return;
    mCrowd.reset();
    mScheduler.reset();
    close();
    startAnyway();
    people();
}

void Game::close() {
    mExports.close();
    mPart.mLeftBehind += mHeap->figures().mBlocks;
}

bool Game::start() {
    bool isLoaded = false;
    isEnded([&] {
        isLoaded = mExports.initWorldRepresentation(meshFile().c_str(), mMemory, mFiles, "");
    });
    return isLoaded;
}

void Game::startAnyway() {
    if (!start())
        throw std::runtime_error(meshFile() + ": no world starts");
}

const std::string& Game::meshFile() const {
    return mSettings.mMeshes[mReloads / mSettings.mReloadsPerMesh % mSettings.mMeshes.size()];
}

/// A crowd for the mesh that is played.
void Game::people() {
    mView.emplace(loadMeshView(meshFile()));
    mScheduler = std::make_unique<Scheduler>(mExports);
    mCrowd = std::make_unique<Tools::Crowd>(
        *mView, *mScheduler,
        Tools::CrowdSettings{.mCharacters = mSettings.mCharacters,
                             .mSeed = static_cast<unsigned int>(7 + mReloads),
                             .mFramesPerSecond = mSettings.mFramesPerSecond});
}

} // namespace ZUNO::Benchmarks

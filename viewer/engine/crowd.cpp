// A crowd that walks over the page's mesh: the demo's, a frame at a time.
#include "tools/demo/crowd.h"
#include "viewer/engine/guarded.h"
#include "viewer/engine/world.h"

#include <emscripten/bind.h>

namespace ZUNO::Viewer {

using namespace HostKit;
using emscripten::val;

namespace {

struct WalkingCrowd {
    explicit WalkingCrowd(const Tools::CrowdSettings& settings)
        : mScheduler(theWorld().mExports), mCrowd(theView(), mScheduler, settings) {}

    Scheduler mScheduler;
    Tools::Crowd mCrowd;
    double mCentresLength = 0; ///< of all paths so far
    double mStraightLength = 0;
};

std::unique_ptr<WalkingCrowd>& theCrowd() {
    static std::unique_ptr<WalkingCrowd> crowd;
    return crowd;
}

WalkingCrowd& walkingCrowd() {
    if (theCrowd() == nullptr)
        throw std::runtime_error("no crowd");
    return *theCrowd();
}

/// Puts so many characters on the largest island, instead of those that are there.
void startCrowd(unsigned int characters, unsigned int seed, float speed) {
    guarded([&] {
        endCrowd();
        Tools::CrowdSettings settings;
        settings.mCharacters = characters;
        settings.mSeed = seed;
        settings.mSpeed = speed;
        theCrowd() = std::make_unique<WalkingCrowd>(settings);
    });
}

/// A frame's searches, within the budget, and a frame's steps. Returns the expansions that were
/// charged.
double runCrowdFrame(unsigned int budget) {
    return guarded([&] {
        WalkingCrowd& crowd = walkingCrowd();
        crowd.mScheduler.advance(FrameBudget::expansions(budget));
        crowd.mCrowd.walk();
        for (const Tools::Journey& journey : crowd.mCrowd.journeys()) {
            crowd.mCentresLength += journey.mCentresLength;
            crowd.mStraightLength += journey.mStraightLength;
        }
        crowd.mCrowd.forgetJourneys();
        return static_cast<double>(crowd.mScheduler.figures().mFrameExpansions);
    });
}

/// Of each character x, y, z, and 1 when it waits for a path.
val crowdPlaces() {
    return guarded([] {
        const Tools::Crowd& crowd = walkingCrowd().mCrowd;
        std::vector<float> places;
        for (std::size_t i = 0; i < crowd.size(); ++i) {
            const Position& place = crowd.placeOf(i).mPosition;
            places.insert(places.end(),
                          {place.mX, place.mY, place.mZ, crowd.isWaiting(i) ? 1.0F : 0.0F});
        }
        return copyOf(places);
    });
}

val crowdFigures() {
    return guarded([] {
        const WalkingCrowd& crowd = walkingCrowd();
        const SchedulerFigures& figures = crowd.mScheduler.figures();
        val out = val::object();
        const auto set = [&out](const char* name, auto number) {
            out.set(name, static_cast<double>(number));
        };
        set("frames", figures.mFrames);
        set("queue", crowd.mScheduler.queueLength());
        set("longestQueue", figures.mLongestQueue);
        set("found", figures.mFound);
        set("noPath", figures.mNoPath);
        set("offMesh", figures.mOffMesh);
        set("framesWaited", figures.mFramesWaited);
        set("mostFramesWaited", figures.mMostFramesWaited);
        set("goalsReached", crowd.mCrowd.goalsReached());
        set("distance", crowd.mCrowd.distanceWalked());
        set("centresLength", crowd.mCentresLength);
        set("straightLength", crowd.mStraightLength);
        return out;
    });
}

EMSCRIPTEN_BINDINGS(crowd) {
    emscripten::function("startCrowd", &startCrowd);
    emscripten::function("runCrowdFrame", &runCrowdFrame);
    emscripten::function("crowdPlaces", &crowdPlaces);
    emscripten::function("crowdFigures", &crowdFigures);
    emscripten::function("endCrowd", &endCrowd);
}

} // namespace

void endCrowd() {
    theCrowd().reset();
}

} // namespace ZUNO::Viewer

// What a host makes of a search's answer: straight paths, the nearest place, reasons, and a
// character that walks.
#include "hostkit/corridor.h"
#include "hostkit/explain.h"
#include "hostkit/straightpath.h"
#include "viewer/engine/guarded.h"
#include "viewer/engine/world.h"

#include <emscripten/bind.h>
#include <optional>

namespace ZUNO::Viewer {

using namespace HostKit;
using emscripten::val;

namespace {

std::vector<Position> positionsOf(const val& numbers) {
    const auto flat = emscripten::convertJSArrayToNumberVector<float>(numbers);
    std::vector<Position> positions;
    for (std::size_t i = 0; i + 2 < flat.size(); i += 3)
        positions.emplace_back(flat[i], flat[i + 1], flat[i + 2]);
    return positions;
}

val positionOf(const Place& place) {
    return place ? val(place.mPosition) : val::null();
}

/// The place of the world nearest to a point; null when it is further than `radius` in the plane.
val findNearestPlace(const Position& point, float radius) {
    return guarded([&] {
        const NearestPlace nearest =
            findNearest(theView(), point, radius, std::numeric_limits<float>::infinity());
        if (!nearest)
            return val::null();
        val out = val::object();
        out.set("point", val(nearest.mPosition));
        out.set("distance", nearest.mDistance);
        return out;
    });
}

/// Why there is, or is not, a path: sentences, the places that a search could begin and end at,
/// and where two islands come nearest.
val explainSearch(const Position& start, const Position& goal) {
    return guarded([&] {
        const Explanation explanation = explain(theView(), start, goal);
        val out = val::object();
        out.set("text", describe(theView(), explanation));
        out.set("start", positionOf(explanation.mStart.mNearest));
        out.set("goal", positionOf(explanation.mGoal.mNearest));
        out.set("startShore", positionOf(explanation.mStartShore));
        out.set("goalShore", positionOf(explanation.mGoalShore));
        return out;
    });
}

std::optional<StraightPath> straightenPath(const Position& start, const Position& goal,
                                           const val& waypoints, bool isImproved) {
    PathStraightener straightener(theView());
    std::optional<StraightPath> path(std::in_place);
    if (!straightener.straighten(start, goal, positionsOf(waypoints),
                                 isImproved ? StraightForm::IMPROVED : StraightForm::PLAIN, *path))
        path.reset();
    return path;
}

/// The corners of a found path from start to goal, and its length; null for what is no path.
val straighten(const Position& start, const Position& goal, const val& waypoints, bool isImproved) {
    return guarded([&] {
        const auto path = straightenPath(start, goal, waypoints, isImproved);
        if (!path)
            return val::null();
        std::vector<float> corners;
        for (const auto& [position, step] : path->mCorners)
            corners.insert(corners.end(), {position.mX, position.mY, position.mZ});
        val out = val::object();
        out.set("corners", copyOf(corners));
        out.set("length", path->mLength);
        return out;
    });
}

/// The character that walks the path that is looked at.
std::optional<Corridor>& theWalker() {
    static std::optional<Corridor> walker;
    return walker;
}

/// Puts the character at the start of a found path. Returns false for what is no path.
bool sendWalker(const Position& start, const Position& goal, const val& waypoints,
                bool isImproved) {
    return guarded([&] {
        const auto path = straightenPath(start, goal, waypoints, isImproved);
        if (!path)
            return false;
        Corridor& walker = theWalker().emplace(theView());
        walker.place({path->mChain.front(), path->mCorners.front().mPosition});
        return walker.follow(path->mChain, path->mCorners.back().mPosition);
    });
}

/// Walks so far, in steps that turn at each corner. Returns where that is, how far it came, and
/// whether it is the goal.
val stepWalker(float distance) {
    return guarded([&] {
        if (!theWalker())
            throw std::runtime_error("nobody walks");
        Corridor& walker = *theWalker();
        const float longest = theView().cubeSize();
        float walked = 0;
        while (walked < distance && walker.hasPath() && !walker.isAtGoal(longest / 8)) {
            const Position from = walker.position().mPosition;
            const Position way = walker.nextCorner(longest / 8) - from;
            const float rest = length(way);
            if (!(rest > 0))
                break;
            const float share = std::min({1.0F, longest / rest, (distance - walked) / rest});
            walker.move(from + Position(way.mX * share, way.mY * share, way.mZ * share));
            const float moved = length(walker.position().mPosition - from);
            walked += moved;
            if (!(moved > 0))
                break;
        }
        val out = val::object();
        out.set("point", val(walker.position().mPosition));
        out.set("walked", walked);
        out.set("isThere", walker.isAtGoal(longest / 8));
        return out;
    });
}

EMSCRIPTEN_BINDINGS(walking) {
    emscripten::function("findNearest", &findNearestPlace);
    emscripten::function("explain", &explainSearch);
    emscripten::function("straighten", &straighten);
    emscripten::function("sendWalker", &sendWalker);
    emscripten::function("stepWalker", &stepWalker);
}

} // namespace
} // namespace ZUNO::Viewer
